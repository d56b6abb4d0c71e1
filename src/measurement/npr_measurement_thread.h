// Keeps the blocking traffic of the noise power ratio measurement off the main thread. In the
// mode "Cont" its own thread measures without a pause; in "Single" that thread sleeps and each
// request runs one measurement on a worker thread.
//
// Each measurement holds the analyzer's link for one pass, and takes its turn there before the
// mutex: so pause() waits for the pass in progress and for nothing else, and whoever asks for the
// link during a pass comes before the next one.
//
// The object lives on the main thread, which calls everything here but measureOnce().
#pragma once

#include "instruments/analyzer.h"

#include <QMutex>
#include <QMutexLocker>
#include <QSemaphore>
#include <QThread>
#include <QWaitCondition>

#include <array>
#include <atomic>
#include <memory>

class KORemoteException;

class NPRMeasurementThread : public QThread
{
    Q_OBJECT

public:
    // Signal power in dBm, NPR lower in dB, NPR upper in dB.
    using Result = std::array<double, 3>;

    NPRMeasurementThread();
    // Asks the thread to stop and waits for its end, which takes at most one measurement; requests
    // that still wait for their turn are dropped.
    ~NPRMeasurementThread() override;

    // The analyzer of the measurements to come, by its settings; never waits.
    void setAnalyzer(const Analyzer& newAnalyzer);

    void pause(); // takes effect after the measurement in progress, and waits for it
    void resume();
    void stop(); // does not wait

    // One measurement, on the calling thread; measurements run one after the other.
    void measureOnce();
    // Takes its place at the analyzer's link at once.
    void requestSingleMeasurement();

    // The newest reading; a failed measurement leaves the one before.
    Result results() const;

signals:
    void measurementFinished();
    void measurementError(KORemoteException* failure); // valid until all receivers have returned

protected:
    void run() override;

private:
    class Requests;

    void measureNextPass();
    void measure(const Analyzer& device, QMutexLocker& lock); // locked; unlocks to tell a failure
    void read(const Analyzer& device);
    void tell(const Analyzer& device, KORemoteException& failure);
    void sleepWhilePaused();
    void waitForMainThread();
    void wake();

    std::atomic<bool> running{true};
    std::atomic<bool> paused{false};
    std::shared_ptr<const Analyzer> analyzer; // atomic access
    std::shared_ptr<const Result> result;     // atomic access
    QMutex mutex;                             // held during one measurement
    QMutex sleepMutex;                        // held for a look at paused, never for traffic
    QWaitCondition wakeCondition;
    // Passes of run() that the main thread may still have to take note of. A device that fails
    // at once must not fill the main thread's queue without bound.
    QSemaphore unseenPasses{2};
    std::shared_ptr<Requests> requests;
};
