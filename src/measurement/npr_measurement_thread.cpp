#include "measurement/npr_measurement_thread.h"

#include "base/worker_threads.h"
#include "remote/ko_remote_exception.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <new>
#include <utility>

// The requests that have their turn, so that the object isn't destroyed under them. One that gets
// its turn later finds this closed.
class NPRMeasurementThread::Requests
{
public:
    // As long as it exists the object waits with its end. False when it has begun to end.
    class Served
    {
    public:
        explicit Served(Requests& all) : requests(all), began(all.begin()) {}
        ~Served() { requests.end(began); }
        Served(const Served&) = delete;
        Served& operator=(const Served&) = delete;
        explicit operator bool() const { return began; }

    private:
        Requests& requests;
        bool began;
    };

    void close()
    {
        std::unique_lock<std::mutex> lock(mutex);
        open = false;
        ended.wait(lock, [this] { return inProgress == 0; });
    }

private:
    bool begin()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        inProgress += open ? 1 : 0;
        return open;
    }

    void end(bool began)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        inProgress -= began ? 1 : 0;
        ended.notify_all();
    }

    std::mutex mutex;
    std::condition_variable ended;
    bool open = true;
    int inProgress = 0;
};

NPRMeasurementThread::NPRMeasurementThread()
    : analyzer(std::make_shared<const Analyzer>()),
      result(std::make_shared<const Result>(Result{0.0, 0.0, 0.0})),
      requests(std::make_shared<Requests>())
{
}

NPRMeasurementThread::~NPRMeasurementThread()
{
    stop();
    constexpr unsigned long betweenWakesMs = 20;
    while (!wait(betweenWakesMs)) {
        wake();
    }
    requests->close();
}

void NPRMeasurementThread::setAnalyzer(const Analyzer& newAnalyzer)
{
    std::atomic_store(&analyzer, std::make_shared<const Analyzer>(newAnalyzer));
}

void NPRMeasurementThread::pause()
{
    // Set before the wait: the thread could win the mutex again and again.
    paused = true;
    const QMutexLocker lock(&mutex);
}

void NPRMeasurementThread::resume()
{
    {
        const QMutexLocker lock(&sleepMutex);
        paused = false;
        wakeCondition.wakeAll();
    }
    if (!isRunning()) { // the system had no thread for it before
        start(QThread::InheritPriority);
    }
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
    const std::shared_ptr<const Analyzer> device = std::atomic_load(&analyzer);
    if (const LinkTurn turn = device->link()->takeTurn()) {
        QMutexLocker lock(&mutex);
        measure(*device, lock);
    }
}

void NPRMeasurementThread::measureNextPass()
{
    const std::shared_ptr<const Analyzer> device = std::atomic_load(&analyzer);
    if (const LinkTurn turn = device->link()->takeTurn()) {
        QMutexLocker lock(&mutex);
        if (running && !paused) { // it may have waited long for its turn
            measure(*device, lock);
        }
    }
}

void NPRMeasurementThread::measure(const Analyzer& device, QMutexLocker& lock)
{
    try {
        read(device);
    } catch (KORemoteException* failure) {
        lock.unlock();
        tell(device, *std::unique_ptr<KORemoteException>(failure));
    } catch (const std::exception&) {
        lock.unlock();
        KORemoteException failure(QStringLiteral("Not enough memory"));
        tell(device, failure);
    }
}

void NPRMeasurementThread::tell(const Analyzer& device, KORemoteException& failure)
{
    if (!device.link()->isRetired()) {
        emit measurementError(&failure);
    }
}

void NPRMeasurementThread::read(const Analyzer& device)
{
    if (!device.commands()) {
        device.init();
    }
    const std::shared_ptr<AnalyzerCommands> commands = device.commands();
    if (!commands) {
        throwRemoteException(device.deviceMessage());
    }
    const Result reading = commands->measureChannelPower();
    // A loaded configuration may replace the analyzer at any moment, also while its panel is handed
    // back.
    const auto isShown = [&device] { return !device.link()->isRetired(); };
    if (isShown()) {
        std::atomic_store(&result, std::make_shared<const Result>(reading));
    }
    commands->goToLocal();
    if (isShown()) {
        emit measurementFinished();
    }
}

void NPRMeasurementThread::requestSingleMeasurement()
{
    const std::shared_ptr<const Analyzer> device = std::atomic_load(&analyzer);
    const auto turn = std::make_shared<LinkTurn>();
    const std::function<void()> request = [this, device, turn, open = requests] {
        const LinkTurn held = std::move(*turn);
        const Requests::Served served(*open);
        if (served) {
            QMutexLocker lock(&mutex);
            measure(*device, lock);
        }
    };
    device->link()->ask([request, turn](LinkTurn given) {
        *turn = std::move(given);
        if (*turn && !WorkerThreads::ofProcess().start(request)) {
            qWarning("No thread for the measurement"); // it fails as quietly as any other
            turn->giveBack();
        }
    });
}

NPRMeasurementThread::Result NPRMeasurementThread::results() const
{
    return *std::atomic_load(&result);
}

void NPRMeasurementThread::sleepWhilePaused()
{
    QMutexLocker lock(&sleepMutex);
    if (paused && running) { // Deliberate: no loop. Any wake goes on to the next pass
        wakeCondition.wait(&sleepMutex);
    }
}

void NPRMeasurementThread::waitForMainThread()
{
    unseenPasses.acquire();
    try {
        QMetaObject::invokeMethod(
            this, [this] { unseenPasses.release(); }, Qt::QueuedConnection);
    } catch (const std::bad_alloc&) {
        unseenPasses.release();
    }
}

void NPRMeasurementThread::run()
{
    while (running) {
        sleepWhilePaused();
        if (!running) {
            return;
        }
        try {
            measureNextPass();
        } catch (const std::bad_alloc&) {
            qWarning("Not enough memory for a measurement"); // the next pass tries again
        }
        waitForMainThread();
    }
}
