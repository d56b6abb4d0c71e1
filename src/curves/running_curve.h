// A curve that is being measured: from the words of the command line to a result that grows. Main
// thread; all work is in the background.
#pragma once

#include "campaign/campaign.h"
#include "curves/order_check.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>

#include <atomic>
#include <memory>

class RunningCurve : public QObject
{
    Q_OBJECT

public:
    explicit RunningCurve(QObject* parent = nullptr);
    ~RunningCurve() override; // the work in the background ends by itself, soon

    // Once an object.
    void start(const QStringList& words);
    // Ends after the reading or step in progress and leaves the bench as it is to be left; ended()
    // follows.
    void stop();

    bool isRunning() const { return running; }
    const PreparedMeasuring& measuring() const { return ready.measuring; }
    // Of the points so far.
    const NprResult& result() const { return soFar; }
    // Readings done, those there are, time left; for people.
    QString progressText() const { return text; }
    int percent() const { return share; }

signals:
    void changed();
    void warned(const QString& warning);
    // failure: what ended it early; empty when it is done or was stopped.
    void ended(const QString& failure);

private:
    void begin(const ReadyOrder& prepared);
    void take(const QVector<NprPoint>& points);
    void tell(const CampaignProgress& progress);
    void conclude();
    QVector<NprPoint> pointsInOrder() const;

    Campaign campaign;
    ReadyOrder ready;
    QMap<QPair<int, int>, NprPoint> points; // by the places of level and notch in the plan
    NprResult soFar;
    QElapsedTimer clock;
    QString text;
    int share = 0;
    bool running = false;
    // Told to the preparation in the background.
    std::shared_ptr<std::atomic<bool>> isStopped = std::make_shared<std::atomic<bool>>(false);
};
