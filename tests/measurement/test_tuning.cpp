// Tuning to a notch and the preset of the chain, read at the other end of the line.
#include "setup/measurement_setup.h"

#include "kit/bench_instrument.h"
#include "kit/conversations.h"
#include "kit/remote_failure.h"
#include "kit/scripted_instrument.h"

#include <QtTest>

#include <map>
#include <memory>

namespace {

// A record whose analyzer is connected to a device.
struct ConnectedAnalyzer
{
    explicit ConnectedAnalyzer(double frequency = 0.0)
    {
        device.answer("*IDN?", "an analyzer\n");
        setup.analyzer.frequency = frequency;
        setup.analyzer.init();
        device.takeReceivedUpTo("&GTL\n");
    }

    QByteArray sentForNotch(int number)
    {
        setup.measureNotch = number;
        setup.tuneAnalyzerToNotch();
        return device.takeReceivedUpTo("&GTL\n");
    }

    ScriptedInstrument device;
    MeasurementSetup setup;
};

} // namespace

class TestTuning : public QObject
{
    Q_OBJECT

private slots:
    void anUpperNotchIsMeasuredFromBelow();
    void aLowerNotchIsMeasuredFromAbove();
    void aNotchInTheMiddleCountsAsUpper();
    void withoutANotchNothingIsSent_data();
    void withoutANotchNothingIsSent();
    void withoutAnAnalyzerItIsSaid();
    void presetConnectsThenSetsThenPreparesTheMeasurement();
    void presetIncludesTheMicrowaveGenerator();
    void presetConnectsAllDevicesBeforeItSetsTheFirst();
    void presetWithoutAnyDeviceIsQuiet();
    void presetWithoutVisaIsReported();

private:
    static Notch notchAt(double center, double width)
    {
        Notch notch;
        notch.center = center;
        notch.width = width;
        return notch;
    }
};

void TestTuning::anUpperNotchIsMeasuredFromBelow()
{
    ConnectedAnalyzer bench(1e9);
    bench.setup.notches->insert(1, notchAt(-20e6, 1e6));
    bench.setup.notches->insert(2, notchAt(10e6, 2e6));
    // 1e9 + 10e6 - 1.2 * 2e6; 3.5 * 2e6; 0.75 * 2e6; 1.2 * 2e6
    QCOMPARE(bench.sentForNotch(2),
             QByteArray("FREQ:CENT 1007600000.00000000000\nFREQ:SPAN 7000000.00000000000\n"
                        "POW:ACH:BWID 1500000.00000000000\n"
                        "POW:ACH:BWID:ACH 1500000.00000000000\n"
                        "POW:ACH:SPAC 2400000.00000000000\nDISP:WIND1:TRAC:Y:RLEV -20.000\n"
                        "INP:ATT 10.000000\n\nINP:ATT:AUTO ON\nBAND:RES 30000.00000000000\n"
                        "BAND:VID 300000.00000000000\nSWE:TIME 2.000000\n&GTL\n"));
}

void TestTuning::aLowerNotchIsMeasuredFromAbove()
{
    ConnectedAnalyzer bench(1e9);
    bench.setup.notches->insert(1, notchAt(-10e6, 2e6));
    QVERIFY(bench.sentForNotch(1).startsWith("FREQ:CENT 992400000.00000000000\n"));
}

void TestTuning::aNotchInTheMiddleCountsAsUpper()
{
    ConnectedAnalyzer bench;
    bench.setup.notches->insert(1, notchAt(0.0, 1e6));
    QVERIFY(bench.sentForNotch(1).startsWith("FREQ:CENT -1200000.00000000000\n"));
}

void TestTuning::withoutANotchNothingIsSent_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("none picked") << 0;
    QTest::newRow("behind the last") << 2;
    QTest::newRow("negative") << -1;
}

void TestTuning::withoutANotchNothingIsSent()
{
    QFETCH(int, number);
    ConnectedAnalyzer bench;
    bench.setup.notches->insert(1, notchAt(0.0, 1e6));
    bench.setup.measureNotch = number;
    bench.setup.tuneAnalyzerToNotch();
    bench.setup.analyzer.commands()->send("end");
    QCOMPARE(bench.device.takeReceivedUpTo("end\n"), QByteArray("end\n"));
}

void TestTuning::withoutAnAnalyzerItIsSaid()
{
    MeasurementSetup setup;
    setup.notches->insert(1, notchAt(0.0, 1e6));
    setup.measureNotch = 1;
    QCOMPARE(failureOf([&] { setup.tuneAnalyzerToNotch(); }),
             QString("Analyzer is not initialized!"));
    setup.measureNotch = 0;
    QCOMPARE(failureOf([&] { setup.tuneAnalyzerToNotch(); }), QString("(none)"));
}

