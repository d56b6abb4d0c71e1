// Bringing the three instruments up and setting them, read at the other end of the line.
#include "instruments/analyzer.h"
#include "instruments/connect_device.h"
#include "instruments/microwave_generator.h"
#include "instruments/signal_generator.h"

#include "kit/scripted_instrument.h"

#include <QtTest>

#include <memory>

class TestInstrumentConnection : public QObject
{
    Q_OBJECT

private slots:
    void anInterfaceRowGivesItsTransport_data();
    void anInterfaceRowGivesItsTransport();
    void initAsksWhoIsThere_data();
    void initAsksWhoIsThere();
    void initDropsTheFormerConnection();
    void aRefusedConnectionIsTold();
    void aSilentDeviceCountsAsConnected();
    void anUnknownInterfaceEndsInAMessage();
    void withoutVisaTheMessageSaysSo();
    void anUnreportedSerialPortEndsInAMessage();
    void setOfASignalGeneratorConnectsAndConfigures();
    void theModelIsTheOneOfTheLastInit();
    void setOfAnAnalyzerSendsAllSettingsInOrder();
    void setOfAnAnalyzerSendsNumbersForManualSettings();
    void setOfAMicrowaveGenerator_data();
    void setOfAMicrowaveGenerator();
    void aMicrowaveRowOfNoneSpeaksTheLastDialect();
    void aFailedDeviceIsTriedAgainThroughItsConnection();
    void resetWithoutAConnectionDoesNothing();
    void resetKeepsTheMessage();
    void resetAfterAFailedInitSaysNothingToAnybody();
    void copiesShareTheConnection();
};

namespace {

const QByteArray identity = "ACME,42\n";

} // namespace

void TestInstrumentConnection::anInterfaceRowGivesItsTransport_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("exists");
    QTest::newRow("socket") << 4 << true;
    QTest::newRow("serial") << 6 << true;
    QTest::newRow("above the last") << 7 << false;
    QTest::newRow("far above") << std::numeric_limits<int>::max() << false;
    QTest::newRow("negative") << -1 << false;
}

void TestInstrumentConnection::anInterfaceRowGivesItsTransport()
{
    QFETCH(int, row);
    SignalGenerator generator;
    generator.interfaceKind = static_cast<InterfaceKind>(row);
    QTEST(createInterface(generator) != nullptr, "exists");
}

using InstrumentPointer = std::shared_ptr<Instrument>;
Q_DECLARE_METATYPE(InstrumentPointer)

void TestInstrumentConnection::initAsksWhoIsThere_data()
{
    QTest::addColumn<InstrumentPointer>("instrument");
    QTest::newRow("signal generator") << InstrumentPointer(std::make_shared<SignalGenerator>());
    QTest::newRow("analyzer") << InstrumentPointer(std::make_shared<Analyzer>());
    QTest::newRow("microwave") << InstrumentPointer(std::make_shared<MicrowaveGenerator>());
}

void TestInstrumentConnection::initAsksWhoIsThere()
{
    QFETCH(InstrumentPointer, instrument);
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    instrument->init();
    QVERIFY(instrument->initialized());
    QCOMPARE(instrument->deviceMessage(), QString("ACME,42"));
    QVERIFY(instrument->remote() != nullptr);
    QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("*IDN?\n&GTL\n"));
}

void TestInstrumentConnection::initDropsTheFormerConnection()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    Analyzer analyzer;
    analyzer.init();
    QTRY_COMPARE(device.openConnections(), 1);
    analyzer.init();
    QTRY_COMPARE(device.connectionCount(), 2);
    QTRY_COMPARE(device.openConnections(), 1);
}

void TestInstrumentConnection::aRefusedConnectionIsTold()
{
    Analyzer analyzer;
    analyzer.link()->setInitialized();
    analyzer.ipAddress = "127.0.0.9";
    analyzer.init();
    QVERIFY(!analyzer.initialized());
    QCOMPARE(analyzer.deviceMessage(), QString("Unable to connect to Host: 127.0.0.9"));
    QVERIFY(analyzer.commands() != nullptr);
    analyzer.ipAddress = "analyzer.lab";
    analyzer.init();
    QCOMPARE(analyzer.deviceMessage(), QString("Unable to connect to Host: "));
}

void TestInstrumentConnection::aSilentDeviceCountsAsConnected()
{
    const ScriptedInstrument device;
    SignalGenerator generator;
    generator.link()->setDeviceMessage("before");
    generator.init();
    QVERIFY(generator.initialized());
    QCOMPARE(generator.deviceMessage(), QString());
}

