// The transform beside its textbook loop and, where it was found, beside FFTW (one thread, double,
// in place, FFTW_MEASURE), all on the same data. All three are timed in turns, so that other load
// on the machine meets them alike, and the fastest of the turns counts. The argument is the
// exponent of the length and the number of threads. The counters are ratios of those times:
// "against_textbook" above 1 and "against_fftw" below 1 mean that ours is the faster one.
#include "transform/reference_transform.h"
#include "transform/transform.h"
#include "turns.h"

#include <benchmark/benchmark.h>
#ifdef NOTCHBENCH_FFTW
#include <fftw3.h>
#endif

#include <algorithm>

namespace {

using Complex = std::complex<double>;

std::vector<Complex> stimulus(quint64 count)
{
    std::vector<Complex> x(count);
    quint32 state = 1;
    for (Complex& element : x) {
        state = state * 1664525U + 1013904223U;
        element = {double(state >> 8) / 8388608.0 - 1.0, double(state & 0xFFFFU) / 32768.0 - 1.0};
    }
    return x;
}

#ifdef NOTCHBENCH_FFTW
class Fftw
{
public:
    explicit Fftw(quint64 count)
        : buffer(count),
          x(reinterpret_cast<fftw_complex*>(buffer.data())),
          plan(fftw_plan_dft_1d(static_cast<int>(count), x, x, FFTW_BACKWARD, FFTW_MEASURE))
    {
    }
    ~Fftw() { fftw_destroy_plan(plan); }
    Fftw(const Fftw&) = delete;
    Fftw& operator=(const Fftw&) = delete;

    double seconds(const std::vector<Complex>& from)
    {
        std::copy(from.begin(), from.end(), buffer.data());
        return secondsOf([this] { fftw_execute(plan); });
    }

private:
    ComplexBuffer buffer; // of large pages, as ours
    fftw_complex* x;
    fftw_plan plan;
};
#endif

double textbookSeconds(const std::vector<Complex>& from)
{
    std::vector<Complex> x = from;
    return secondsOf([&x] { reference::fft(x); });
}

void transform(benchmark::State& state)
{
    const quint64 count = quint64{1} << state.range(0);
    const auto threads = static_cast<int>(state.range(1));
    const std::vector<Complex> x = stimulus(count);
    ComplexBuffer buffer(count);
    Fastest ours;
    Fastest textbook;
#ifdef NOTCHBENCH_FFTW
    Fftw peer(count);
    Fastest fftw;
#endif
    int turn = 0;
    while (state.KeepRunning()) {
        std::copy(x.begin(), x.end(), buffer.data());
        state.SetIterationTime(ours.add(secondsOf([&] { fft(buffer, threads); })));
        if (turn++ % 8 == 0) {
            textbook.add(textbookSeconds(x));
        }
#ifdef NOTCHBENCH_FFTW
        fftw.add(peer.seconds(x));
#endif
    }
    state.counters["best_ms"] = ours.seconds() * 1e3;
    state.counters["against_textbook"] = textbook.seconds() / ours.seconds();
#ifdef NOTCHBENCH_FFTW
    state.counters["against_fftw"] = ours.seconds() / fftw.seconds();
#endif
}

} // namespace

BENCHMARK(transform)
    ->ArgNames({"exponent", "threads"})
    ->ArgsProduct({benchmark::CreateDenseRange(6, 22, 1), {1, 2}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