void TestTuning::presetConnectsThenSetsThenPreparesTheMeasurement()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "one for all\n");
    MeasurementSetup setup;
    setup.generator.frequency = 1e9;
    setup.analyzer.level = -7.5;
    setup.presetInstruments();
    const QByteArray end = "DISP:WIND1:TRAC:Y:RLEV -7.500\n&GTL\n";
    const QByteArray sent = device.takeReceivedUpTo("SWE:TIME 1.000000\n" + end);
    QVERIFY(setup.analyzer.initialized());
    QVERIFY(setup.generator.initialized());
    QVERIFY(!setup.microwave.initialized());
    QCOMPARE(device.connectionCount(), 2);
    const int analyzerSet = sent.indexOf("FREQ:CENT");
    const int generatorSet = sent.indexOf("IQ:STAT ON\nFREQ 1000000000.000000");
    const int prepared = sent.indexOf("SENS:DET1:FUNC RMS");
    QVERIFY(sent.startsWith("*IDN?\n&GTL\n*IDN?\n&GTL\n"));
    QVERIFY(analyzerSet > 0);
    QVERIFY(generatorSet > analyzerSet);
    QVERIFY(prepared > generatorSet);
}

void TestTuning::presetIncludesTheMicrowaveGenerator()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "one for all\n");
    MeasurementSetup setup;
    setup.microwave.device = 1;
    setup.microwave.frequency = 2e10;
    setup.presetInstruments();
    const QByteArray sent = device.takeReceivedUpTo("RLEV -20.000\n&GTL\n");
    QVERIFY(setup.microwave.initialized());
    QVERIFY(sent.contains("FREQ 20000000000.000000\nOUTP ON\n*IDN?\n"));
    QVERIFY(sent.indexOf("FREQ 20000000000") < sent.indexOf("SENS:DET1"));
}

// Each device at an address of its own says when it was asked who it is, which ends every step.
void TestTuning::presetConnectsAllDevicesBeforeItSetsTheFirst()
{
    const std::map<QByteArray, QString> addresses = {
        {"analyzer", "127.0.0.1"}, {"generator", "127.0.0.2"}, {"microwave", "127.0.0.3"}};
    std::map<QByteArray, std::unique_ptr<BenchInstrument>> devices;
    for (const auto& [name, address] : addresses) {
        devices[name] = std::make_unique<BenchInstrument>(address);
        devices[name]->answer("*IDN?", name + '\n');
    }
    MeasurementSetup setup;
    setup.analyzer.ipAddress = addresses.at("analyzer");
    setup.generator.ipAddress = addresses.at("generator");
    setup.microwave.ipAddress = addresses.at("microwave");
    setup.microwave.device = 1;
    setup.presetInstruments();
    std::map<BenchInstrument::Clock::time_point, QByteArray> asked;
    for (const auto& [name, device] : devices) {
        for (const BenchInstrument::Line& line : device->lines()) {
            if (line.text == "*IDN?") {
                asked[line.at] = name;
            }
        }
    }
    QByteArrayList order;
    for (const auto& [at, name] : asked) {
        order << name;
    }
    QCOMPARE(order, (QByteArrayList{"analyzer", "generator", "microwave", "analyzer", "generator",
                                    "microwave"}));
    QCOMPARE(setup.analyzer.deviceMessage(), QString("analyzer"));
    QCOMPARE(setup.generator.deviceMessage(), QString("generator"));
    QCOMPARE(setup.microwave.deviceMessage(), QString("microwave"));
    QTRY_COMPARE(spokenWith(*devices["analyzer"]), QString("init, set, channel power"));
    QCOMPARE(spokenWith(*devices["generator"]), QString("init, set"));
    QVERIFY(devices["microwave"]->count("OUTP ON") == 1);
}

void TestTuning::presetWithoutAnyDeviceIsQuiet()
{
    MeasurementSetup setup;
    setup.generator.ipAddress = "127.0.0.9";
    setup.analyzer.ipAddress = "127.0.0.9";
    // Nobody answers at the end of a socket; the message tells, and no failure comes out.
    QCOMPARE(failureOf([&] { setup.presetInstruments(); }), QString("(none)"));
    QVERIFY(!setup.analyzer.initialized());
    QVERIFY(!setup.generator.initialized());
}

void TestTuning::presetWithoutVisaIsReported()
{
    MeasurementSetup setup;
    setup.generator.ipAddress = "127.0.0.9";
    setup.analyzer.interfaceKind = InterfaceKind::Gpib0;
    QCOMPARE(failureOf([&] { setup.presetInstruments(); }),
             QString("Analyzer is not initialized!"));
    QCOMPARE(setup.analyzer.deviceMessage(), QString("Could not load VISA"));
}

QTEST_GUILESS_MAIN(TestTuning)
#include "test_tuning.moc"
