// What pausing and stopping a measurement wait for, and who comes between two passes.
#include "measurement/npr_measurement_thread.h"

#include "measurement/usual_device.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>
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

} // namespace

class TestMeasurementTurns : public QObject
{
    Q_OBJECT

private slots:
    void pausingDoesNotWaitForWhomThePassWaitsFor();
    void aTurnDuringAPassComesBeforeTheNext();
    void stoppingInterruptsNothing();
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

QTEST_GUILESS_MAIN(TestMeasurementTurns)
#include "test_measurement_turns.moc"
