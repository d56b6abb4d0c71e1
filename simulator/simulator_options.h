// The command line of the simulator.
#pragma once

#include "simulator/bench.h"
#include "simulator/signal_client.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

class QCommandLineParser;

struct SimulatorOptions
{
    BenchWiring wiring;
    quint16 port = 5025;       // SCPI; 0 takes any free one
    QString microwaveAddress;  // of the microwave generator; empty without one
    quint16 signalPort = 1000; // of the program's status server
    SignalClientTiming signalTiming;
    QString waveformFile; // played instead of the program's signal; may be empty
    QByteArray installedOptions = "B15,B17,B23,B24"; // the answer to "*OPT?"
    bool verbose = false;
};

// Declares all options with their help texts.
void addSimulatorOptions(QCommandLineParser& parser);

// The options of a parser that has parsed; none for a value that is no good, and then errorText
// names it.
std::optional<SimulatorOptions> readSimulatorOptions(const QCommandLineParser& parser,
                                                     QString& errorText);
