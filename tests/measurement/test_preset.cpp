// The preset away from the main thread, who is told of its failure, and the channels of a reading.
#include "measurement/preset.h"

#include "kit/background_jobs.h"
#include "kit/remote_failure.h"
#include "kit/scripted_instrument.h"
#include "kit/system_limits.h"
#include "kit/thread_state.h"
#include "measurement/channels.h"
#include "measurement/npr_measurement_thread.h"
#include "measurement/usual_device.h"
#include "remote/ko_remote_interface.h"

#include <QSemaphore>
#include <QtTest>

#include <new>
#include <thread>

namespace {

Notch notchAt(double center, double width)
{
    Notch notch;
    notch.center = center;
    notch.width = width;
    return notch;
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

bool isFree(const Instrument& instrument)
{
    bool given = false;
    instrument.link()->ask([&given](const LinkTurn& turn) { given = bool(turn); });
    return given;
}

} // namespace

class TestPreset : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { isLimited = becomeOrdinaryUser() && threadLimitBinds(); }
    void channelsOfAnUpperNotch();
    void channelsOfALowerNotch();
    void inTheBackgroundTheWholeChainIsSet();
    void aPlaceIsTakenBeforeWhoeverAsksNext();
    void aFailureInTheBackgroundIsToldOnce();
    void aRetiredLinkEndsThePreset();
    void aRetiredAnalyzerIsNotPreset();
    void aMeasurementOnTheCallingThreadIsDoneWhenItReturns();
    void aStoppedThreadDoesNotWaitForItsTurn();
    void aPausedThreadAsksForNoTurn();
    void resumingBeginsAThreadThatNeverBegan();
    void afterItsEndNoRequestReachesTheDevice();
    void aLackOfMemoryIsToldLikeAnyFailure();
    void aLackOfMemoryDuringThePresetIsSaid();
    void withoutAThreadForThePresetItIsSaid();
    void withoutAThreadForARequestTheNextOneIsServed();

private:
    bool isLimited = false;
};

// 1.2 widths between the channels' middles, 0.75 widths wide.
void TestPreset::channelsOfAnUpperNotch()
{
    const ReadingChannels channels = channelsOf(notchAt(10e6, 2e6));
    QVERIFY(channels.notchIsUpper);
    QCOMPARE(channels.reference, 7.6e6);
    QCOMPARE(channels.bandwidth, 1.5e6);
    QCOMPARE(channels.spacing, 2.4e6);
    QCOMPARE(channels.notch(), 10e6);
}

void TestPreset::channelsOfALowerNotch()
{
    const ReadingChannels channels = channelsOf(notchAt(-10e6, 2e6));
    QVERIFY(!channels.notchIsUpper);
    QCOMPARE(channels.reference, -7.6e6);
    QCOMPARE(channels.spacing, 2.4e6);
    QCOMPARE(channels.notch(), -10e6);
}

void TestPreset::inTheBackgroundTheWholeChainIsSet()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "one for all\n");
    InstrumentChain chain;
    chain.generator.frequency = 1e9;
    chain.microwave.device = 1;
    chain.microwave.frequency = 2e10;
    chain.analyzer.level = -7.5;
    QStringList failures;
    presetInBackground(chain,
                       [&failures](KORemoteException* told) { failures << told->message(); });
    waitForBackgroundJobs();
    const QByteArray sent = device.takeReceivedUpTo("RLEV -7.500\n&GTL\n");
    QVERIFY(sent.contains("FREQ 1000000000.000000\n"));
    QVERIFY(sent.contains("FREQ 20000000000.000000\n"));
    QVERIFY(sent.contains("SENS:DET1:FUNC RMS\n"));
    QCOMPARE(failures, QStringList());
    QVERIFY(isFree(chain.analyzer) && isFree(chain.generator) && isFree(chain.microwave));
}

