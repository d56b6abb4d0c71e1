// One preset of the whole instrument chain on the thread pool, and the way its outcome comes
// back.
#pragma once

#include "setup/measurement_setup.h"

#include <QMetaType>
#include <QObject>

#include <memory>

class KORemoteException;

// The chain as a preset left it: who answered, and over which connection.
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
    PresetJob();

    // Starts a preset of the setup's instruments on the global pool; main thread.
    static void start(const std::shared_ptr<PresetJob>& link, const MeasurementSetup& setup);

signals:
    // Both are emitted on the pool thread; finished also after a failure.
    void finished(const InstrumentChain& chain);
    void failed(KORemoteException* failure);
};
