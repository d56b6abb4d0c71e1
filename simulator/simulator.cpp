#include "simulator/simulator.h"

#include "simulator/pseudo_terminal.h"
#include "simulator/trace_file.h"
#include "simulator/wv_file.h"

#include <QHostAddress>

#include <utility>

namespace {

const char sharedAddress[] = "127.0.0.1";

} // namespace

Simulator::Simulator(SimulatorOptions simulatorOptions, QObject* parent)
    : QObject(parent),
      options(std::move(simulatorOptions)),
      simulatedBench(options.wiring),
      sharedPort(options.port)
{
}

bool Simulator::start(QString& errorText)
{
    if (options.waveformFile.isEmpty()) {
        followProgram();
    } else if (!takeWaveform(errorText)) {
        return false;
    }
    return addShared(errorText) &&
           addOwn(options.generatorAddress, BenchFace::Generator, "generator ", errorText) &&
           addOwn(options.analyzerAddress, BenchFace::Analyzer, "analyzer ", errorText) &&
           addOwn(options.microwaveAddress, BenchFace::Microwave, "microwave ", errorText) &&
           (!options.serial || openSerialLine(errorText));
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
    if (!options.traceFile.isEmpty() && signal.size() > 0) {
        writeRipple(signal);
    }
}

void Simulator::writeRipple(const PlayedSignal& signal)
{
    if (signal.size() == traceLength && signal.sampleRate == traceRate) {
        return;
    }
    QString errorText;
    if (writeTrace(options.traceFile, options.wiring.chain.ripple, signal.size(), signal.sampleRate,
                   errorText)) {
        traceLength = signal.size();
        traceRate = signal.sampleRate;
    } else {
        emit told(errorText);
    }
}

Simulator::Station& Simulator::addStation(BenchFace face)
{
    stations.push_back(std::make_unique<Station>(simulatedBench, face, options.models));
    Station& station = *stations.back();
    station.instrument.tell = [this](const QString& text) { emit told(text); };
    if (station.instrument.hasAnalyzer()) {
        station.sweep =
            std::make_unique<Sweep>(station.instrument, signalClient.get(), options.fast);
    }
    return station;
}

// What has no address of its own stands at the shared one.
bool Simulator::addShared(QString& errorText)
{
    const bool generator = options.generatorAddress.isEmpty();
    const bool analyzer = options.analyzerAddress.isEmpty();
    if (!generator && !analyzer) {
        return true;
    }
    const BenchFace face = !generator  ? BenchFace::Analyzer
                           : !analyzer ? BenchFace::Generator
                                       : BenchFace::GeneratorAndAnalyzer;
    if (!listen(addStation(face), sharedAddress, Clients::Any, errorText)) {
        return false;
    }
    placeLines << QStringLiteral("listening on %1:%2").arg(sharedAddress).arg(sharedPort);
    return true;
}

bool Simulator::addOwn(const QString& address, BenchFace face, const char* name, QString& errorText)
{
    if (address.isEmpty()) {
        return true;
    }
    if (!listen(addStation(face), address, Clients::OneAtATime, errorText)) {
        return false;
    }
    placeLines << name + QStringLiteral("listening on %1:%2").arg(address).arg(sharedPort);
    return true;
}

// The first that listens settles the port for all.
bool Simulator::listen(Station& station, const QString& address, Clients clients,
                       QString& errorText)
{
    station.server = std::make_unique<ScpiServer>(station.instrument, station.sweep.get(), clients,
                                                  options.manner);
    if (!station.server->listen(QHostAddress(address), sharedPort)) {
        errorText = QStringLiteral("cannot listen on %1:%2: %3")
                        .arg(address)
                        .arg(sharedPort)
                        .arg(station.server->errorText());
        return false;
    }
    connect(station.server.get(), &ScpiServer::logged, this, &Simulator::logged);
    sharedPort = station.server->port();
    return true;
}

// Generator and analyzer together, as at the shared address.
bool Simulator::openSerialLine(QString& errorText)
{
    const bool shared = options.generatorAddress.isEmpty() && options.analyzerAddress.isEmpty();
    Station& station = shared ? *stations.front() : addStation(BenchFace::GeneratorAndAnalyzer);
    auto terminal = std::make_unique<PseudoTerminal>();
    PseudoTerminal* const line = terminal.get();
    if (!line->start()) {
        errorText = "cannot open a pseudo terminal: " + line->errorString();
        return false;
    }
    station.serial =
        std::make_unique<ScpiConnection>(std::move(terminal), line->name(), station.instrument,
                                         station.sweep.get(), options.manner, nullptr);
    connect(station.serial.get(), &ScpiConnection::logged, this, &Simulator::logged);
    // Nobody can be cut off here.
    connect(station.serial.get(), &ScpiConnection::mustEnd, line, &PseudoTerminal::discardUnsent);
    placeLines << "serial line on " + line->name();
    return true;
}
