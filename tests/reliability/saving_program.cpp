// The program at its two moments of writing the default configuration; test_killed_program runs it
// as a process of its own and kills it there. The line "now" says that the moment has come, and
// the next one how many microseconds it took.
#include "app/main_window.h"
#include "kit/window_driver.h"
#include "setup/config_file.h"

#include <QElapsedTimer>

#include <cstdio>
#include <memory>
#include <optional>

namespace {

constexpr char configName[] = "Notchbench.cfg";

void say(const QByteArray& line)
{
    std::puts(line.constData());
    std::fflush(stdout);
}

class Moment
{
public:
    Moment()
    {
        say("now");
        timer.start();
    }
    void end() const { say(QByteArray::number(timer.nsecsElapsed() / 1000)); }

private:
    QElapsedTimer timer;
};

// Saves for ever, the seed going from 1 to 2 and back.
int save(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    MeasurementSetup setup = loadDefaultConfig(configName);
    while (true) {
        setup.seed = 3 - setup.seed;
        const Moment moment;
        saveDefaultConfig(setup, configName);
        moment.end();
    }
}

// Closes the window on the other seed.
int close(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    auto window = std::make_unique<MainWindow>();
    const WindowDriver operate(*window);
    window->show();
    std::optional<Moment> moment;
    QTimer::singleShot(0, window.get(), [&] {
        operate.type("seed_input", operate.text("seed_input") == QLatin1String("1") ? "2" : "1");
        moment.emplace();
        window->close();
    });
    const int status = QApplication::exec();
    window.reset();
    moment->end();
    return status;
}

} // namespace

int main(int argc, char* argv[])
{
    const bool isToClose = argc > 1 && qstrcmp(argv[1], "close") == 0;
    return isToClose ? close(argc, argv) : save(argc, argv);
}
