// The soak: the real window, used without a pause by a tireless operator, a rude network and
// instruments that die. Takes the seconds and the folder of configurations to load; ends with
// status 0 when nothing was lost on the way: as many threads and as much memory as at the start,
// and no warning but the known ones; and when signals, connections, readings and answers came of
// it at all.
//
// With a seed as a third argument the window is closed at a random moment of that time, whatever
// goes on; then a sanitizer judges.
#include "base/freed_memory.h"
#include "kit/instrumented.h"
#include "reliability/soak_operator.h"

#include <QDir>
#include <QFile>

#include <atomic>
#include <cstdio>
#include <malloc.h>

namespace {

std::atomic<int> unknownWarnings{0};

const char* const knownWarnings[] = {
    // Of the offscreen platform.
    "This plugin does not support propagateSizeHints()",
    "This plugin does not support raise()",
    "This plugin does not support grabbing the keyboard",
    // Deliberate: a failed measurement stays quiet on its way to the window.
    "QObject::connect: Cannot queue arguments of type 'KORemoteException*'",
    "(Make sure 'KORemoteException*' is registered using qRegisterMetaType().)",
};

bool isKnown(const QString& text)
{
    return std::any_of(std::begin(knownWarnings), std::end(knownWarnings),
                       [&text](const char* known) { return text.contains(QLatin1String(known)); });
}

void note(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    if (type != QtDebugMsg && type != QtInfoMsg && !isKnown(text)) {
        ++unknownWarnings;
        std::fprintf(stderr, "warning: %s\n", qPrintable(text));
    }
}

struct Level
{
    int threads = 0;
    int memory = 0; // KiB, resident
    int descriptors = 0;
};

int numberAfter(const QByteArray& status, const char* name)
{
    const int at = status.indexOf(name) + int(qstrlen(name));
    return status.mid(at, status.indexOf('\n', at) - at).replace("kB", "").trimmed().toInt();
}

Level presentLevel()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/status"));
    (void)file.open(QIODevice::ReadOnly);
    const QByteArray status = file.readAll();
    const auto descriptors = static_cast<int>(QDir(QStringLiteral("/proc/self/fd")).count());
    return {numberAfter(status, "\nThreads:"), numberAfter(status, "\nVmRSS:"), descriptors};
}

// In the one state that is comparable, once the threads of pool and sweeps have gone.
Level restedLevel(SoakOperator& soakOperator, int threadsAtTheStart)
{
    soakOperator.restore();
    (void)QTest::qWaitFor([=] { return presentLevel().threads <= threadsAtTheStart; }, 60000);
    const Level level = presentLevel();
    std::printf("%5lld actions: %d threads, %d KiB, %d descriptors\n", soakOperator.actions(),
                level.threads, level.memory, level.descriptors);
    std::fflush(stdout);
    return level;
}

// The connections of replaced records stay open on purpose, each with its buffers. A sanitizer
// keeps freed memory back, so that only the plain program's says something.
bool isAsBefore(const Level& start, const Level& first, const Level& last)
{
    constexpr int ofAConnection = 80; // KiB
    const int kept = std::max(0, last.descriptors - first.descriptors);
    return first.threads == start.threads && last.threads == start.threads &&
           (isInstrumented ||
            last.memory <= first.memory + first.memory / 10 + kept * ofAConnection);
}

bool hasOutcome(const SoakOperator::Outcome& outcome)
{
    std::printf("%d signals, %d connections, %d readings, %d answers, %d missed starts\n",
                outcome.madeSignals, outcome.connections, outcome.readings, outcome.answers,
                outcome.missedStarts);
    return outcome.isWhole();
}

void workUntilClosed(int seconds, const QString& configs, quint32 seed)
{
    MainWindow window;
    window.show();
    SoakOperator soakOperator(window, configs, seed);
    const int moment = QRandomGenerator(seed).bounded(seconds * 1000); // ms
    QTimer::singleShot(moment, &window, [&] {
        window.close();
        soakOperator.stop();
    });
    soakOperator.work(seconds);
    std::printf("seed %u: closed after %lld actions\n", seed, soakOperator.actions());
}

} // namespace

int main(int argc, char* argv[])
{
    returnFreedMemory();
    qInstallMessageHandler(note);
    QApplication application(argc, argv);
    const int seconds = application.arguments().value(1, QStringLiteral("600")).toInt();
    if (application.arguments().size() > 3) {
        workUntilClosed(seconds, application.arguments().at(2),
                        application.arguments().at(3).toUInt());
        return unknownWarnings == 0 ? 0 : 1;
    }
    bool isGood = false;
    int status = 1;
    {
        MainWindow window;
        window.show();
        SoakOperator soakOperator(window, application.arguments().value(2));
        const Level start = presentLevel();
        soakOperator.warmUp();
        const int toTheFirstLevel = std::min(60, seconds / 3);
        soakOperator.work(toTheFirstLevel);
        const Level first = restedLevel(soakOperator, start.threads);
        soakOperator.work(seconds - toTheFirstLevel);
        isGood = isAsBefore(start, first, restedLevel(soakOperator, start.threads));
        isGood = hasOutcome(soakOperator.outcome()) && isGood;
        QTimer::singleShot(0, &window, [&window] { window.close(); });
        status = QApplication::exec();
    }
    std::printf("%s, %d unknown warnings, status %d\n", isGood ? "good" : "BAD",
                unknownWarnings.load(), status);
    return isGood && unknownWarnings == 0 ? status : 1;
}
