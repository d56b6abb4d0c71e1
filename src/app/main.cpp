#include "app/main_window.h"
#include "app/steady_application.h"
#include "base/large_pages.h"

#include <csignal>

int main(int argc, char* argv[])
{
    returnFreedMemory();
#ifdef SIGXFSZ
    // A limit on the size of files is a failed write and not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    SteadyApplication application(argc, argv);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
