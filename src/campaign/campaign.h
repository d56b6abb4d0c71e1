// Runs a plan on a bench and gives back what was measured, whatever ended it.
#pragma once

#include "campaign/bench.h"

#include <QObject>
#include <QTimer>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

// Asks a campaign to end after the reading in progress. Any thread.
class Interruption
{
public:
    void raise();
    bool isRaised() const;
    // Waits so long, or until it is raised.
    void waitFor(double seconds) const;

private:
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    bool raised = false;
};

struct CampaignProgress
{
    qint64 readings = 0; // taken so far
    qint64 total = 0;
    double level = 0.0; // of the last reading, dBm
    int notch = 0;      // its number
    NprPoint point;     // that it belongs to, as far as it is known by now
};

struct CampaignOutcome
{
    enum class Ending { Done, Interrupted, Failed };

    Ending ending = Ending::Failed;
    QString failure = QStringLiteral("Not enough memory or no thread"); // of Ending::Failed
    QString warning; // the bench could not be left as it should; empty otherwise
    // Those that have a reading, by level and notch in the order of the plan.
    QVector<NprPoint> points;
    BenchNames bench;
    QVector<quint32> seeds;
};

// On the calling thread. The first level and notch are begun anew for each stimulus, so that an
// interrupted average has all points. progressed is called after each reading.
CampaignOutcome runCampaign(const CampaignPlan& plan, Bench& bench,
                            const Interruption& interruption,
                            const std::function<void(const CampaignProgress&)>& progressed = {});

// The same in the background. Main thread.
class Campaign : public QObject
{
    Q_OBJECT

public:
    explicit Campaign(QObject* parent = nullptr);
    ~Campaign() override; // interrupts; what was measured is dropped

    // Once an object.
    void start(const CampaignPlan& plan, const std::shared_ptr<Bench>& bench);
    // Ends after the reading in progress; finished() follows.
    void interrupt();

    const CampaignOutcome& outcome() const { return result; }

signals:
    // Not every reading when they come quickly.
    void progressed(const CampaignProgress& progress);
    // Before it: the points that were read since the last time, in their order; one may come
    // several times.
    void measured(const QVector<NprPoint>& points);
    void finished();

private:
    class Letterbox;

    void tellProgress();

    QTimer look;
    std::shared_ptr<Letterbox> letterbox;
    std::shared_ptr<Interruption> interruption = std::make_shared<Interruption>();
    CampaignOutcome result;
};
