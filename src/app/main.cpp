#include "app/main_window.h"
#include "base/freed_memory.h"
#include "look/house_look.h"
#include "look/steady_application.h"

#include <csignal>

#ifdef Q_OS_UNIX
#include "base/dropping_output.h"
#include "base/standard_streams.h"
#endif

namespace {

// A limit on the size of files is a failed write, a reader of the messages that went away a lost
// line, and neither the end of the program.
void outliveFailedWrites()
{
#ifdef Q_OS_UNIX
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    dropMessagesThatWait();
#endif
}

} // namespace

int main(int argc, char* argv[])
{
#ifdef Q_OS_UNIX
    holdClosedStandardStreams();
#endif
    returnFreedMemory();
    outliveFailedWrites();
    prepareHouseLook();
    SteadyApplication application(argc, argv);
    applyHouseLook(application);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
