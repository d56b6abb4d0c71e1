// The transform beside its textbook loop, in place on the same data, one thread. The counter
// "against_textbook" of the production rows is the ratio of the two times at that length.
#include "transform/reference_transform.h"
#include "transform/transform.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>

namespace {

using Clock = std::chrono::steady_clock;
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

// Seconds of the textbook loop, the best of three, once a length.
double textbookSeconds(quint64 count)
{
    static std::map<quint64, double> known;
    const auto found = known.find(count);
    if (found != known.end()) {
        return found->second;
    }
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        std::vector<Complex> x = stimulus(count);
        const auto start = Clock::now();
        reference::fft(x);
        best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
        benchmark::DoNotOptimize(x.data());
    }
    return known[count] = best;
}

void transform(benchmark::State& state)
{
    const quint64 count = quint64{1} << state.range(0);
    const std::vector<Complex> x = stimulus(count);
    ComplexBuffer buffer(count);
    double best = 1e9;
    for (auto _ : state) {
        std::copy(x.begin(), x.end(), buffer.data());
        const auto start = Clock::now();
        fft(buffer);
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        best = std::min(best, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["against_textbook"] = textbookSeconds(count) / best;
}

} // namespace

BENCHMARK(transform)->DenseRange(6, 22, 4)->Arg(17)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
