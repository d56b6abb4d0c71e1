#include "curves/running_curve.h"

#include "base/background.h"
#include "cli/progress.h"

RunningCurve::RunningCurve(QObject* parent) : QObject(parent)
{
    connect(&campaign, &Campaign::measured, this, &RunningCurve::take);
    connect(&campaign, &Campaign::progressed, this, &RunningCurve::tell);
    connect(&campaign, &Campaign::finished, this, &RunningCurve::conclude);
}

RunningCurve::~RunningCurve()
{
    *isStopped = true;
}

void RunningCurve::start(const QStringList& words)
{
    running = true;
    text = QStringLiteral("Making the signal...");
    inBackground(
        this,
        [words, told = isStopped] { return prepareOrder(words, [told] { return told->load(); }); },
        [this](const ReadyOrder& prepared) { begin(prepared); });
}

void RunningCurve::begin(const ReadyOrder& prepared)
{
    ready = prepared;
    for (const QString& warning : qAsConst(ready.warnings)) {
        emit warned(warning);
    }
    if (!ready.failure.isEmpty() || *isStopped) {
        running = false;
        emit ended(ready.failure);
        return;
    }
    soFar = ready.measuring.result;
    if (ready.measuring.request.simulated) {
        soFar.bench.simulated = ready.measuring.request.simulatedText;
    } else {
        soFar.bench.analyzer = QStringLiteral("instruments"); // until they have said their names
    }
    text = QStringLiteral("0 of %1 readings").arg(ready.measuring.plan.readingCount());
    clock.start();
    campaign.start(ready.measuring.plan, ready.measuring.bench);
    emit changed();
}

void RunningCurve::stop()
{
    *isStopped = true;
    text = QStringLiteral("Stopping...");
    campaign.interrupt();
    emit changed();
}

void RunningCurve::take(const QVector<NprPoint>& news)
{
    for (const NprPoint& point : news) {
        points.insert({ready.measuring.plan.levels.indexOf(point.level), point.notch}, point);
    }
    soFar = resultOf(ready.measuring, pointsInOrder(), soFar.bench, {});
}

void RunningCurve::tell(const CampaignProgress& progress)
{
    constexpr int whole = 100;
    if (!*isStopped) {
        text = progressLine(QStringLiteral("readings"), progress.readings, progress.total,
                            clock.elapsed());
    }
    share = static_cast<int>(qint64{whole} * progress.readings / progress.total);
    emit changed();
}

QVector<NprPoint> RunningCurve::pointsInOrder() const
{
    return points.values().toVector();
}

void RunningCurve::conclude()
{
    const CampaignOutcome& outcome = campaign.outcome();
    soFar = resultOf(ready.measuring, outcome.points, outcome.bench, outcome.seeds);
    running = false;
    if (!outcome.warning.isEmpty()) {
        emit warned(outcome.warning);
    }
    emit changed();
    const bool wasLost = !outcome.failure.isEmpty() && !ready.holders.isEmpty();
    emit ended(wasLost ? outcome.failure + ". " + ready.holders : outcome.failure);
}
