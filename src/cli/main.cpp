// The bench without a window, see --help.
#include "base/failed_writes.h"
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
    outliveFailedWrites(); // a reader of tables who has gone must not end a measurement
    returnFreedMemory();
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv);
    QCoreApplication::setApplicationName("notchbench-cli");
    QLoggingCategory::setFilterRules("*.debug=false"); // messages are for people
    const StopSignals stop(StopSignals::Second::EndsTheProcess);
    Console console(stdout, stderr);
    const ExitStatus status = runProgram(QCoreApplication::arguments().mid(1), console, stop);
    if (status == ExitStatus::Done && console.hasLostReader()) { // the usual end before "| head"
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
    }
    return static_cast<int>(status);
}
