// The preset away from the main thread, and who is told of its failure.
#include "measurement/preset.h"

#include "kit/background_jobs.h"
#include "kit/remote_failure.h"
#include "kit/scripted_instrument.h"
#include "kit/system_limits.h"
#include "measurement/usual_device.h"

#include <QtTest>

#include <new>
#include <thread>

class TestPreset : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { isLimited = becomeOrdinaryUser() && threadLimitBinds(); }
    void inTheBackgroundTheWholeChainIsSet();
    void aPlaceIsTakenBeforeWhoeverAsksNext();
    void aFailureInTheBackgroundIsToldOnce();
    void aRetiredLinkEndsThePreset();
    void aRetiredAnalyzerIsNotPreset();
    void aLackOfMemoryDuringThePresetIsSaid();
    void withoutAThreadForThePresetItIsSaid();

private:
    bool isLimited = false;
};

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

QTEST_GUILESS_MAIN(TestPreset)
#include "test_preset.moc"
