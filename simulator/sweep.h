// The time that a sweep of the analyzer takes: until its sweep time is over and the newest signal
// has come. Runs in the event loop of its thread.
#pragma once

#include "simulator/instrument.h"

#include <QObject>
#include <QTimer>

class SignalClient;

class Sweep : public QObject
{
    Q_OBJECT

public:
    // instrument and source must outlive the sweep. source: where new signals come from; null when
    // the signal never changes. fast: sweeps take no time, but for the signal.
    Sweep(SimulatedInstrument& instrument, SignalClient* source, bool fast,
          QObject* parent = nullptr);

    // A sweep under way begins anew.
    void start();
    bool isRunning() const { return instrument.isSweeping(); }

signals:
    void ended();

private:
    void endIfDone();

    SimulatedInstrument& instrument;
    SignalClient* signalSource;
    const bool fast;
    quint64 awaitedPoll = 0; // 0: waiting for none
    QTimer duration;
    QTimer patience; // for a signal that doesn't come
};
