// The bench without a window, see --help.
#include "base/large_pages.h"
#include "base/stop_signals.h"
#include "cli/program.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <csignal>

int main(int argc, char* argv[])
{
    returnFreedMemory();
#ifdef SIGXFSZ
    // A limit on the size of files is a failed write and not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("notchbench-cli");
    QLoggingCategory::setFilterRules("*.debug=false"); // messages are for people
    const StopSignals stop(StopSignals::Second::EndsTheProcess);
    Console console(stdout, stderr);
    return static_cast<int>(runProgram(QCoreApplication::arguments().mid(1), console, stop));
}
