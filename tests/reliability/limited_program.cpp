// The program under real limits of the system; test_system_limits runs it as a process of its own
// and judges how it ends. Arguments: the scenario, and "memory" where threads are to be refused for
// want of memory and not by a limit on their number. The line "closing" says that only the end is
// still to come. Status 77: the limit binds nothing here.
#include "base/freed_memory.h"
#include "look/steady_application.h"
#include "reliability/limited_bench.h"

#include <cstdio>

namespace {

constexpr int bindsNothing = 77;

const LimitedScenario* find(const QString& name)
{
    for (const auto* scenarios : {&jobScenarios, &memoryScenarios, &instrumentScenarios}) {
        for (const LimitedScenario& scenario : *scenarios) {
            if (name == QLatin1String(scenario.name)) {
                return &scenario;
            }
        }
    }
    return nullptr;
}

// A home that the ordinary user may write to.
void liveIn(const QTemporaryDir& home)
{
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(name, QFile::encodeName(home.path()));
    }
}

int play(const LimitedScenario& scenario, Shortness kind)
{
    const QTemporaryDir folder;
    ScriptedInstrument device;
    std::unique_ptr<Shortage> lasting;
    if (scenario.startsShort) {
        lasting = std::make_unique<Shortage>(kind);
    }
    MainWindow window;
    const LimitedBench bench{window, WindowDriver(window), device, folder, kind, lasting};
    window.show();
    QTimer::singleShot(0, &window, [&] {
        scenario.play(bench);
        std::puts("closing");
        std::fflush(stdout);
        window.close();
    });
    return QApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    returnFreedMemory();
    if (!becomeOrdinaryUser() || !threadLimitBinds()) {
        return bindsNothing;
    }
    const QTemporaryDir home;
    liveIn(home);
    std::unique_ptr<LargeStacks> stacks;
    const bool isMemory = argc > 2 && qstrcmp(argv[2], "memory") == 0;
    if (isMemory) {
        stacks = std::make_unique<LargeStacks>();
    }
    SteadyApplication application(argc, argv);
    const LimitedScenario* scenario = find(application.arguments().value(1));
    return scenario == nullptr ? 2
                               : play(*scenario, isMemory ? Shortness::Memory : Shortness::Threads);
}
