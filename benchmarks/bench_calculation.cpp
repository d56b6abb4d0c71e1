// A whole calculation: random phases of a fixed seed, a bandwidth of 0.8 and notches, up to the
// crest factor. The arguments are the exponent of the length and the number of notches. Beside it,
// in turns, the literal order of the steps in one thread ("against_literal", how often ours is
// faster) and, where python3 has numpy and scipy, a script of the same steps ("against_numpy").
#include "setup/measurement_setup.h"
#include "signal/reference_pipeline.h"
#include "turns.h"

#include <benchmark/benchmark.h>

#include <QProcess>

namespace {

MeasurementSetup setupOf(int exponent, int notches)
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 22 - exponent;
    setup.nbwSrate = 0.8;
    const int bins = 1 << exponent;
    const int middle = notches / 2;
    for (int row = 0; row < notches; ++row) {
        Notch notch;
        const double place = (row - middle) * 0.2 / 8.4 * 9.0 / notches;
        notch.startIndex = static_cast<qint32>(place * bins);
        notch.stopIndex = notch.startIndex + bins / 200 * 9 / notches;
        notch.depth = -60.0;
        setup.notches->items.append(notch);
    }
    return setup;
}

void addNumpy(Fastest& numpy, int exponent)
{
    QProcess script;
    script.start(NOTCHBENCH_NUMPY_SCRIPT, {"2", QString::number(1 << exponent)});
    script.waitForFinished(-1);
    if (script.exitStatus() == QProcess::NormalExit && script.exitCode() == 0) {
        numpy.add(script.readAllStandardOutput().trimmed().toDouble());
    }
}

void calculation(benchmark::State& state)
{
    const auto exponent = static_cast<int>(state.range(0));
    MeasurementSetup setup = setupOf(exponent, static_cast<int>(state.range(1)));
    Fastest ours;
    while (state.KeepRunning()) {
        ours.add(secondsOf([&] { setup.calculateSignal(); }));
    }
    state.counters["best_ms"] = ours.seconds() * 1e3;
}

void againstPeers(benchmark::State& state)
{
    const auto exponent = static_cast<int>(state.range(0));
    MeasurementSetup setup = setupOf(exponent, static_cast<int>(state.range(1)));
    SignalData data;
    Fastest ours;
    Fastest literal;
    Fastest numpy;
    while (state.KeepRunning()) {
        for (int turn = 0; turn < 3; ++turn) {
            state.SetIterationTime(ours.add(secondsOf([&] { setup.calculateSignal(); })));
        }
        literal.add(secondsOf([&] { reference::calculate(setup, data); }));
        addNumpy(numpy, exponent);
    }
    state.counters["against_literal"] = literal.seconds() / ours.seconds();
    if (numpy.isMeasured()) {
        state.counters["against_numpy"] = numpy.seconds() / ours.seconds();
    }
}

} // namespace

BENCHMARK(againstPeers)
    ->Args({22, 9})
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(calculation)
    ->ArgNames({"exponent", "notches"})
    ->ArgsProduct({benchmark::CreateDenseRange(6, 22, 1), {9}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(calculation)
    ->ArgNames({"exponent", "notches"})
    ->ArgsProduct({{17}, {0, 1, 3, 30, 100, 300, 999}})
    ->ArgsProduct({{22}, {0, 1, 3, 30, 100, 300, 999}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
