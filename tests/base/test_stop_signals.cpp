// What the first and the second signal do, in processes of their own.
#include "base/stop_signals.h"

#include <QCoreApplication>
#include <QDir>
#include <QSignalSpy>
#include <QtTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The status that a child ends with.
template <typename Work> int statusOf(Work work)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

class TestStopSignals : public QObject
{
    Q_OBJECT

private slots:
    void theFirstIsToldAndKept_data();
    void theFirstIsToldAndKept();
    void theSecondEndsTheProcessWhereAsked();
    void theSecondIsLikeTheFirstOtherwise();
    void aTerminalThatClosesTwiceEndsNothing();
    void anIgnoredHangupStaysIgnored();
    void aNewOneHasReceivedNothing();
    void oneThatIsGoneLeavesNothingOpen();
};

void TestStopSignals::theFirstIsToldAndKept_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestStopSignals::theFirstIsToldAndKept()
{
    QFETCH(int, number);
    const StopSignals stop;
    QSignalSpy requested(&stop, &StopSignals::requested);
    QCOMPARE(StopSignals::received(), 0);
    raise(number);
    QCOMPARE(StopSignals::received(), number);
    QTRY_COMPARE(requested.count(), 1);
}

void TestStopSignals::theSecondEndsTheProcessWhereAsked()
{
#ifdef __SANITIZE_THREAD__
    QSKIP("the thread sanitizer holds back a signal that a child sends to itself");
#endif
    QCOMPARE(statusOf([] {
                 const StopSignals stop(StopSignals::Second::EndsTheProcess);
                 raise(SIGINT);
                 raise(SIGTERM);
                 return 1;
             }),
             143);
    QCOMPARE(statusOf([] {
                 const StopSignals stop(StopSignals::Second::EndsTheProcess);
                 raise(SIGINT);
                 raise(SIGINT);
                 return 1;
             }),
             130);
}

void TestStopSignals::theSecondIsLikeTheFirstOtherwise()
{
    QCOMPARE(statusOf([] {
                 const StopSignals stop;
                 raise(SIGINT);
                 raise(SIGTERM);
                 return StopSignals::received();
             }),
             SIGINT);
}

// A shell sends SIGHUP to what it runs and ends, and the system sends it once more.
void TestStopSignals::aTerminalThatClosesTwiceEndsNothing()
{
    QCOMPARE(statusOf([] {
                 const StopSignals stop(StopSignals::Second::EndsTheProcess);
                 raise(SIGHUP);
                 raise(SIGHUP);
                 return StopSignals::received();
             }),
             SIGHUP);
}

// As nohup starts a program.
void TestStopSignals::anIgnoredHangupStaysIgnored()
{
    QCOMPARE(statusOf([] {
                 std::signal(SIGHUP, SIG_IGN);
                 int during = -1;
                 {
                     const StopSignals stop;
                     raise(SIGHUP);
                     during = StopSignals::received();
                 }
                 raise(SIGHUP); // would end the process
                 return during;
             }),
             0);
}

void TestStopSignals::aNewOneHasReceivedNothing()
{
    {
        const StopSignals stop;
        raise(SIGINT);
    }
    const StopSignals stop;
    QCOMPARE(StopSignals::received(), 0);
}

void TestStopSignals::oneThatIsGoneLeavesNothingOpen()
{
    const auto openDescriptors = [] {
        return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::NoDotAndDotDot | QDir::System);
    };
    const QStringList before = openDescriptors();
    if (before.isEmpty()) {
        QSKIP("the system doesn't tell what a process has open");
    }
    {
        const StopSignals stop;
        QCOMPARE(openDescriptors().size(), before.size() + 2);
    }
    QCOMPARE(openDescriptors(), before);
}

QTEST_GUILESS_MAIN(TestStopSignals)
#include "test_stop_signals.moc"
