#include "cli/prepared_measuring.h"

#include "campaign/instrument_bench.h"
#include "campaign/npr_curve.h"
#include "campaign/simulated_bench.h"
#include "campaign/subtraction.h"
#include "cli/exit_status.h"
#include "cli/made_signal.h"
#include "cli/new_result.h"
#include "cli/setup_arguments.h"
#include "cli/theory_argument.h"

namespace {

// A bench and the level that its settings have.
struct ChosenBench
{
    std::shared_ptr<Bench> bench;
    double presentLevel;
};

ChosenBench chosenBench(const MeasurementSetup& setup, const MeasuringRequest& request)
{
    const auto instruments = std::make_shared<InstrumentBench>(setup);
    const double presentLevel = instruments->presentLevel();
    if (!request.simulated) {
        return {instruments, presentLevel};
    }
    const QString objection = SimulatedBench::objectionTo(setup.signal);
    if (!objection.isEmpty()) {
        failFile(objection);
    }
    return {std::make_shared<SimulatedBench>(setup.forOtherThread(), *request.simulated,
                                             request.simulatedText),
            presentLevel};
}

ResultContext contextOf(const MeasurementSetup& setup, const MeasuringRequest& request,
                        const CampaignPlan& plan, const Arguments& arguments,
                        const Measuring& wanted)
{
    ResultContext context;
    context.limit = request.limit;
    context.thresholds = wanted.thresholds;
    if (request.theory) {
        const QString name = arguments.value("theory");
        context.theoryName = "theory " + (name == "same" ? request.simulatedText : name);
        context.theory = theoryPoints(setup, *request.theory, plan);
    }
    return context;
}

} // namespace

void requireSubtractable(const MeasuringRequest& request, const NprResult& wanted,
                         const CampaignPlan& plan, const Arguments& arguments)
{
    if (!request.without) {
        return;
    }
    const QString objection = objectionToSubtracting(*request.without, wanted, plan);
    if (!objection.isEmpty()) {
        failUsage("--subtract " + arguments.value("subtract") + ": " + objection +
                  "; measure it with the same notches, levels and bandwidth");
    }
}

PreparedMeasuring prepareMeasuring(const Arguments& arguments, const Measuring& wanted,
                                   Console& console)
{
    PreparedMeasuring ready;
    ready.request = requestOf(arguments);
    MeasurementSetup setup = readSetup(arguments, console);
    requireNotchMode(setup);
    ready.result = newResult(setup);
    makeSignal(setup);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    warnUnlessNoiseLike(statistics, console);
    ready.result.signal = figuresOf(setup, statistics);
    const ChosenBench chosen = chosenBench(setup, ready.request);
    ready.bench = chosen.bench;
    ready.plan = planOf(
        setup, ready.request,
        wanted.levels.isEmpty() ? QVector<double>{chosen.presentLevel} : wanted.levels, arguments);
    if (ready.request.without) {
        requireSubtractable(*ready.request.without, ready.result, ready.plan, arguments);
    }
    ready.context = contextOf(setup, ready.request, ready.plan, arguments, wanted);
    ready.hasCurves = !wanted.levels.isEmpty();
    return ready;
}

NprResult resultOf(const PreparedMeasuring& ready, const QVector<NprPoint>& points,
                   const BenchNames& bench, const QVector<quint32>& seeds)
{
    NprResult result = ready.result;
    result.bench = bench;
    result.signal.seeds = seeds;
    result.points = points;
    for (NprPoint& point : result.points) {
        if (!result.signal.noiseLike) {
            point.addMark(PointMark::notNoiseLike);
        }
    }
    if (ready.request.without) {
        subtractBench(ready.request.without->points, result.points);
    }
    if (ready.request.limit) {
        applyLimit(result.points, *ready.request.limit);
    }
    if (ready.hasCurves) {
        result.curves = curvesOf(result.points, ready.context.thresholds);
    }
    return result;
}
