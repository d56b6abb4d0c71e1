// One seed of a sweep on a thread of its own: waits for its turn, computes the crest factor that
// the settings give with the seed's random phases, and tells it.
//
// All workers of a sweep share a copy of the record and a semaphore, and keep both alive, so a
// late worker never meets the window's record or a dialog that has gone. Created and deleted on
// the main thread; only run() is executed by the thread itself.
#pragma once

#include "setup/measurement_setup.h"

#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <memory>

class Calculation : public QThread
{
    Q_OBJECT

public:
    // setup is a copy made by forOtherThread().
    Calculation(quint32 seed, std::shared_ptr<const MeasurementSetup> setup,
                std::shared_ptr<QSemaphore> semaphore);

    // Waits for the thread.
    ~Calculation() override;

    // Starts the thread. False when the system refuses one; finished() is then never emitted.
    bool begin();

    // A worker that has not had its turn yet ends without a signal; one that is calculating
    // finishes and reports.
    void cancel() { running = false; }

    // Of a worker that has ended or never began: whether there is no result although nobody
    // cancelled it, for want of a thread or of memory.
    bool hasFailed() const { return running && !reported; }

signals:
    // Once, from the worker's thread. The crest factor in dB is not-a-number when there can be no
    // signal of the length that is set.
    void calculated(uint seed, double crestFactor);

protected:
    void run() override;

private:
    const quint32 seed;
    const std::shared_ptr<const MeasurementSetup> setup;
    const std::shared_ptr<QSemaphore> semaphore;
    void report();

    std::atomic<bool> running{true};
    std::atomic<bool> reported{false};
};
