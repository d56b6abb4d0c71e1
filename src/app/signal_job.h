// One signal calculation on the thread pool, and the way its result comes back.
#pragma once

#include "setup/signal_data.h"

#include <QMetaType>
#include <QObject>

#include <atomic>
#include <memory>

struct MeasurementSetup;

struct CalculationResult
{
    SignalData signal; // length 0 when the source failed or memory ran out
    double crestFactor = 0.0;
};
Q_DECLARE_METATYPE(CalculationResult)

// The link between a window and its jobs. Jobs share its ownership, so a job that ends, or even
// begins, after the window has gone meets no destroyed object: its signal then has no receiver.
class SignalJob : public QObject
{
    Q_OBJECT

public:
    SignalJob();

    // Starts a job for the settings on the global pool; main thread.
    static void start(const std::shared_ptr<SignalJob>& link, const MeasurementSetup& setup);

    // True while a job runs. One flag for all jobs: the first that ends clears it.
    bool isRunning() const { return calculationRunning; }

signals:
    // Emitted on the pool thread; a receiver on the main thread gets it queued, by value.
    void finished(const CalculationResult& result);

private:
    void run(MeasurementSetup setup);

    std::atomic<bool> calculationRunning{false};
};
