// The bench without a window, see --help.
#include "base/freed_memory.h"
#include "base/standard_streams.h"
#include "base/stop_signals.h"
#include "chart/chart_file.h"
#include "cli/exit_status.h"
#include "cli/program.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <csignal>
#include <memory>

namespace {

// Widgets are touched for a picture alone.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv)
{
    QStringList words;
    for (int i = 1; i < argc; ++i) {
        words.append(QString::fromLocal8Bit(argv[i]));
    }
    return asksForPicture(words) ? makeDrawingApplication(argc, argv)
                                 : std::make_unique<QCoreApplication>(argc, argv);
}

} // namespace

int main(int argc, char* argv[])
{
    holdClosedStandardStreams();
    returnFreedMemory();
#ifdef SIGXFSZ
    // A limit on the size of files is a failed write and not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
#ifdef SIGPIPE
    // A reader of messages or tables who has gone must not end a measurement.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv);
    QCoreApplication::setApplicationName("notchbench-cli");
    QLoggingCategory::setFilterRules("*.debug=false"); // messages are for people
    const StopSignals stop(StopSignals::Second::EndsTheProcess);
    Console console(stdout, stderr);
    const ExitStatus status = runProgram(QCoreApplication::arguments().mid(1), console, stop);
#ifdef SIGPIPE
    if (status == ExitStatus::Done && console.hasLostReader()) { // the usual end before "| head"
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
    }
#endif
    return static_cast<int>(status);
}
