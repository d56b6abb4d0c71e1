// Keeps the blocking traffic of the noise power ratio measurement off the main thread. In the
// mode "Cont" its own thread measures without a pause; in "Single" that thread sleeps and each
// request runs one measurement on the global thread pool.
//
// The object lives on the main thread, which calls everything here but measureOnce(). It works
// on its own copy of the analyzer: the record is never touched from another thread.
#pragma once

#include "instruments/analyzer.h"

#include <QFuture>
#include <QMetaType>
#include <QMutex>
#include <QMutexLocker>
#include <QSemaphore>
#include <QThread>
#include <QVector>
#include <QWaitCondition>

#include <array>
#include <atomic>
#include <memory>

class KORemoteException;

Q_DECLARE_METATYPE(Analyzer)

class NPRMeasurementThread : public QThread
{
    Q_OBJECT

public:
    // Signal power in dBm, NPR lower in dB, NPR upper in dB.
    using Result = std::array<double, 3>;

    NPRMeasurementThread();
    // Asks the thread to stop and waits for its end, which takes at most one measurement.
    ~NPRMeasurementThread() override;

    // Replaces the analyzer to measure with; waits for the end of a measurement.
    void setAnalyzer(const Analyzer& newAnalyzer);
    // The record's analyzer has changed. The next measurement takes it over; never waits.
    void offerAnalyzer(const Analyzer& changed);

    void pause(); // takes effect after the measurement in progress, and waits for it
    void resume();
    void stop(); // does not wait

    // One measurement, on the calling thread; measurements run one after the other.
    void measureOnce();
    void requestSingleMeasurement();

    // The newest reading; a failed measurement leaves the one before.
    Result results() const;

signals:
    void measurementFinished();
    void measurementError(KORemoteException* failure); // valid until all receivers have returned
    // A measurement had to connect first: the record takes the connection over.
    void analyzerConnected(const Analyzer& connected);

protected:
    void run() override;

private:
    void measure(QMutexLocker& lock); // with the mutex held; unlocks before it tells a failure
    void serveRequest();
    void takeOfferedAnalyzer();
    void sleepWhilePaused();
    void waitForMainThread();
    void wake();

    std::atomic<bool> running{true};
    std::atomic<bool> paused{false};
    Analyzer analyzer; // guarded by mutex
    // Made by a measurement and not yet in an offered analyzer; guarded by mutex.
    std::shared_ptr<AnalyzerCommands> ownConnection;
    std::shared_ptr<const Analyzer> offered; // atomic access; null when taken
    std::shared_ptr<const Result> result;    // atomic access
    QMutex mutex;                            // held during one measurement
    QMutex sleepMutex;                       // held for a look at paused, never for traffic
    QWaitCondition wakeCondition;
    // Passes of run() that the main thread may still have to take note of. A device that fails
    // at once must not fill the main thread's queue without bound.
    QSemaphore unseenPasses{2};
    QVector<QFuture<void>> requests; // main thread
};
