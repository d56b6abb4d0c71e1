#include "signal/calculation.h"

#include "base/parallel.h"
#include "signal/sources.h"

#include <QAbstractEventDispatcher>

#include <exception>
#include <limits>
#include <utility>

namespace {

// For a thread without an event loop. Left alone, Qt gives every thread a dispatcher with a file
// descriptor, and a thousand of them pass the limit that is usual for a process.
class NoEvents : public QAbstractEventDispatcher
{
public:
    bool processEvents(QEventLoop::ProcessEventsFlags) override { return false; }
    bool hasPendingEvents() override { return false; }
    void registerSocketNotifier(QSocketNotifier*) override {}
    void unregisterSocketNotifier(QSocketNotifier*) override {}
    void registerTimer(int, int, Qt::TimerType, QObject*) override {}
    bool unregisterTimer(int) override { return false; }
    bool unregisterTimers(QObject*) override { return false; }
    QList<TimerInfo> registeredTimers(QObject*) const override { return {}; }
    int remainingTime(int) override { return -1; }
    void wakeUp() override {}
    void interrupt() override {}
    void flush() override {}
};

// Deliberate: always the seeded random phases, whatever source and phase mode are set, because
// only for them does a seed mean anything.
double crestFactorOf(const MeasurementSetup& setup, quint32 seed)
{
    const quint32 n = setup.fftLength();
    if (n == 0 || n > maxSignalLength) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    SignalData data = makeSeededPhases(n, setup.sinxCompensation, seed);
    setup.finishSpectrum(data);
    return data.crestFactor();
}

} // namespace

Calculation::Calculation(quint32 itsSeed, std::shared_ptr<const MeasurementSetup> itsSetup,
                         std::shared_ptr<QSemaphore> itsSemaphore)
    : seed(itsSeed), setup(std::move(itsSetup)), semaphore(std::move(itsSemaphore))
{
    setEventDispatcher(new NoEvents); // deleted by the thread at its end
}

Calculation::~Calculation()
{
    wait();
    delete eventDispatcher(); // there is still one if the thread was never started
}

bool Calculation::begin()
{
    start(QThread::InheritPriority);
    return isRunning() || isFinished();
}

void Calculation::run()
{
    const WorkAlone alone; // the others of the sweep keep the cores busy
    semaphore->acquire(1);
    const QSemaphoreReleaser permit(*semaphore);
    if (running) {
        report();
    }
}

void Calculation::report()
{
    try {
        const double crestFactor = crestFactorOf(*setup, seed);
        reported = true;
        emit calculated(seed, crestFactor);
    } catch (const std::exception&) {
        reported = false;
    }
}
