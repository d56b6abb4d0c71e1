// The command line of the simulator.
#pragma once

#include "simulator/bench.h"
#include "simulator/instrument.h"
#include "simulator/scpi_server.h"
#include "simulator/signal_client.h"

#include <QString>

#include <optional>

class QCommandLineParser;

struct SimulatorOptions
{
    BenchWiring wiring;
    quint16 port = 5025; // SCPI; 0 takes any free one
    // Addresses of their own; empty for what stands at the shared one, and for a microwave
    // generator that isn't there.
    QString generatorAddress;
    QString analyzerAddress;
    QString microwaveAddress;
    bool serial = false;
    BenchModels models;
    AnswerManner manner;
    bool fast = false;         // sweeps take no time
    quint16 signalPort = 1000; // of the program's status server
    SignalClientTiming signalTiming;
    QString waveformFile; // played instead of the program's signal; may be empty
    QString traceFile;    // the ripple is written there; may be empty
    bool verbose = false;
};

// Declares all options with their help texts.
void addSimulatorOptions(QCommandLineParser& parser);

// The options of a parser that has parsed; none for a value that is no good, and then errorText
// names it.
std::optional<SimulatorOptions> readSimulatorOptions(const QCommandLineParser& parser,
                                                     QString& errorText);
