// The bench of simulated instruments, see --help.
#include "base/standard_streams.h"
#include "base/stop_signals.h"
#include "simulator/simulator.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace {

enum ExitStatus { CannotStart = 1, WrongUsage = 2 };

void writeLine(std::FILE* stream, const QString& text)
{
    std::fprintf(stream, "%s\n", qPrintable(text));
    std::fflush(stream); // a program may be waiting at the other end of a pipe
}

int fail(ExitStatus status, const QString& text)
{
    writeLine(stderr, "notchbench-simulator: " + text);
    return status;
}

int run(const SimulatorOptions& options)
{
    Simulator simulator(options);
    const auto toStandardError = [](const QString& text) { writeLine(stderr, text); };
    QObject::connect(&simulator, &Simulator::told, &simulator, toStandardError);
    if (options.verbose) {
        QObject::connect(&simulator, &Simulator::logged, &simulator, toStandardError);
    }
    QString errorText;
    if (!simulator.start(errorText)) {
        return fail(CannotStart, errorText);
    }
    for (const QString& place : simulator.places()) {
        writeLine(stdout, place);
    }
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    holdClosedStandardStreams();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("notchbench-simulator");
    QCoreApplication::setApplicationVersion(NOTCHBENCH_VERSION);
    const StopSignals stopSignals;
    QObject::connect(&stopSignals, &StopSignals::requested, &application, &QCoreApplication::quit,
                     Qt::QueuedConnection);

    QCommandLineParser parser;
    addSimulatorOptions(parser);
    if (!parser.parse(QCoreApplication::arguments())) {
        return fail(WrongUsage, parser.errorText());
    }
    if (parser.isSet("help")) {
        parser.showHelp();
    }
    if (parser.isSet("version")) {
        parser.showVersion();
    }
    QString errorText;
    const std::optional<SimulatorOptions> options = readSimulatorOptions(parser, errorText);
    return options ? run(*options) : fail(WrongUsage, errorText);
}
