// What the crest factor search costs, offscreen: one seed on a thread of its own, and sweeps
// through the dialog. The counter "against_ideal" of a sweep is its time by seeds x one seed /
// cores, with at most the three cores that a sweep uses; it is to stay below 1.15 on a machine that
// is idle.
#include "run_benchmarks.h"
#include "setup/measurement_setup.h"
#include "signal/calculation.h"
#include "signal/dialogs/crest_factor_dialog.h"

#include <benchmark/benchmark.h>

#include <QAbstractButton>
#include <QApplication>
#include <QSpinBox>

#include <algorithm>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// 131072 points stand at 5, 4194304 at 0.
MeasurementSetup setupOf(std::int64_t fftLengthIndex)
{
    MeasurementSetup setup;
    setup.fftLengthIndex = static_cast<int>(fftLengthIndex);
    return setup;
}

double secondsOfOneSeed(const MeasurementSetup& setup)
{
    const auto copy = std::make_shared<const MeasurementSetup>(setup.forOtherThread());
    Calculation worker(1, copy, std::make_shared<QSemaphore>(1));
    const auto start = Clock::now();
    worker.start();
    worker.wait();
    return secondsSince(start);
}

void oneSeed(benchmark::State& state)
{
    const MeasurementSetup setup = setupOf(state.range(0));
    while (state.KeepRunning()) {
        state.SetIterationTime(secondsOfOneSeed(setup));
    }
}

double secondsOfSweep(CrestFactorDialog& dialog)
{
    auto* start = dialog.findChild<QAbstractButton*>(QStringLiteral("start_button"));
    const auto begin = Clock::now();
    start->click();
    while (!start->isEnabled()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return secondsSince(begin);
}

void sweep(benchmark::State& state)
{
    const MeasurementSetup setup = setupOf(state.range(0));
    const auto seeds = static_cast<int>(state.range(1));
    double lone = secondsOfOneSeed(setup);
    for (int run = 0; run < 4; ++run) {
        lone = std::min(lone, secondsOfOneSeed(setup));
    }
    CrestFactorDialog dialog;
    dialog.setSetup(&setup);
    dialog.findChild<QSpinBox*>(QStringLiteral("seed_count_input"))->setValue(seeds);
    dialog.show();
    double best = 1e9;
    while (state.KeepRunning()) {
        const double seconds = secondsOfSweep(dialog);
        best = std::min(best, seconds);
        state.SetIterationTime(seconds);
    }
    const int cores = std::min(QThread::idealThreadCount(), 3);
    state.counters["against_ideal"] = best / (seeds * lone / cores);
}

} // namespace

BENCHMARK(oneSeed)->Arg(5)->Arg(0)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(sweep)->Args({5, 100})->Args({5, 1000})->Args({0, 6})->UseManualTime()->Unit(
    benchmark::kMillisecond);

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
