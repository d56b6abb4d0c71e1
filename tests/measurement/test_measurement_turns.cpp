// What pausing and stopping a measurement wait for, who comes between two passes, and who has the
// link after them.
#include "measurement/npr_measurement_thread.h"

#include "kit/background_jobs.h"
#include "kit/system_limits.h"
#include "kit/thread_state.h"
#include "measurement/usual_device.h"
#include "remote/ko_remote_exception.h"
#include "remote/ko_remote_interface.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <memory>
#include <new>
#include <thread>
#include <utility>

namespace {

// Asks for a turn while a pass waits for its answer, lets the pass end and returns the turn.
LinkTurn turnAfterThePass(UsualDevice& device, const Analyzer& analyzer)
{
    LinkTurn given;
    QSemaphore come;
    analyzer.link()->ask([&](LinkTurn turn) {
        given = std::move(turn);
        come.release();
    });
    device.say("1,2,3\n");
    come.acquire();
    return given;
}

// A connection to a device for whose answers there is no room.
class NoMemory : public KORemoteInterface
{
public:
    void open() override {}
    void close() override {}
    void sendSCPI(const QString& /*command*/) override {}
    QString querySCPI(const QString& /*command*/) override { throw std::bad_alloc(); }
    void goToLocal() override {}
};

} // namespace

class TestMeasurementTurns : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { isLimited = becomeOrdinaryUser() && threadLimitBinds(); }
    void pausingDoesNotWaitForWhomThePassWaitsFor();
    void aTurnDuringAPassComesBeforeTheNext();
    void stoppingInterruptsNothing();
    void whoIsToldOfAFailureMayUseTheThread();
    void aLackOfMemoryIsToldLikeAnyFailure();
    void aMeasurementOnTheCallingThreadIsDoneWhenItReturns();
    void aStoppedThreadDoesNotWaitForItsTurn();
    void aPausedThreadAsksForNoTurn();
    void afterItsEndNoRequestReachesTheDevice();
    void withoutAThreadForARequestTheNextOneIsServed();

private:
    bool isLimited = false;
};

// The link's turn comes before the mutex.
void TestMeasurementTurns::pausingDoesNotWaitForWhomThePassWaitsFor()
{
    UsualDevice device;
    const Analyzer analyzer = connectedAnalyzer();
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(analyzer);
    thread.start(QThread::InheritPriority);
    device.takeReceivedUpTo("ACP\n");
    LinkTurn other = turnAfterThePass(device, analyzer);
    QTRY_COMPARE(finished.count(), 1); // and the next pass waits for the other's end
    thread.pause();                    // would never return if it waited for that, too
    std::atomic<bool> served = false;
    analyzer.link()->ask([&served](const LinkTurn& turn) { served = bool(turn); });
    device.takeReceivedUpTo("&GTL\n");
    other.giveBack();
    QTRY_VERIFY(served);
    // The turn of the pass has come and gone without a measurement.
    QVERIFY(analyzer.link()->takeTurn());
    QCOMPARE(device.takeReceived(), QByteArray());
    QCOMPARE(finished.count(), 1);
}

void TestMeasurementTurns::aTurnDuringAPassComesBeforeTheNext()
{
    UsualDevice device;
    const Analyzer analyzer = connectedAnalyzer();
    NPRMeasurementThread thread;
    thread.setAnalyzer(analyzer);
    device.takeReceivedUpTo("&GTL\n");
    thread.start(QThread::InheritPriority);
    LinkTurn turn;
    for (int round = 0; round < 3; ++round) {
        turn.giveBack();
        device.takeReceivedUpTo("ACP\n");
        turn = turnAfterThePass(device, analyzer);
        // Of the pass in progress the end is left, and no other has begun.
        QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("&GTL\n"));
        QCOMPARE(device.takeReceived(), QByteArray());
    }
    thread.stop();
}

void TestMeasurementTurns::stoppingInterruptsNothing()
{
    UsualDevice device;
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceived();
    thread.start(QThread::InheritPriority);
    device.takeReceivedUpTo("ACP\n");
    thread.stop(); // doesn't wait for the answer, which would never come
    device.say("1,2,3\n");
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{1.0, 2.0, 3.0}));
    QTRY_VERIFY(thread.isFinished());
    QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("&GTL\n"));
}

void TestMeasurementTurns::whoIsToldOfAFailureMayUseTheThread()
{
    NPRMeasurementThread thread;
    Analyzer analyzer;
    analyzer.interfaceKind = InterfaceKind::Gpib0;
    thread.setAnalyzer(analyzer);
    bool mayPause = false;
    QSemaphore paused;
    std::thread user;
    connect(
        &thread, &NPRMeasurementThread::measurementError, this,
        [&] {
            user = std::thread([&] {
                thread.pause(); // waits for the end of a measurement in progress
                paused.release();
            });
            mayPause = paused.tryAcquire(1, 5000);
        },
        Qt::DirectConnection);
    thread.measureOnce();
    QVERIFY(user.joinable());
    user.join();
    QVERIFY(mayPause);
}