// The main thread's order is the devices' order, however late the worker thread begins.
void TestPreset::aPlaceIsTakenBeforeWhoeverAsksNext()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "one for all\n");
    const InstrumentChain chain;
    presetInBackground(chain, [](KORemoteException*) {});
    QString message = QStringLiteral("not served");
    QString messageOfTheNext = QStringLiteral("not served");
    chain.analyzer.link()->ask([&](const LinkTurn&) { // between its first step and the next one
        message = chain.analyzer.deviceMessage();
        messageOfTheNext = chain.generator.deviceMessage();
    });
    waitForBackgroundJobs();
    QCOMPARE(message, QString("one for all"));
    QCOMPARE(messageOfTheNext, QString());
    QCOMPARE(chain.generator.deviceMessage(), QString("one for all"));
}

void TestPreset::aFailureInTheBackgroundIsToldOnce()
{
    InstrumentChain chain;
    chain.generator.ipAddress = QStringLiteral("127.0.0.9"); // nobody there
    chain.analyzer.interfaceKind = InterfaceKind::Gpib0;     // and no VISA library
    QStringList failures;
    std::thread::id teller;
    presetInBackground(chain, [&](KORemoteException* told) {
        failures << told->message();
        teller = std::this_thread::get_id();
    });
    waitForBackgroundJobs();
    QCOMPARE(failures, QStringList("Analyzer is not initialized!"));
    QVERIFY(teller != std::this_thread::get_id());
    QCOMPARE(chain.analyzer.deviceMessage(), QString("Could not load VISA"));
    QVERIFY(isFree(chain.analyzer));
}

void TestPreset::aRetiredLinkEndsThePreset()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "one for all\n");
    InstrumentChain chain;
    chain.generator.link()->retire();
    QCOMPARE(failureOf([&] { presetInstruments(chain, chain.analyzer.link()->takeTurn()); }),
             QString("(none)"));
    chain.analyzer.commands()->send("end");
    QCOMPARE(device.takeReceivedUpTo("end\n"), QByteArray("*IDN?\n&GTL\nend\n"));
    QVERIFY(isFree(chain.analyzer));
}

void TestPreset::aRetiredAnalyzerIsNotPreset()
{
    ScriptedInstrument device;
    InstrumentChain chain;
    chain.analyzer.link()->retire();
    int failures = 0;
    presetInBackground(chain, [&failures](KORemoteException*) { ++failures; });
    waitForBackgroundJobs();
    QCOMPARE(failures, 0);
    QCOMPARE(device.connectionCount(), 0);
}

void TestPreset::aMeasurementOnTheCallingThreadIsDoneWhenItReturns()
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
void TestPreset::aStoppedThreadDoesNotWaitForItsTurn()
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
void TestPreset::aPausedThreadAsksForNoTurn()
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

void TestPreset::resumingBeginsAThreadThatNeverBegan()
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

void TestPreset::afterItsEndNoRequestReachesTheDevice()
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

void TestPreset::aLackOfMemoryIsToldLikeAnyFailure()
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

// It comes from the one to whom the link is handed on after the first step.
void TestPreset::aLackOfMemoryDuringThePresetIsSaid()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "one for all\n");
    const InstrumentChain chain;
    LinkTurn other = chain.analyzer.link()->takeTurn();
    int failures = 0;
    presetInBackground(chain, [&failures](KORemoteException*) { ++failures; });
    chain.analyzer.link()->ask([](const LinkTurn&) { throw std::bad_alloc(); });
    other.giveBack();
    waitForBackgroundJobs();
    QCOMPARE(chain.analyzer.deviceMessage(), QString("Not enough memory"));
    QCOMPARE(failures, 0);
    QVERIFY(isFree(chain.analyzer));
}

void TestPreset::withoutAThreadForThePresetItIsSaid()
{
    if (!isLimited) {
        QSKIP("no limit on threads binds this process");
    }
    const InstrumentChain chain;
    {
        const ThreadLimit limit;
        const NoIdleWorkers none;
        presetInBackground(chain, [](KORemoteException*) {});
        QCOMPARE(chain.analyzer.deviceMessage(), QString("No thread for the instrument"));
        QVERIFY(isFree(chain.analyzer));
    }
    waitForBackgroundJobs();
}

void TestPreset::withoutAThreadForARequestTheNextOneIsServed()
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

QTEST_GUILESS_MAIN(TestPreset)
#include "test_preset.moc"
