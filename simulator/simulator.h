// The whole simulator: bench, servers and the source of its signal. Runs in the event loop of the
// thread that made it.
#pragma once

#include "simulator/scpi_server.h"
#include "simulator/signal_client.h"
#include "simulator/simulator_options.h"

#include <memory>

class Simulator : public QObject
{
    Q_OBJECT

public:
    explicit Simulator(SimulatorOptions options, QObject* parent = nullptr);

    // Loads the waveform file if one is named, and listens. False when something can't be had;
    // errorText says what.
    bool start(QString& errorText);

    quint16 port() const { return instruments->port(); }
    Bench& bench() { return simulatedBench; }

signals:
    // One text a line that came, an answer, a new signal.
    void logged(const QString& text);

private:
    bool takeWaveform(QString& errorText);
    void followProgram();
    void play(const PlayedSignal& signal);
    std::unique_ptr<ScpiServer> listenOn(const QString& address, quint16 port, BenchFace face,
                                         QString& errorText);

    const SimulatorOptions options;
    Bench simulatedBench;
    std::unique_ptr<SignalClient> signalClient; // none when a file is played
    std::unique_ptr<ScpiServer> instruments;
    std::unique_ptr<ScpiServer> microwave;
};
