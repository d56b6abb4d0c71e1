#include "app/main_window.h"
#include "app/steady_application.h"
#include "base/large_pages.h"
#include "look/house_look.h"

#include <csignal>

int main(int argc, char* argv[])
{
    returnFreedMemory();
#ifdef SIGXFSZ
    // A limit on the size of files is a failed write and not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    prepareHouseLook();
    SteadyApplication application(argc, argv);
    applyHouseLook(application);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
