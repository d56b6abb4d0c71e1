#include "app/main_window.h"
#include "base/freed_memory.h"
#include "look/house_look.h"
#include "look/steady_application.h"

#ifdef Q_OS_UNIX
#include "base/dropping_output.h"
#include "base/failed_writes.h"
#include "base/standard_streams.h"
#endif

int main(int argc, char* argv[])
{
#ifdef Q_OS_UNIX
    holdClosedStandardStreams();
    outliveFailedWrites();
    dropMessagesThatWait();
#endif
    returnFreedMemory();
    prepareHouseLook();
    SteadyApplication application(argc, argv);
    applyHouseLook(application);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