void TestInstrumentConnection::anUnknownInterfaceEndsInAMessage()
{
    SignalGenerator generator;
    generator.interfaceKind = static_cast<InterfaceKind>(7);
    generator.init();
    QVERIFY(!generator.initialized());
    QVERIFY(!generator.deviceMessage().isEmpty());
    generator.link()->setDeviceMessage({});
    generator.reset();
    QVERIFY(!generator.deviceMessage().isEmpty());
    generator.link()->setDeviceMessage({});
    generator.setup();
    QVERIFY(!generator.deviceMessage().isEmpty());
    generator.init(); // drops the null transport
    QVERIFY(!generator.initialized());
}

void TestInstrumentConnection::withoutVisaTheMessageSaysSo()
{
    Analyzer analyzer;
    for (const auto kind : {InterfaceKind::Gpib0, InterfaceKind::Gpib1, InterfaceKind::LanTlnk,
                            InterfaceKind::LanVxi11, InterfaceKind::LanHislip}) {
        analyzer.interfaceKind = kind;
        analyzer.link()->setDeviceMessage({});
        analyzer.setup();
        QCOMPARE(analyzer.deviceMessage(), QString("Could not load VISA"));
        QVERIFY(!analyzer.initialized());
        QVERIFY(analyzer.commands() == nullptr);
    }
}

void TestInstrumentConnection::anUnreportedSerialPortEndsInAMessage()
{
    SignalGenerator generator;
    generator.interfaceKind = InterfaceKind::Rs232;
    generator.rs232Port = std::numeric_limits<quint32>::max();
    generator.init();
    QCOMPARE(generator.deviceMessage(), QString("Error at openSerial"));
}

void TestInstrumentConnection::setOfASignalGeneratorConnectsAndConfigures()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    SignalGenerator generator;
    generator.device = 2; // ALTAIR
    generator.frequency = 2.4e9;
    generator.level = -3.5;
    generator.setup();
    QVERIFY(generator.initialized());
    QCOMPARE(device.takeReceivedUpTo("L -3.500000\n*IDN?\n&GTL\n"),
             QByteArray("*IDN?\n&GTL\nL:ON\nIQ:ON\nRF 2400000000.000000\nL -3.500000\n"
                        "*IDN?\n&GTL\n"));
}

void TestInstrumentConnection::theModelIsTheOneOfTheLastInit()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    SignalGenerator generator;
    generator.device = 1; // LYR
    generator.init();
    device.takeReceivedUpTo("&GTL\n");
    generator.device = 0;
    generator.setup();
    QVERIFY(device.takeReceivedUpTo("*IDN?\n&GTL\n").startsWith("LEV:ON\nRF "));
    generator.init();
    device.takeReceivedUpTo("&GTL\n");
    generator.setup();
    QVERIFY(device.takeReceivedUpTo("*IDN?\n&GTL\n").startsWith("OUTP ON\nIQ:STAT ON\n"));
}

void TestInstrumentConnection::setOfAnAnalyzerSendsAllSettingsInOrder()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    Analyzer analyzer;
    analyzer.init();
    device.takeReceivedUpTo("&GTL\n");
    analyzer.frequency = 1e9;
    analyzer.setAutoSweepTime(true);
    analyzer.setResolutionBandwidth(0);
    analyzer.setup();
    // The attenuation goes out before its automatic mode, although that is on.
    QCOMPARE(device.takeReceivedUpTo("*IDN?\n&GTL\n"),
             QByteArray("FREQ:CENT 1000000000.00000000000\nFREQ:SPAN 100000.00000000000\n"
                        "DISP:WIND1:TRAC:Y:RLEV -20.000\nINP:ATT 10.000000\n\nINP:ATT:AUTO ON\n"
                        "BAND:RES:AUTO ON\nBAND:VID 300000.00000000000\nSWE:TIME:AUTO ON\n"
                        "*IDN?\n&GTL\n"));
}

void TestInstrumentConnection::setOfAnAnalyzerSendsNumbersForManualSettings()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    Analyzer analyzer;
    analyzer.init();
    device.takeReceivedUpTo("&GTL\n");
    analyzer.autoAttenuation = false;
    analyzer.attenuation = 35;
    analyzer.setVideoBandwidth(0);
    analyzer.setup();
    const QByteArray sent = device.takeReceivedUpTo("*IDN?\n&GTL\n");
    QVERIFY(sent.contains("INP:ATT 35.000000\n\nINP:ATT:AUTO OFF\nBAND:RES 30000.00000000000\n"
                          "BAND:VID:AUTO ON\nSWE:TIME 2.000000\n"));
}

