// The program at its two moments of writing the default configuration; test_killed_program runs it
// as a process of its own and kills it there. The line "now" says that the moment has come.
#include "app/main_window.h"
#include "kit/window_driver.h"
#include "setup/config_file.h"

#include <cstdio>

namespace {

constexpr char configName[] = "Notchbench.cfg";

void sayNow()
{
    std::puts("now");
    std::fflush(stdout);
}

// Saves for ever, the seed going from 1 to 2 and back.
int save(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    MeasurementSetup setup = loadDefaultConfig(configName);
    sayNow();
    while (true) {
        setup.seed = 3 - setup.seed;
        saveDefaultConfig(setup, configName);
    }
}

// Closes the window on the other seed.
int close(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    MainWindow window;
    const WindowDriver operate(window);
    window.show();
    QTimer::singleShot(0, &window, [&] {
        operate.type("seed_input", operate.text("seed_input") == QLatin1String("1") ? "2" : "1");
        sayNow();
        window.close();
    });
    return QApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    const bool isToClose = argc > 1 && qstrcmp(argv[1], "close") == 0;
    return isToClose ? close(argc, argv) : save(argc, argv);
}
