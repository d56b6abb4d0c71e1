// What a curve costs: 61 levels by 9 notches at 131072 points, a Rapp device four times
// interpolated, from settings to points. Beside it, in turns: a plain numpy and scipy script of the
// same steps with two workers, and FFTW's 61 transforms of 524288 points alone on both cores, where
// they are found. Counters: "against_script" above 1 means that ours is the faster one,
// "against_transforms" is our time over that of the transforms, "processor_against_transforms" the
// same of processor time, "peak_mib" the most memory so far.
#include "campaign/campaign.h"
#include "campaign/simulated_bench.h"
#include "setup/notch_editing.h"
#include "turns.h"

#include <benchmark/benchmark.h>
#ifdef NOTCHBENCH_FFTW
#include <fftw3.h>
#endif

#include <QProcess>

#include <sys/resource.h>

#include <ctime>
#include <thread>

namespace {

MeasurementSetup nineNotches(int lengthIndex)
{
    MeasurementSetup setup;
    setup.fftLengthIndex = lengthIndex;
    setup.nbwSrate = 0.8;
    setup.notchCount = 9;
    setup.notchWidth = 1e6;
    setup.notchOffset = 0.0;
    autoCalculateNotches(setup);
    return setup;
}

void measureCurve(int lengthIndex)
{
    const MeasurementSetup setup = nineNotches(lengthIndex);
    Chain chain;
    chain.device.name = QStringLiteral("rapp");
    chain.device.saturationPower = 0.0;
    CampaignPlan plan;
    plan.levels = levelSteps(-30.0, 0.0, 0.5);
    plan.notches = numberedNotches(setup, static_cast<int>(setup.fftLength()));
    SimulatedBench bench(setup.forOtherThread(), chain, QStringLiteral("rapp"));
    benchmark::DoNotOptimize(runCampaign(plan, bench, Interruption()));
}

double scriptSeconds()
{
    QProcess script;
    script.start(QStringLiteral(NOTCHBENCH_NUMPY_SCRIPT), QStringList());
    script.waitForFinished(-1);
    const double seconds = script.readAllStandardOutput().trimmed().toDouble();
    return script.exitCode() == 0 ? seconds : 0.0;
}

#ifdef NOTCHBENCH_FFTW
// One plan a core, each transforms every second level.
class TransformsAlone
{
public:
    TransformsAlone()
    {
        for (int core = 0; core < cores; ++core) {
            x[core] = fftw_alloc_complex(points);
            plans[core] = fftw_plan_dft_1d(points, x[core], x[core], FFTW_FORWARD, FFTW_MEASURE);
            std::fill_n(reinterpret_cast<double*>(x[core]), 2 * points, 1e-3);
        }
    }
    ~TransformsAlone()
    {
        for (int core = 0; core < cores; ++core) {
            fftw_destroy_plan(plans[core]);
            fftw_free(x[core]);
        }
    }
    TransformsAlone(const TransformsAlone&) = delete;
    TransformsAlone& operator=(const TransformsAlone&) = delete;

    double seconds()
    {
        return secondsOf([this] {
            std::thread other([this] { run(1); });
            run(0);
            other.join();
        });
    }

private:
    static constexpr int cores = 2;
    static constexpr int points = 524288;
    static constexpr int levels = 61;

    void run(int core)
    {
        for (int level = core; level < levels; level += cores) {
            fftw_execute(plans[core]);
        }
    }

    fftw_complex* x[cores] = {};
    fftw_plan plans[cores] = {};
};
#endif

double peakMebibytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// In turns, so that other load meets all alike.
void curve(benchmark::State& state)
{
    Fastest ours;
    Fastest script;
    while (state.KeepRunning()) {
        state.SetIterationTime(ours.add(secondsOf([] { measureCurve(5); })));
        if (const double seconds = scriptSeconds(); seconds > 0.0) {
            script.add(seconds);
        }
    }
    state.counters["peak_mib"] = peakMebibytes();
    if (script.isMeasured()) {
        state.counters["against_script"] = script.seconds() / ours.seconds();
    }
}

#ifdef NOTCHBENCH_FFTW
// Of all threads of this process.
double processorSeconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void curveAndTransforms(benchmark::State& state)
{
    TransformsAlone transforms;
    Fastest ours;
    Fastest theirs;
    Fastest oursOnProcessors;
    Fastest theirsOnProcessors;
    while (state.KeepRunning()) {
        const double begin = processorSeconds();
        state.SetIterationTime(ours.add(secondsOf([] { measureCurve(5); })));
        const double middle = processorSeconds();
        theirs.add(transforms.seconds());
        oursOnProcessors.add(middle - begin);
        theirsOnProcessors.add(processorSeconds() - middle);
    }
    state.counters["against_transforms"] = ours.seconds() / theirs.seconds();
    state.counters["processor_against_transforms"] =
        oursOnProcessors.seconds() / theirsOnProcessors.seconds();
}
BENCHMARK(curveAndTransforms)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);
#endif

void longCurve(benchmark::State& state)
{
    while (state.KeepRunning()) {
        state.SetIterationTime(secondsOf([] { measureCurve(0); }));
    }
    state.counters["peak_mib"] = peakMebibytes();
}

} // namespace

BENCHMARK(curve)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);
BENCHMARK(longCurve)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
