// The measurement thread against an instrument at the other end of a socket.
#include "measurement/npr_measurement_thread.h"

#include "remote/ko_remote_exception.h"
#include "support/scripted_instrument.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QByteArray acpQuery = "*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP";

Analyzer connectedAnalyzer()
{
    Analyzer analyzer;
    analyzer.init();
    return analyzer;
}

// Counts measurementError without sending its argument anywhere.
class FailureCount
{
public:
    explicit FailureCount(NPRMeasurementThread& thread)
    {
        QObject::connect(
            &thread, &NPRMeasurementThread::measurementError, &thread,
            [this](KORemoteException* failure) {
                const QMutexLocker lock(&mutex);
                messages.append(failure->message());
            },
            Qt::DirectConnection);
    }
    QStringList taken()
    {
        const QMutexLocker lock(&mutex);
        return messages;
    }

private:
    QMutex mutex;
    QStringList messages;
};

} // namespace

class TestNprMeasurementThread : public QObject
{
    Q_OBJECT

private slots:
    void oneMeasurementGivesThreeNumbers();
    void twoRequestsRunOneAfterTheOther();
    void aPausedThreadMeasuresNothing();
    void resumedItMeasuresWithoutAPause();
    void pausingWaitsForTheEndOfTheMeasurement();
    void stoppedWhilePausedItEndsWithoutMeasuring();
    void destructionInTheMiddleOfAMeasurementWaitsForIt();
    void destructionDropsRequestsThatWait();
    void anAnalyzerThatWasNeverConnectedIsConnectedFirst();
    void aConnectionOfItsOwnIsKeptUntilTheRecordHasIt();
    void aMissingVisaLibraryIsReported();
    void aFailedMeasurementKeepsTheFormerResult();
    void aFailingDeviceDoesNotFillTheQueue();
    void aReplacedAnalyzerIsUsed();
};

void TestNprMeasurementThread::oneMeasurementGivesThreeNumbers()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, "-10.5,-1.25,-42\n");
    NPRMeasurementThread thread;
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{0.0, 0.0, 0.0}));
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceivedUpTo("&GTL\n");
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{-10.5, -1.25, -42.0}));
    // The instrument is handed back after every reading.
    QVERIFY(device.takeReceivedUpTo("&GTL\n").endsWith("POW:RES? ACP\n&GTL\n"));
}

void TestNprMeasurementThread::twoRequestsRunOneAfterTheOther()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, {{200, "1,2,3\n"}});
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceivedUpTo("&GTL\n");
    thread.requestSingleMeasurement();
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 2);
    const QByteArray once = "INIT:CONT OFF\nINIT;*WAI\n*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP\n&GTL\n";
    QCOMPARE(device.takeReceivedUpTo(once + once), once + once);
}

void TestNprMeasurementThread::aPausedThreadMeasuresNothing()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceivedUpTo("&GTL\n");
    thread.pause();
    thread.start(QThread::InheritPriority);
    // A request is served by the pool while the thread sleeps, and it is the only one.
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(device.takeReceivedUpTo("&GTL\n").count("ACP"), 1);
    QVERIFY(thread.isRunning());
}

void TestNprMeasurementThread::resumedItMeasuresWithoutAPause()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(connectedAnalyzer());
    thread.pause();
    thread.start(QThread::InheritPriority);
    for (int round = 0; round < 20; ++round) {
        const int before = finished.count();
        thread.resume();
        QTRY_VERIFY(finished.count() > before + 3);
        thread.pause();
    }
    // One more pass may have been on its way when it was paused.
    QTest::qWait(200);
    const int settled = finished.count();
    QTest::qWait(200);
    QCOMPARE(finished.count(), settled);
}

void TestNprMeasurementThread::pausingWaitsForTheEndOfTheMeasurement()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, {{800, "1,2,3\n"}});
    NPRMeasurementThread thread;
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceived();
    thread.start(QThread::InheritPriority);
    device.takeReceivedUpTo("ACP\n");
    QElapsedTimer timer;
    timer.start();
    thread.pause();
    QVERIFY(timer.elapsed() > 500);
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{1.0, 2.0, 3.0}));
}

void TestNprMeasurementThread::stoppedWhilePausedItEndsWithoutMeasuring()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    NPRMeasurementThread thread;
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceivedUpTo("&GTL\n");
    thread.pause();
    thread.start(QThread::InheritPriority);
    thread.stop();
    QTRY_VERIFY(thread.isFinished());
    QCOMPARE(device.takeReceived(), QByteArray());
}

