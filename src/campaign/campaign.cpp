#include "campaign/campaign.h"

#include "base/background.h"
#include "campaign/point_sums.h"

#include <chrono>
#include <new>
#include <utility>

namespace {

using Progressed = std::function<void(const CampaignProgress&)>;

// One run: the nested order of the readings, and their sums.
class Run
{
public:
    Run(const CampaignPlan& itsPlan, Bench& itsBench, const Interruption& itsInterruption,
        const Progressed& itsProgressed)
        : plan(itsPlan),
          bench(itsBench),
          interruption(itsInterruption),
          progressed(itsProgressed),
          sums(plan.levels.size() * plan.notches.size())
    {
    }

    // False when it was interrupted.
    bool measure()
    {
        bench.prepare(plan);
        const int stimuli = bench.stimulusCount(plan.averages);
        for (int stimulus = 0; stimulus < stimuli; ++stimulus) {
            if (interruption.isRaised()) {
                return false;
            }
            bench.play(stimulus);
            for (int level = 0; level < plan.levels.size(); ++level) {
                if (!measureLevel(level, plan.averages / stimuli)) {
                    return false;
                }
            }
        }
        return true;
    }

    QVector<NprPoint> points() const
    {
        QVector<NprPoint> all;
        for (int k = 0; k < sums.size(); ++k) {
            if (!sums[k].isEmpty()) {
                all << sums[k].point(plan.levels[k / plan.notches.size()],
                                     plan.notches[k % plan.notches.size()]);
            }
        }
        return all;
    }

private:
    bool measureLevel(int level, int readings)
    {
        if (interruption.isRaised()) {
            return false;
        }
        bench.setLevel(plan.levels[level]);
        interruption.waitFor(plan.settleSeconds);
        for (int notch = 0; notch < plan.notches.size(); ++notch) {
            if (interruption.isRaised()) {
                return false;
            }
            bench.tune(plan.notches[notch]);
            for (int reading = 0; reading < readings; ++reading) {
                if (interruption.isRaised()) {
                    return false;
                }
                sums[level * plan.notches.size() + notch].add(bench.read(), reading == 0);
                tell(level, notch);
            }
        }
        return true;
    }

    void tell(int level, int notch)
    {
        ++taken;
        if (progressed) {
            const NumberedNotch& where = plan.notches[notch];
            const PointSums& sum = sums.at(level * plan.notches.size() + notch);
            progressed({taken, plan.readingCount(), plan.levels[level], where.number,
                        sum.point(plan.levels[level], where)});
        }
    }

    const CampaignPlan& plan;
    Bench& bench;
    const Interruption& interruption;
    const Progressed& progressed;
    QVector<PointSums> sums; // of the notches of each level
    qint64 taken = 0;
};

void measure(Run& run, CampaignOutcome& outcome)
{
    using Ending = CampaignOutcome::Ending;
    try {
        outcome.ending = run.measure() ? Ending::Done : Ending::Interrupted;
        outcome.failure.clear();
    } catch (const BenchFailure& failure) {
        outcome.failure = failure.text;
    } catch (const std::bad_alloc&) {
        outcome.failure = QStringLiteral("Not enough memory");
    }
}

} // namespace

// The newest progress and the points since the last one, left by the campaign and fetched by the
// main thread.
class Campaign::Letterbox
{
public:
    void put(const CampaignProgress& progress)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        newest = progress;
        points << progress.point;
    }
    // None when it was fetched before.
    std::optional<CampaignProgress> fetch(QVector<NprPoint>& itsPoints)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        itsPoints = std::exchange(points, {});
        return std::exchange(newest, std::nullopt);
    }

private:
    std::mutex mutex;
    std::optional<CampaignProgress> newest;
    QVector<NprPoint> points;
};

void Interruption::raise()
{
    const std::lock_guard<std::mutex> lock(mutex);
    raised = true;
    changed.notify_all();
}

bool Interruption::isRaised() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return raised;
}

void Interruption::waitFor(double seconds) const
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return raised; });
}

CampaignOutcome runCampaign(const CampaignPlan& plan, Bench& bench,
                            const Interruption& interruption, const Progressed& progressed)
{
    CampaignOutcome outcome;
    Run run(plan, bench, interruption, progressed);
    measure(run, outcome);
    outcome.warning = bench.finish();
    outcome.points = run.points();
    outcome.bench = bench.names();
    outcome.seeds = bench.seeds();
    return outcome;
}

Campaign::Campaign(QObject* parent) : QObject(parent), letterbox(std::make_shared<Letterbox>())
{
    constexpr int interval = 50; // ms, as often as a person can follow
    look.setInterval(interval);
    connect(&look, &QTimer::timeout, this, &Campaign::tellProgress);
}

Campaign::~Campaign()
{
    interruption->raise();
}

void Campaign::interrupt()
{
    interruption->raise();
}

void Campaign::tellProgress()
{
    QVector<NprPoint> points;
    if (const std::optional<CampaignProgress> progress = letterbox->fetch(points)) {
        emit measured(points);
        emit progressed(*progress);
    }
}

void Campaign::start(const CampaignPlan& plan, const std::shared_ptr<Bench>& bench)
{
    look.start();
    inBackground(
        this,
        [plan, bench, box = letterbox, stop = interruption] {
            return runCampaign(plan, *bench, *stop,
                               [&box](const CampaignProgress& progress) { box->put(progress); });
        },
        [this](const CampaignOutcome& outcome) {
            look.stop();
            tellProgress();
            result = outcome;
            emit finished();
        });
}
