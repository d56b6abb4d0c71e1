#include "simulator/simulator.h"

#include "simulator/wv_file.h"

#include <QHostAddress>

#include <utility>

Simulator::Simulator(SimulatorOptions simulatorOptions, QObject* parent)
    : QObject(parent), options(std::move(simulatorOptions)), simulatedBench(options.wiring)
{
}

bool Simulator::start(QString& errorText)
{
    if (options.waveformFile.isEmpty()) {
        followProgram();
    } else if (!takeWaveform(errorText)) {
        return false;
    }
    instruments = listenOn("127.0.0.1", options.port, BenchFace::GeneratorAndAnalyzer, errorText);
    if (instruments && options.wiring.hasMicrowave) {
        microwave = listenOn(options.microwaveAddress, port(), BenchFace::Microwave, errorText);
    }
    return instruments && (microwave || !options.wiring.hasMicrowave);
}

bool Simulator::takeWaveform(QString& errorText)
{
    const PlayedSignal signal = loadWaveform(options.waveformFile, errorText);
    play(signal);
    return signal.size() > 0;
}

void Simulator::followProgram()
{
    signalClient = std::make_unique<SignalClient>(options.signalPort, options.signalTiming);
    connect(signalClient.get(), &SignalClient::received, this, &Simulator::play);
    connect(signalClient.get(), &SignalClient::refused, this, &Simulator::logged);
}

void Simulator::play(const PlayedSignal& signal)
{
    simulatedBench.play(signal);
    emit logged(QStringLiteral("playing %1 samples at %2 Hz")
                    .arg(signal.size())
                    .arg(signal.sampleRate, 0, 'f', 0));
}

std::unique_ptr<ScpiServer> Simulator::listenOn(const QString& address, quint16 port,
                                                BenchFace face, QString& errorText)
{
    auto server = std::make_unique<ScpiServer>(simulatedBench, face, options.installedOptions,
                                               signalClient.get());
    if (!server->listen(QHostAddress(address), port)) {
        errorText = QStringLiteral("cannot listen on %1:%2: %3")
                        .arg(address)
                        .arg(port)
                        .arg(server->errorText());
        return nullptr;
    }
    connect(server.get(), &ScpiServer::logged, this, &Simulator::logged);
    return server;
}
