#include "cli/measuring.h"

#include "campaign/campaign.h"
#include "campaign/instrument_bench.h"
#include "campaign/npr_curve.h"
#include "campaign/simulated_bench.h"
#include "campaign/subtraction.h"
#include "cli/made_signal.h"
#include "cli/measuring_request.h"
#include "cli/new_result.h"
#include "cli/progress.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/theory_argument.h"

#include <QEventLoop>

#include <cmath>

namespace {

// A bench and what people are told before it begins.
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

// Before hours of measuring, not after them.
void requireSubtractable(const MeasuringRequest& request, const NprResult& result,
                         const CampaignPlan& plan, const Arguments& arguments)
{
    if (!request.without) {
        return;
    }
    const QString objection = objectionToSubtracting(*request.without, result, plan);
    if (!objection.isEmpty()) {
        failUsage("--subtract " + arguments.value("subtract") + ": " + objection +
                  "; measure it with the same notches, levels and bandwidth");
    }
}

ResultContext contextOf(const MeasurementSetup& setup, const MeasuringRequest& request,
                        const CampaignPlan& plan, const Session& session, const Measuring& wanted)
{
    ResultContext context;
    context.limit = request.limit;
    context.thresholds = wanted.thresholds;
    if (request.theory) {
        const QString name = session.arguments.value("theory");
        context.theoryName = "theory " + (name == "same" ? request.simulatedText : name);
        context.theory = theoryPoints(setup, *request.theory, plan);
    }
    return context;
}

QString durationText(double seconds)
{
    const auto whole = static_cast<qint64>(std::ceil(seconds));
    return whole < 60 ? QStringLiteral("%1 s").arg(whole)
                      : QStringLiteral("%1:%2:%3 h")
                            .arg(whole / 3600)
                            .arg(whole / 60 % 60, 2, 10, QLatin1Char('0'))
                            .arg(whole % 60, 2, 10, QLatin1Char('0'));
}

void tellBeforehand(const InstrumentBench& bench, const CampaignPlan& plan, Console& console)
{
    console.message(QStringLiteral(
        "the generator must already play the signal of CONFIG, which doesn't travel over this "
        "connection: write it with \"notchbench-cli signal CONFIG --out BASE --format wv\" and "
        "load "
        "it there, or let it fetch it from \"notchbench-cli serve CONFIG\""));
    console.message(
        QStringLiteral("%1 readings, about %2; the level of the %3 goes from %4 to %5 dBm")
            .arg(plan.readingCount())
            .arg(durationText(bench.expectedSeconds(plan)), bench.levelledInstrument())
            .arg(plan.lowestLevel())
            .arg(plan.highestLevel()));
}

CampaignOutcome run(const CampaignPlan& plan, const std::shared_ptr<Bench>& bench,
                    const Session& session)
{
    Progress progress(session.console, "readings", session.arguments.has("quiet"));
    Campaign campaign;
    QEventLoop loop;
    QObject::connect(&campaign, &Campaign::finished, &loop, &QEventLoop::quit);
    QObject::connect(
        &campaign, &Campaign::progressed, &loop,
        [&progress](const CampaignProgress& now) { progress.show(now.readings, now.total); });
    QObject::connect(&session.stop, &StopSignals::requested, &campaign, &Campaign::interrupt);
    campaign.start(plan, bench);
    if (session.stop.received() != 0) {
        campaign.interrupt();
    }
    loop.exec();
    return campaign.outcome();
}

ExitStatus statusOf(const CampaignOutcome& outcome, const NprResult& result,
                    const MeasuringRequest& request, const Session& session)
{
    switch (outcome.ending) {
    case CampaignOutcome::Ending::Failed:
        session.console.message(outcome.failure + "; what was measured is kept");
        return request.simulated ? ExitStatus::FileFailed : ExitStatus::InstrumentFailed;
    case CampaignOutcome::Ending::Interrupted:
        return statusOfSignal(session.stop.received());
    case CampaignOutcome::Ending::Done:
        break;
    }
    if (!outcome.warning.isEmpty()) {
        return ExitStatus::InstrumentFailed;
    }
    return hasMissedLimit(result.points) ? ExitStatus::LimitMissed : ExitStatus::Done;
}

// The bytes of a result's points are those that this command's measurement gave, and what follows.
void conclude(NprResult& result, const CampaignOutcome& outcome, const MeasuringRequest& request,
              const Measuring& wanted, const Session& session)
{
    result.bench = outcome.bench;
    result.signal.seeds = outcome.seeds;
    result.points = outcome.points;
    for (NprPoint& point : result.points) {
        if (!result.signal.noiseLike) {
            point.addMark(PointMark::notNoiseLike);
        }
    }
    if (request.without) {
        subtractBench(request.without->points, result.points);
    }
    if (request.limit) {
        applyLimit(result.points, *request.limit);
    }
    if (!wanted.levels.isEmpty()) {
        result.curves = curvesOf(result.points, wanted.thresholds);
    }
    if (!outcome.warning.isEmpty()) {
        session.console.warn(outcome.warning);
    }
}

// Writes what was measured whatever the campaign's end; the first failure decides the status.
void putOutAfter(ExitStatus status, const NprResult& result, const ResultContext& context,
                 const Session& session)
{
    try {
        putOut(result, context, session.arguments, session.console);
    } catch (const Failure& failure) {
        if (status == ExitStatus::Done || status == ExitStatus::LimitMissed) {
            throw;
        }
        session.console.message(failure.text);
    }
}

} // namespace

ExitStatus measure(const Session& session, const Measuring& wanted)
{
    const MeasuringRequest request = requestOf(session.arguments);
    MeasurementSetup setup = readSetup(session.arguments, session.console);
    requireNotchMode(setup);
    NprResult result = newResult(setup);
    makeSignal(setup);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    warnUnlessNoiseLike(statistics, session.console);
    result.signal = figuresOf(setup, statistics);
    const ChosenBench chosen = chosenBench(setup, request);
    const CampaignPlan plan =
        planOf(setup, request,
               wanted.levels.isEmpty() ? QVector<double>{chosen.presentLevel} : wanted.levels,
               session.arguments);
    requireSubtractable(request, result, plan, session.arguments);
    const ResultContext context = contextOf(setup, request, plan, session, wanted);
    setup.signal = SignalData(); // the bench has it, where it plays it
    if (const auto* instruments = dynamic_cast<const InstrumentBench*>(chosen.bench.get())) {
        tellBeforehand(*instruments, plan, session.console);
    }
    const CampaignOutcome outcome = run(plan, chosen.bench, session);
    conclude(result, outcome, request, wanted, session);
    const ExitStatus status = statusOf(outcome, result, request, session);
    putOutAfter(status, result, context, session);
    return status;
}
