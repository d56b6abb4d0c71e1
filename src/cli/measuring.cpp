#include "cli/measuring.h"

#include "campaign/campaign.h"
#include "campaign/instrument_bench.h"
#include "campaign/npr_curve.h"
#include "cli/prepared_measuring.h"
#include "cli/progress.h"
#include "cli/result_output.h"

#include <QEventLoop>

namespace {

void tellBeforehand(const InstrumentBench& bench, const CampaignPlan& plan, Console& console)
{
    console.message(QStringLiteral(
        "the generator must already play the signal of CONFIG, which doesn't travel over this "
        "connection: write it with \"notchbench-cli signal CONFIG --out BASE --format wv\" and "
        "load "
        "it there, or let it fetch it from \"notchbench-cli serve CONFIG\""));
    console.message(QStringLiteral("%1 readings, %2; the level of the %3 goes from %4 to %5 dBm")
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

} // namespace

ExitStatus measure(const Session& session, const CurveRequest& wanted)
{
    const PreparedMeasuring ready = prepareMeasuring(session.arguments, wanted, session.console);
    if (const auto* instruments = dynamic_cast<const InstrumentBench*>(ready.bench.get())) {
        tellBeforehand(*instruments, ready.plan, session.console);
    }
    const CampaignOutcome outcome = run(ready.plan, ready.bench, session);
    if (!outcome.warning.isEmpty()) {
        session.console.warn(outcome.warning);
    }
    const NprResult result = resultOf(ready, outcome.points, outcome.bench, outcome.seeds);
    const ExitStatus status = statusOf(outcome, result, ready.request, session);
    putOut(status, result, ready.context, session.arguments, session.console);
    return status;
}
