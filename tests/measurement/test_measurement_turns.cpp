// What pausing and stopping a measurement wait for, and who comes between two passes.
#include "measurement/npr_measurement_thread.h"

#include "measurement/usual_device.h"

#include <QSignalSpy>
#include <QtTest>

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
    device.answer(acpQuery, {{100, "1,2,3\n"}});
    const Analyzer analyzer = connectedAnalyzer();
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(analyzer);
    thread.start(QThread::InheritPriority);
    device.takeReceivedUpTo("ACP\n");
    LinkTurn other = analyzer.link()->takeTurn();
    QTRY_COMPARE(finished.count(), 1); // and the next pass waits for the other's end
    thread.pause();                    // would never return if it waited for that, too
    bool served = false;
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
    device.answer(acpQuery, {{300, "1,2,3\n"}});
    const Analyzer analyzer = connectedAnalyzer();
    NPRMeasurementThread thread;
    thread.setAnalyzer(analyzer);
    device.takeReceivedUpTo("&GTL\n");
    thread.start(QThread::InheritPriority);
    for (int round = 0; round < 3; ++round) {
        device.takeReceivedUpTo("ACP\n");
        const LinkTurn turn = analyzer.link()->takeTurn();
        // Of the pass in progress the end is left, and no other has begun.
        QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("&GTL\n"));
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
