#include "measurement/npr_measurement_thread.h"

#include "remote/ko_remote_exception.h"

#include <QtConcurrent>

#include <algorithm>

NPRMeasurementThread::NPRMeasurementThread()
    : result(std::make_shared<const Result>(Result{0.0, 0.0, 0.0}))
{
    qRegisterMetaType<Analyzer>();
}

NPRMeasurementThread::~NPRMeasurementThread()
{
    stop();
    constexpr unsigned long betweenWakesMs = 20;
    while (!wait(betweenWakesMs)) {
        wake();
    }
    for (QFuture<void>& request : requests) {
        request.waitForFinished();
    }
}

void NPRMeasurementThread::setAnalyzer(const Analyzer& newAnalyzer)
{
    const QMutexLocker lock(&mutex);
    std::atomic_store(&offered, std::shared_ptr<const Analyzer>());
    analyzer = newAnalyzer;
    ownConnection.reset();
}

void NPRMeasurementThread::offerAnalyzer(const Analyzer& changed)
{
    std::atomic_store(&offered, std::make_shared<const Analyzer>(changed));
}

void NPRMeasurementThread::takeOfferedAnalyzer()
{
    const auto changed = std::atomic_exchange(&offered, std::shared_ptr<const Analyzer>());
    if (!changed) {
        return;
    }
    const Analyzer own = analyzer;
    analyzer = *changed;
    if (ownConnection && !analyzer.commands) { // it is still on its way to the record
        analyzer.commands = own.commands;
        analyzer.remote = own.remote;
    } else {
        ownConnection.reset();
    }
}

void NPRMeasurementThread::pause()
{
    // Set before the wait: the thread could win the mutex again and again.
    paused = true;
    const QMutexLocker lock(&mutex);
}

void NPRMeasurementThread::resume()
{
    const QMutexLocker lock(&sleepMutex);
    paused = false;
    wakeCondition.wakeAll();
}

void NPRMeasurementThread::stop()
{
    running = false;
    wake();
}

void NPRMeasurementThread::wake()
{
    const QMutexLocker lock(&sleepMutex);
    wakeCondition.wakeAll();
    unseenPasses.release();
}

void NPRMeasurementThread::measureOnce()
{
    QMutexLocker lock(&mutex);
    measure(lock);
}

void NPRMeasurementThread::measure(QMutexLocker& lock)
{
    takeOfferedAnalyzer();
    try {
        if (!analyzer.commands) {
            analyzer.init();
            ownConnection = analyzer.commands;
            emit analyzerConnected(analyzer);
        }
        if (!analyzer.commands) {
            throwRemoteException(analyzer.deviceMessage);
        }
        const Result reading = analyzer.commands->measureChannelPower();
        std::atomic_store(&result, std::make_shared<const Result>(reading));
        analyzer.commands->goToLocal();
        emit measurementFinished();
    } catch (KORemoteException* failure) {
        lock.unlock();
        const std::unique_ptr<KORemoteException> owned(failure);
        emit measurementError(failure);
    }
}

void NPRMeasurementThread::requestSingleMeasurement()
{
    requests.erase(std::remove_if(requests.begin(), requests.end(),
                                  [](const QFuture<void>& each) { return each.isFinished(); }),
                   requests.end());
    requests.append(QtConcurrent::run([this] { serveRequest(); }));
}

// A request that still waits for its turn when the program ends is dropped.
void NPRMeasurementThread::serveRequest()
{
    QMutexLocker lock(&mutex);
    if (running) {
        measure(lock);
    }
}

NPRMeasurementThread::Result NPRMeasurementThread::results() const
{
    return *std::atomic_load(&result);
}

void NPRMeasurementThread::sleepWhilePaused()
{
    QMutexLocker lock(&sleepMutex);
    if (paused && running) { // deliberately no loop: any wake goes on to the next pass
        wakeCondition.wait(&sleepMutex);
    }
}

void NPRMeasurementThread::waitForMainThread()
{
    unseenPasses.acquire();
    QMetaObject::invokeMethod(
        this, [this] { unseenPasses.release(); }, Qt::QueuedConnection);
}

void NPRMeasurementThread::run()
{
    while (running) {
        sleepWhilePaused();
        if (!running) {
            return;
        }
        measureOnce();
        waitForMainThread();
    }
}