void TestInstrumentConnection::setOfAMicrowaveGenerator_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("ifInput");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("TAU, IF input") << 1 << true << QByteArray("FREQ 10000000000.000000\nOUTP ON\n");
    QTest::newRow("TAU, no IF input")
        << 1 << false << QByteArray("FREQ 10000000000.000000\nOUTP ON\nPOW -20.000000\n");
    QTest::newRow("ZUB, IF input")
        << 2 << true
        << QByteArray("FREQ 10000000000.000000\nOUTP1 ON\n*OPT?\n:INP:IF:STAT ON\n*OPT?\n"
                      "OUTP1:ATT 30.000000\n");
    QTest::newRow("ZUB, no IF input")
        << 2 << false
        << QByteArray("FREQ 10000000000.000000\nOUTP1 ON\n*OPT?\n:INP:IF:STAT OFF\n*OPT?\n"
                      "OUTP1:ATT 30.000000\nPOW -20.000000\n");
}

void TestInstrumentConnection::setOfAMicrowaveGenerator()
{
    QFETCH(int, row);
    QFETCH(bool, ifInput);
    QFETCH(QByteArray, sent);
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    device.answer("*OPT?", "B15,B23\n");
    MicrowaveGenerator microwave;
    microwave.device = static_cast<quint32>(row);
    microwave.frequency = 1e10;
    microwave.attenuation = 30;
    microwave.ifInput = ifInput;
    microwave.init();
    device.takeReceivedUpTo("&GTL\n");
    microwave.setup();
    QCOMPARE(device.takeReceivedUpTo("*IDN?\n&GTL\n"), sent + "*IDN?\n&GTL\n");
}

void TestInstrumentConnection::aMicrowaveRowOfNoneSpeaksTheLastDialect()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    device.answer("*OPT?", "0\n");
    MicrowaveGenerator microwave;
    microwave.setup();
    QVERIFY(device.takeReceivedUpTo("0.000000\nOUTP1 ON\n*OPT?\n*OPT?\n*IDN?\n&GTL\n")
                .contains("OUTP1 ON\n*OPT?\n"));
}

void TestInstrumentConnection::aFailedDeviceIsTriedAgainThroughItsConnection()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    SignalGenerator generator;
    generator.init();
    generator.link()->fail(generator.deviceMessage()); // as a failed "Set" leaves it
    device.takeReceivedUpTo("&GTL\n");
    generator.setup();
    QCOMPARE(device.connectionCount(), 1);
    QCOMPARE(generator.deviceMessage(), QString("ACME,42"));
    QVERIFY(!generator.initialized()); // only init() makes it connected again
}

void TestInstrumentConnection::resetWithoutAConnectionDoesNothing()
{
    Analyzer analyzer;
    analyzer.link()->setDeviceMessage("kept");
    analyzer.reset();
    QCOMPARE(analyzer.deviceMessage(), QString("kept"));
}

void TestInstrumentConnection::resetKeepsTheMessage()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    Analyzer analyzer;
    analyzer.init();
    device.takeReceivedUpTo("&GTL\n");
    analyzer.reset();
    QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("*RST\n&GTL\n"));
    QCOMPARE(analyzer.deviceMessage(), QString("ACME,42"));
    QVERIFY(analyzer.initialized());
}

void TestInstrumentConnection::resetAfterAFailedInitSaysNothingToAnybody()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    Analyzer analyzer;
    analyzer.init();
    device.takeReceivedUpTo("&GTL\n");
    analyzer.ipAddress = "127.0.0.9";
    analyzer.init();
    analyzer.reset();
    QCOMPARE(analyzer.deviceMessage(), QString("Unable to connect to Host: 127.0.0.9"));
    QVERIFY(!analyzer.initialized());
    // One that leaves no connection behind leaves none of the former ones either.
    analyzer.interfaceKind = InterfaceKind::Gpib0;
    analyzer.init();
    QVERIFY(analyzer.remote() == nullptr);
    analyzer.reset();
    QCOMPARE(analyzer.deviceMessage(), QString("Could not load VISA"));
    QTRY_COMPARE(device.openConnections(), 0);
    QCOMPARE(device.takeReceived(), QByteArray());
}

void TestInstrumentConnection::copiesShareTheConnection()
{
    ScriptedInstrument device;
    device.answer("*IDN?", identity);
    Analyzer analyzer;
    analyzer.init();
    device.takeReceivedUpTo("&GTL\n");
    Analyzer copy = analyzer;
    copy.span = 5e6; // settings are each copy's own
    copy.setup();
    QVERIFY(device.takeReceivedUpTo("&GTL\n").contains("FREQ:SPAN 5000000.0"));
    QCOMPARE(analyzer.span, Analyzer().span);
    QCOMPARE(device.connectionCount(), 1);
}

QTEST_GUILESS_MAIN(TestInstrumentConnection)
#include "test_instrument_connection.moc"