void TestMeasurementTurns::aLackOfMemoryIsToldLikeAnyFailure()
{
    const Analyzer analyzer;
    analyzer.link()->setRemote(std::make_shared<AnalyzerCommands>(std::make_unique<NoMemory>()));
    NPRMeasurementThread thread;
    thread.setAnalyzer(analyzer);
    QString told;
    bool mayPause = false;
    connect(
        &thread, &NPRMeasurementThread::measurementError, &thread,
        [&](KORemoteException* failure) {
            told = failure->message();
            QSemaphore paused;
            std::thread other([&] { // would wait for the end of the measurement
                thread.pause();
                paused.release();
            });
            mayPause = paused.tryAcquire(1, 5000);
            mayPause ? other.join() : other.detach();
        },
        Qt::DirectConnection);
    thread.measureOnce();
    QCOMPARE(told, QString("Not enough memory"));
    QVERIFY(mayPause);
}

void TestMeasurementTurns::aMeasurementOnTheCallingThreadIsDoneWhenItReturns()
{
    UsualDevice device;
    device.answer(acpQuery, "-10.5,-1.25,-42\n");
    NPRMeasurementThread thread;
    const Analyzer analyzer = connectedAnalyzer();
    thread.setAnalyzer(analyzer);
    thread.measureOnce();
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{-10.5, -1.25, -42.0}));
    QVERIFY(isFree(analyzer));
    device.takeReceivedUpTo("ACP\n&GTL\n");
    analyzer.link()->retire();
    thread.measureOnce();
    analyzer.commands()->send("end");
    QCOMPARE(device.takeReceivedUpTo("end\n"), QByteArray("end\n"));
}

// Somebody else talks to the analyzer, perhaps for long. The thread is met as it begins and asleep.
void TestMeasurementTurns::aStoppedThreadDoesNotWaitForItsTurn()
{
    const Analyzer analyzer;
    bool hasEnded = true;
    for (int round = 0; round < 20 && hasEnded; ++round) {
        LinkTurn other = analyzer.link()->takeTurn();
        NPRMeasurementThread thread;
        const NewThreads begun;
        thread.setAnalyzer(analyzer);
        thread.pause();
        thread.start(QThread::InheritPriority);
        if (round % 2 == 1) {
            QTRY_VERIFY(begun.areAsleep());
        }
        thread.stop();
        hasEnded = thread.wait(5000);
        other.giveBack();
    }
    QVERIFY(hasEnded);
}

// Whoever asks for the link of a device that nobody measures with is first in the queue.
void TestMeasurementTurns::aPausedThreadAsksForNoTurn()
{
    const Analyzer analyzer;
    LinkTurn other = analyzer.link()->takeTurn();
    NPRMeasurementThread thread;
    const NewThreads begun;
    thread.setAnalyzer(analyzer);
    thread.pause();
    thread.start(QThread::InheritPriority);
    QTRY_VERIFY(begun.areAsleep()); // it would have asked by then
    std::thread::id served;
    analyzer.link()->ask([&served](const LinkTurn&) { served = std::this_thread::get_id(); });
    other.giveBack(); // to the next one, within this call
    QVERIFY(served == std::this_thread::get_id());
}

void TestMeasurementTurns::afterItsEndNoRequestReachesTheDevice()
{
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    const Analyzer analyzer = connectedAnalyzer();
    device.takeReceivedUpTo("&GTL\n");
    LinkTurn other = analyzer.link()->takeTurn();
    {
        NPRMeasurementThread thread;
        thread.setAnalyzer(analyzer);
        thread.requestSingleMeasurement();
        thread.requestSingleMeasurement();
    }
    other.giveBack();
    waitForBackgroundJobs();
    QVERIFY(isFree(analyzer));
    analyzer.commands()->send("end");
    QCOMPARE(device.takeReceivedUpTo("end\n"), QByteArray("end\n"));
}

void TestMeasurementTurns::withoutAThreadForARequestTheNextOneIsServed()
{
    if (!isLimited) {
        QSKIP("no limit on threads binds this process");
    }
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    const Analyzer analyzer = connectedAnalyzer();
    thread.setAnalyzer(analyzer);
    {
        const ThreadLimit limit;
        const NoIdleWorkers none;
        thread.requestSingleMeasurement();
        QVERIFY(isFree(analyzer));
    }
    waitForBackgroundJobs();
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{0.0, 0.0, 0.0}));
    thread.requestSingleMeasurement();
    waitForBackgroundJobs();
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{1.0, 2.0, 3.0}));
}

QTEST_GUILESS_MAIN(TestMeasurementTurns)
#include "test_measurement_turns.moc"
