// The bench of simulated instruments, see --help.
#include "simulator/simulator.h"
#include "simulator/stop_signals.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace {

void writeLine(std::FILE* stream, const QString& text)
{
    std::fprintf(stream, "%s\n", qPrintable(text));
    std::fflush(stream); // a program may be waiting at the other end of a pipe
}

int fail(const QString& text)
{
    writeLine(stderr, "notchbench-simulator: " + text);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("notchbench-simulator");
    QCoreApplication::setApplicationVersion(NOTCHBENCH_VERSION);
    const StopSignals stopSignals;
    QObject::connect(&stopSignals, &StopSignals::requested, &application, &QCoreApplication::quit,
                     Qt::QueuedConnection);

    QCommandLineParser parser;
    addSimulatorOptions(parser);
    parser.process(application);
    QString errorText;
    const std::optional<SimulatorOptions> options = readSimulatorOptions(parser, errorText);
    if (!options) {
        return fail(errorText);
    }
    Simulator simulator(*options);
    if (options->verbose) {
        QObject::connect(&simulator, &Simulator::logged, &simulator,
                         [](const QString& text) { writeLine(stderr, text); });
    }
    if (!simulator.start(errorText)) {
        return fail(errorText);
    }
    writeLine(stdout, QStringLiteral("listening on 127.0.0.1:%1").arg(simulator.port()));
    return QCoreApplication::exec();
}
