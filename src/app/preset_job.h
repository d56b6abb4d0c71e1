// One preset of the whole instrument chain on the thread pool, and the way its outcome comes
// back.
#pragma once

#include "setup/measurement_setup.h"

#include <QMetaType>
#include <QMutex>
#include <QObject>

#include <functional>
#include <memory>

class KORemoteException;

// The instruments of a record: what is set, who answered, and over which connection.
struct InstrumentChain
{
    SignalGenerator generator;
    Analyzer analyzer;
    MicrowaveGenerator microwave;
};
Q_DECLARE_METATYPE(InstrumentChain)

// The link between a window and its presets. Jobs share its ownership, so a job that outlives
// the window meets no destroyed object.
class PresetJob : public QObject
{
    Q_OBJECT

public:
    using FailureHandler = std::function<void(KORemoteException*)>;

    // The handler is called on a pool thread; the failure is freed when it returns.
    explicit PresetJob(FailureHandler onFailure);

    // Starts a preset of the setup's instruments on the global pool; main thread.
    static void start(const std::shared_ptr<PresetJob>& link, const MeasurementSetup& setup);

    // The window goes: the handler is called no more.
    void forgetWindow();

signals:
    // Emitted on the pool thread, also after a failure.
    void finished(const InstrumentChain& before, const InstrumentChain& after);

private:
    void run(const InstrumentChain& chain);
    void tell(KORemoteException* failure);

    QMutex mutex; // held while the handler runs, which only emits a signal
    FailureHandler onFailure;
};
