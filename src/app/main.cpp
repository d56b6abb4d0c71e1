#include "app/main_window.h"
#include "base/large_pages.h"

#include <QApplication>

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
    QApplication application(argc, argv);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
