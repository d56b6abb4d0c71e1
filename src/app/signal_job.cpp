#include "app/signal_job.h"

#include "setup/measurement_setup.h"

#include <QtConcurrent>

#include <new>

namespace {

// Without memory for the samples the signal ends as empty, which the window shows as invalid,
// instead of leaving it calculating for ever.
CalculationResult calculate(MeasurementSetup& setup)
{
    try {
        setup.calculateSignal();
        return {setup.signal, setup.crestFactor};
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace

SignalJob::SignalJob()
{
    qRegisterMetaType<CalculationResult>();
}

void SignalJob::start(const std::shared_ptr<SignalJob>& link, const MeasurementSetup& setup)
{
    QtConcurrent::run([link, copy = setup.forOtherThread()] { link->run(copy); });
}

void SignalJob::run(MeasurementSetup setup)
{
    calculationRunning = true;
    emit finished(calculate(setup));
    calculationRunning = false;
}
