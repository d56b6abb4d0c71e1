// The measurement thread against an instrument at the other end of a socket.
#include "measurement/npr_measurement_thread.h"

#include "kit/background_jobs.h"
#include "kit/thread_state.h"
#include "measurement/usual_device.h"
#include "remote/ko_remote_exception.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>

namespace {

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
    void resumingBeginsAThreadThatNeverBegan();
    void stoppedWhilePausedItEndsWithoutMeasuring();
    void stoppedInItsSleepItWakesAndEnds();
    void destructionInTheMiddleOfAMeasurementWaitsForIt();
    void destructionDropsRequestsThatWait();
    void anAnalyzerThatWasNeverConnectedIsConnectedFirst();
    void theRecordHasTheConnectionAtOnce();
    void aMissingVisaLibraryIsReported();
    void aFailedMeasurementKeepsTheFormerResult();
    void aFailingDeviceDoesNotFillTheQueue();
    void aReplacedAnalyzerIsUsed();
};

void TestNprMeasurementThread::oneMeasurementGivesThreeNumbers()
{
    UsualDevice device;
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
    UsualDevice device;
    device.answer(acpQuery, {{200, "1,2,3\n"}});
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceivedUpTo("&GTL\n");
    thread.requestSingleMeasurement();
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 2);
    const QByteArray once = "INIT:CONT OFF\nINIT;*WAI\n" + acpQuery + "\n&GTL\n";
    QCOMPARE(device.takeReceivedUpTo(once + once), once + once);
}

void TestNprMeasurementThread::aPausedThreadMeasuresNothing()
{
    UsualDevice device;
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
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    const Analyzer analyzer = connectedAnalyzer();
    thread.setAnalyzer(analyzer);
    thread.pause();
    thread.start(QThread::InheritPriority);
    for (int round = 0; round < 20; ++round) {
        const int before = finished.count();
        thread.resume();
        QTRY_VERIFY(finished.count() > before + 3);
        thread.pause();
    }
    analyzer.link()->takeTurn(); // the thread is done with it
    // One more pass may have been on its way when it was paused; during fifty requests a thread
    // that went on would make many.
    device.takeReceived();
    for (int request = 0; request < 50; ++request) {
        thread.requestSingleMeasurement();
        waitForBackgroundJobs();
    }
    const auto passes = device.takeReceived().count("ACP");
    QVERIFY2(passes == 50 || passes == 51, QByteArray::number(passes));
}

void TestNprMeasurementThread::pausingWaitsForTheEndOfTheMeasurement()
{
    UsualDevice device;
    device.answer(acpQuery, {{500, "1,2,3\n"}});
    NPRMeasurementThread thread;
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceivedUpTo("&GTL\n");
    thread.start(QThread::InheritPriority);
    // For the end of that one, and not for the next: the thread must not get ahead again.
    for (int round = 1; round <= 3; ++round) {
        device.takeReceivedUpTo("ACP\n");
        thread.pause();
        QCOMPARE(thread.results(), (NPRMeasurementThread::Result{1.0 * round, 2.0, 3.0}));
        QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("&GTL\n"));
        device.answer(acpQuery, {{500, QByteArray::number(round + 1) + ",2,3\n"}});
        thread.resume();
    }
}

void TestNprMeasurementThread::resumingBeginsAThreadThatNeverBegan()
{
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    thread.setAnalyzer(connectedAnalyzer());
    QVERIFY(!thread.isRunning());
    thread.resume();
    QVERIFY(thread.isRunning());
    QTRY_COMPARE(thread.results(), (NPRMeasurementThread::Result{1.0, 2.0, 3.0}));
}

void TestNprMeasurementThread::stoppedWhilePausedItEndsWithoutMeasuring()
{
    UsualDevice device;
    NPRMeasurementThread thread;
    thread.setAnalyzer(connectedAnalyzer());
    device.takeReceivedUpTo("&GTL\n");
    thread.pause();
    thread.start(QThread::InheritPriority);
    thread.stop();
    QVERIFY(thread.wait(10000));
    QCOMPARE(device.takeReceived(), QByteArray());
}

void TestNprMeasurementThread::stoppedInItsSleepItWakesAndEnds()
{
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    std::atomic<long> id{0};
    connect(
        &thread, &NPRMeasurementThread::measurementFinished, &thread, [&id] { id = ownThreadId(); },
        Qt::DirectConnection);
    thread.setAnalyzer(connectedAnalyzer());
    thread.start(QThread::InheritPriority);
    QTRY_VERIFY(id != 0);
    thread.pause();
    if (stateOfThread(id) == '?') {
        QSKIP("the system doesn't tell what a thread does");
    }
    QTRY_COMPARE(stateOfThread(id), 'S');
    thread.stop();
    QVERIFY(thread.wait(10000));
}

void TestNprMeasurementThread::destructionInTheMiddleOfAMeasurementWaitsForIt()
{
    UsualDevice device;
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
    UsualDevice device;
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
    // The one that had begun comes to its end; the others are dropped.
    QVERIFY(timer.elapsed() < 10000);
}

void TestNprMeasurementThread::anAnalyzerThatWasNeverConnectedIsConnectedFirst()
{
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    const Analyzer analyzer;
    thread.setAnalyzer(analyzer);
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(analyzer.initialized());
    QCOMPARE(analyzer.deviceMessage(), QString("an analyzer"));
    QVERIFY(device.takeReceived().startsWith("*IDN?\n&GTL\nINIT:CONT OFF\n"));
}

void TestNprMeasurementThread::theRecordHasTheConnectionAtOnce()
{
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    const Analyzer record;
    thread.setAnalyzer(record);
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 1);
    Analyzer changed = record;
    changed.level = 7.0;
    thread.setAnalyzer(changed); // other settings, the same device
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 2);
    QCOMPARE(device.connectionCount(), 1);
    thread.setAnalyzer(Analyzer()); // another device
    thread.requestSingleMeasurement();
    QTRY_COMPARE(finished.count(), 3);
    QCOMPARE(device.connectionCount(), 2);
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
    UsualDevice device;
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
    Analyzer analyzer;
    analyzer.interfaceKind = InterfaceKind::Gpib0;
    thread.setAnalyzer(analyzer);
    QSemaphore passes;
    connect(
        &thread, &NPRMeasurementThread::measurementError, &thread, [&] { passes.release(); },
        Qt::DirectConnection);
    thread.start(QThread::InheritPriority);
    // While the main thread is busy elsewhere the thread goes on for a few passes only.
    QVERIFY(passes.tryAcquire(3, 10000));
    QVERIFY(!passes.tryAcquire(1, 100));
    QTRY_VERIFY(passes.available() >= 3); // and goes on with it
    thread.stop();                        // while there is somebody to count
    QVERIFY(thread.wait(10000));
}

void TestNprMeasurementThread::aReplacedAnalyzerIsUsed()
{
    UsualDevice device;
    device.answer(acpQuery, "1,2,3\n");
    NPRMeasurementThread thread;
    QSignalSpy finished(&thread, &NPRMeasurementThread::measurementFinished);
    Analyzer elsewhere;
    elsewhere.interfaceKind = InterfaceKind::Gpib0;
    thread.setAnalyzer(elsewhere);
    thread.setAnalyzer(connectedAnalyzer());
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
