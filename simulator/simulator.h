// The whole simulator: bench, servers and the source of its signal. Runs in the event loop of the
// thread that made it.
#pragma once

#include "simulator/instrument.h"
#include "simulator/scpi_server.h"
#include "simulator/signal_client.h"
#include "simulator/simulator_options.h"
#include "simulator/sweep.h"

#include <QStringList>

#include <memory>
#include <vector>

class Simulator : public QObject
{
    Q_OBJECT

public:
    explicit Simulator(SimulatorOptions options, QObject* parent = nullptr);

    // Loads the waveform file if one is named, and listens. False when something can't be had;
    // errorText says what.
    bool start(QString& errorText);

    // Where the instruments are found, one line each.
    QStringList places() const { return placeLines; }

    // The same at all addresses.
    quint16 port() const { return sharedPort; }
    Bench& bench() { return simulatedBench; }

signals:
    // One text a line that came, an answer, a new signal.
    void logged(const QString& text);
    // What an operator must hear of: refusals, overloads, a trace that can't be written.
    void told(const QString& text);

private:
    // An instrument, the time that its sweeps take, and where it is reached.
    struct Station
    {
        Station(Bench& bench, BenchFace face, const BenchModels& models)
            : instrument(bench, face, models)
        {
        }

        SimulatedInstrument instrument;
        std::unique_ptr<Sweep> sweep;
        std::unique_ptr<ScpiServer> server;
        std::unique_ptr<ScpiConnection> serial;
    };

    bool takeWaveform(QString& errorText);
    void followProgram();
    void play(const PlayedSignal& signal);
    void writeRipple(const PlayedSignal& signal);
    Station& addStation(BenchFace face);
    bool addShared(QString& errorText);
    bool addOwn(const QString& address, BenchFace face, const char* name, QString& errorText);
    bool listen(Station& station, const QString& address, Clients clients, QString& errorText);
    bool openSerialLine(QString& errorText);

    const SimulatorOptions options;
    Bench simulatedBench;
    std::unique_ptr<SignalClient> signalClient; // none when a file is played
    std::vector<std::unique_ptr<Station>> stations;
    QStringList placeLines;
    quint16 sharedPort;
    int traceLength = 0;    // of the trace written last
    double traceRate = 0.0; // Hz
};
