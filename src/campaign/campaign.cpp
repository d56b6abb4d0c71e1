#include "campaign/campaign.h"

#include "base/background.h"
#include "campaign/point_sums.h"

#include <atomic>
#include <chrono>
#include <new>

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
            progressed(
                {taken, plan.readingCount(), plan.levels[level], plan.notches[notch].number});
        }
    }

    const CampaignPlan& plan;
    Bench& bench;
    const Interruption& interruption;
    const Progressed& progressed;
    QVector<PointSums> sums; // of the notches of each level
    int taken = 0;
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

// The newest progress on its way to the main thread; at most one is.
struct Messenger
{
    std::mutex mutex;
    CampaignProgress newest;
    bool isUnderway = false;

    // Whether one has to be sent.
    bool put(const CampaignProgress& progress)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        newest = progress;
        return !std::exchange(isUnderway, true);
    }

    CampaignProgress take()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isUnderway = false;
        return newest;
    }
};

} // namespace

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

Campaign::~Campaign()
{
    interruption->raise();
}

void Campaign::interrupt()
{
    interruption->raise();
}

void Campaign::start(const CampaignPlan& plan, const std::shared_ptr<Bench>& bench)
{
    const auto messenger = std::make_shared<Messenger>();
    const auto tell = [this, messenger,
                       home = QPointer<QObject>(this)](const CampaignProgress& progress) {
        if (messenger->put(progress)) {
            inMainThreadFor(home, [this, messenger] { emit progressed(messenger->take()); });
        }
    };
    inBackground(
        this,
        [plan, bench, tell, stop = interruption] { return runCampaign(plan, *bench, *stop, tell); },
        [this](const CampaignOutcome& outcome) {
            result = outcome;
            emit finished();
        });
}