void TestNprMeasurementThread::destructionInTheMiddleOfAMeasurementWaitsForIt()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, {{600, "1,2,3\n"}});
    {
        NPRMeasurementThread thread;
        thread.setAnalyzer(connectedAnalyzer());
        device.takeReceived();
        thread.start(QThread::InheritPriority);
        device.takeReceivedUpTo("ACP\n");
    }
    QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("&GTL\n"));
    QTRY_COMPARE(device.openConnections(), 0);
}

void TestNprMeasurementThread::destructionDropsRequestsThatWait()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, {{300, "1,2,3\n"}});
    QElapsedTimer timer;
    {
        NPRMeasurementThread thread;
        thread.setAnalyzer(connectedAnalyzer());
        timer.start();
        for (int i = 0; i < 50; ++i) {
            thread.requestSingleMeasurement();
        }
    }
    // Those that had begun to wait for their turn end; the others are dropped.
    QVERIFY(timer.elapsed() < 300 * (QThread::idealThreadCount() + 2) + 1000);
}

void TestNprMeasurementThread::anAnalyzerThatWasNeverConnectedIsConnectedFirst()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy connected(&thread, &NPRMeasurementThread::analyzerConnected);
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(Analyzer());
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(connected.count(), 1);
    const auto analyzer = connected.at(0).at(0).value<Analyzer>();
    QVERIFY(analyzer.initialized);
    QCOMPARE(analyzer.deviceMessage, QString("an analyzer"));
    QVERIFY(device.takeReceived().startsWith("*IDN?\n&GTL\nINIT:CONT OFF\n"));
}

void TestNprMeasurementThread::aConnectionOfItsOwnIsKeptUntilTheRecordHasIt()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    thread.offerAnalyzer(Analyzer()); // the record has not heard of the connection yet
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 2);
    QCOMPARE(device.connectionCount(), 1);
    // Once the record had it, a record without a connection means that it was given up.
    Analyzer heard;
    heard.init();
    thread.offerAnalyzer(heard);
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 3);
    thread.offerAnalyzer(Analyzer());
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 4);
    QCOMPARE(device.connectionCount(), 3);
}

void TestNprMeasurementThread::aMissingVisaLibraryIsReported()
{
    NPRMeasurementThread thread;
    FailureCount failures(thread);
    Analyzer analyzer;
    analyzer.interfaceKind = InterfaceKind::Gpib0;
    thread.setAnalyzer(analyzer);
    thread.requestSingleMeasurement();
    QTRY_COMPARE(failures.taken(), QStringList("Could not load VISA"));
    // Nothing is latched: the next one is tried and fails in its turn.
    thread.requestSingleMeasurement();
    QTRY_COMPARE(failures.taken().size(), 2);
}

void TestNprMeasurementThread::aFailedMeasurementKeepsTheFormerResult()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    FailureCount failures(thread);
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(connectedAnalyzer());
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    Analyzer unreachable;
    unreachable.interfaceKind = InterfaceKind::LanHislip;
    thread.setAnalyzer(unreachable);
    thread.requestSingleMeasurement();
    QTRY_COMPARE(failures.taken().size(), 1);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(thread.results(), (NPRMeasurementThread::Result{1.0, 2.0, 3.0}));
}

void TestNprMeasurementThread::aFailingDeviceDoesNotFillTheQueue()
{
    NPRMeasurementThread thread;
    FailureCount failures(thread);
    Analyzer analyzer;
    analyzer.interfaceKind = InterfaceKind::Gpib0;
    thread.setAnalyzer(analyzer);
    thread.start(QThread::InheritPriority);
    // While the main thread is busy elsewhere the thread goes on for a few passes only.
    QThread::msleep(300);
    QVERIFY(failures.taken().size() >= 1);
    QVERIFY(failures.taken().size() <= 3);
    QTRY_VERIFY(failures.taken().size() > 5); // and goes on with it
}

void TestNprMeasurementThread::aReplacedAnalyzerIsUsed()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "an analyzer\n");
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    Analyzer elsewhere;
    elsewhere.interfaceKind = InterfaceKind::Gpib0;
    thread.setAnalyzer(elsewhere);
    thread.offerAnalyzer(connectedAnalyzer());
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    // A record that was replaced as a whole takes its connection along, even if it has none.
    thread.setAnalyzer(Analyzer());
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 2);
    QCOMPARE(device.connectionCount(), 2);
}

QTEST_GUILESS_MAIN(TestNprMeasurementThread)
#include "test_npr_measurement_thread.moc"
