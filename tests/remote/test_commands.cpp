// Every command of every model, read as the bytes that arrive at the instrument.
#include "remote/analyzer_commands.h"
#include "remote/generator_commands.h"
#include "remote/socket_interface.h"

#include "kit/remote_failure.h"
#include "kit/scripted_instrument.h"

#include <QtTest>

#include <functional>

namespace {

std::unique_ptr<KORemoteInterface> socketToInstrument()
{
    return std::make_unique<SocketInterface>("127.0.0.1");
}

// What arrives at an instrument of the model that has options.
QByteArray sentWithOptions(const QByteArray& options,
                           const std::function<void(GeneratorCommands&)>& call)
{
    ScriptedInstrument instrument;
    instrument.answer("*OPT?", options);
    GeneratorCommands commands(socketToInstrument(), 11);
    commands.openInterface();
    call(commands);
    commands.send("end");
    return instrument.takeReceivedUpTo("end\n");
}

} // namespace

class TestCommands : public QObject
{
    Q_OBJECT

private slots:
    void generatorModelsSpeakTheirDialect_data();
    void generatorModelsSpeakTheirDialect();
    void statesMayBeSwitchedOff();
    void unknownModelsSendNothing_data();
    void unknownModelsSendNothing();
    void ifInputNeedsItsOption_data();
    void ifInputNeedsItsOption();
    void outputAttenuationNeedsItsOption_data();
    void outputAttenuationNeedsItsOption();
    void optionsAreAskedForAtEveryCall();
    void onlyTheLastModelIsAskedForOptions();
    void analyzerSettingsHaveTheirFormats_data();
    void analyzerSettingsHaveTheirFormats();
    void channelPowerPresetHasItsOrder();
    void aMeasurementIsOneSweepAndOneQuery();
    void theThreeNumbersAreTakenAsTheyCome_data();
    void theThreeNumbersAreTakenAsTheyCome();
    void anAnswerWithoutThreeNumbersIsNoReading_data();
    void anAnswerWithoutThreeNumbersIsNoReading();
    void aReadingHasTheThreeNumbers();
    void withoutATransportNothingHappensOrItIsSaid();
    void everyInstrumentIsAskedResetAndHandedBackAlike();
    void closingTheInterfaceDropsTheConnection();
};

void TestCommands::generatorModelsSpeakTheirDialect_data()
{
    QTest::addColumn<int>("model");
    QTest::addColumn<QByteArray>("line");
    // on, I/Q on, 1 MHz, -20 dBm
    const QByteArray dm = ":DM:IQ:STAT ON;:DM:IQ:PRAM OFF\n";
    const QByteArray freqPow = "FREQ 1000000.000000\nPOW -20.000000\n";
    const QByteArray second = "SOUR2:FREQ 1000000.000000\nSOUR2:POW -20.000000\n";
    const QByteArray rfL = "RF 1000000.000000\nL -20.000000\n";
    QTest::newRow("RIGL") << 0 << "OUTP ON\nIQ:STAT ON\n" + freqPow;
    QTest::newRow("LYR") << 1 << "LEV:ON\n" + rfL;
    QTest::newRow("ALTAIR") << 2 << "L:ON\nIQ:ON\n" + rfL;
    QTest::newRow("DENB") << 3 << "OUTP ON\n" + dm + freqPow;
    QTest::newRow("ORI") << 4 << "OUTP ON\n" + dm + freqPow;
    QTest::newRow("PHD(A)") << 5 << "OUTP ON\n" + dm + freqPow;
    QTest::newRow("PHD(B)") << 6 << ":OUTP2 ON\n" + dm + second;
    QTest::newRow("CYG") << 7 << "OUTP1 ON\n" + dm + freqPow;
    QTest::newRow("KAU(A)") << 8 << "OUTP ON\n" + freqPow;
    QTest::newRow("KAU(B)") << 9 << ":OUTP2 ON\n" + second;
    QTest::newRow("TAU") << 10 << "OUTP ON\n" + freqPow;
    QTest::newRow("ZUB") << 11 << "OUTP1 ON\n" + freqPow;
}

void TestCommands::generatorModelsSpeakTheirDialect()
{
    QFETCH(int, model);
    QFETCH(QByteArray, line);
    ScriptedInstrument instrument;
    GeneratorCommands commands(socketToInstrument(), model);
    commands.openInterface();
    commands.setOutput(true);
    commands.setIqModulation(true);
    commands.setFrequency(1e6);
    commands.setLevel(-20.0);
    QCOMPARE(instrument.takeReceivedUpTo("-20.000000\n"), line);
}

void TestCommands::statesMayBeSwitchedOff()
{
    ScriptedInstrument instrument;
    GeneratorCommands rigl(socketToInstrument(), 0);
    rigl.openInterface();
    rigl.setOutput(false);
    rigl.setIqModulation(false);
    QCOMPARE(instrument.takeReceivedUpTo("IQ:STAT OFF\n"), QByteArray("OUTP OFF\nIQ:STAT OFF\n"));
    // The parameter mode goes off in either state.
    GeneratorCommands cyg(socketToInstrument(), 7);
    cyg.openInterface();
    cyg.setIqModulation(false);
    QCOMPARE(instrument.takeReceivedUpTo("\n"), QByteArray(":DM:IQ:STAT OFF;:DM:IQ:PRAM OFF\n"));
}

void TestCommands::unknownModelsSendNothing_data()
{
    QTest::addColumn<int>("model");
    QTest::newRow("12") << 12;
    QTest::newRow("-1") << -1;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
}

void TestCommands::unknownModelsSendNothing()
{
    QFETCH(int, model);
    ScriptedInstrument instrument;
    GeneratorCommands commands(socketToInstrument(), model);
    commands.openInterface();
    commands.setOutput(true);
    commands.setIqModulation(true);
    commands.setFrequency(1e6);
    commands.setLevel(-20.0);
    commands.setIfInput(true);
    commands.setOutputAttenuation(10.0);
    commands.send("end");
    QCOMPARE(instrument.takeReceivedUpTo("end\n"), QByteArray("end\n"));
}

void TestCommands::ifInputNeedsItsOption_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QByteArray>("sent");
    const QByteArray on = ":INP:IF:STAT ON\n";
    QTest::newRow("B23") << QByteArray("B1,B23,B5\n") << on;
    QTest::newRow("B24") << QByteArray("B24\n") << on;
    QTest::newRow("inside a longer item") << QByteArray("XB230\n") << on;
    QTest::newRow("small letters") << QByteArray("b23\n") << QByteArray();
    QTest::newRow("the other pair") << QByteArray("B15,B17\n") << QByteArray();
    QTest::newRow("none") << QByteArray("0\n") << QByteArray();
}

void TestCommands::ifInputNeedsItsOption()
{
    QFETCH(QByteArray, options);
    QFETCH(QByteArray, sent);
    QCOMPARE(sentWithOptions(options, [](GeneratorCommands& it) { it.setIfInput(true); }),
             "*OPT?\n" + sent + "end\n");
}

void TestCommands::outputAttenuationNeedsItsOption_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QByteArray>("sent");
    const QByteArray set = "OUTP1:ATT 12.500000\n";
    QTest::newRow("B15") << QByteArray("B15\n") << set;
    QTest::newRow("B17") << QByteArray("K1,B17\n") << set;
    QTest::newRow("the other pair") << QByteArray("B23,B24\n") << QByteArray();
}

void TestCommands::outputAttenuationNeedsItsOption()
{
    QFETCH(QByteArray, options);
    QFETCH(QByteArray, sent);
    QCOMPARE(sentWithOptions(options, [](GeneratorCommands& it) { it.setOutputAttenuation(12.5); }),
             "*OPT?\n" + sent + "end\n");
}

void TestCommands::optionsAreAskedForAtEveryCall()
{
    ScriptedInstrument instrument;
    instrument.answer("*OPT?", "B24\n");
    GeneratorCommands commands(socketToInstrument(), 11);
    commands.openInterface();
    commands.setIfInput(true);
    commands.setIfInput(false);
    QCOMPARE(instrument.takeReceivedUpTo("OFF\n"),
             QByteArray("*OPT?\n:INP:IF:STAT ON\n*OPT?\n:INP:IF:STAT OFF\n"));
}

void TestCommands::onlyTheLastModelIsAskedForOptions()
{
    ScriptedInstrument instrument;
    for (int model = 0; model <= 10; ++model) {
        GeneratorCommands commands(socketToInstrument(), model);
        commands.openInterface();
        commands.setIfInput(true);
        commands.setOutputAttenuation(10.0);
        commands.send("end");
        QCOMPARE(instrument.takeReceivedUpTo("end\n"), QByteArray("end\n"));
    }
}

using AnalyzerCall = std::function<void(AnalyzerCommands&)>;
Q_DECLARE_METATYPE(AnalyzerCall)

void TestCommands::analyzerSettingsHaveTheirFormats_data()
{
    QTest::addColumn<AnalyzerCall>("call");
    QTest::addColumn<QByteArray>("sent");
    const auto row = [](const char* name, const AnalyzerCall& call, const QByteArray& sent) {
        QTest::newRow(name) << call << sent;
    };
    row(
        "centre", [](AnalyzerCommands& a) { a.setCenterFrequency(1.5e9); },
        "FREQ:CENT 1500000000.00000000000\n");
    row(
        "negative centre", [](AnalyzerCommands& a) { a.setCenterFrequency(-0.5); },
        "FREQ:CENT -0.50000000000\n");
    row(
        "span", [](AnalyzerCommands& a) { a.setSpan(1e6); }, "FREQ:SPAN 1000000.00000000000\n");
    row(
        "level", [](AnalyzerCommands& a) { a.setReferenceLevel(-20.0); },
        "DISP:WIND1:TRAC:Y:RLEV -20.000\n");
    row(
        "attenuation", [](AnalyzerCommands& a) { a.setAttenuation(10); }, "INP:ATT 10.000000\n\n");
    row(
        "automatic attenuation", [](AnalyzerCommands& a) { a.setAutoAttenuation(true); },
        "INP:ATT:AUTO ON\n");
    row(
        "manual attenuation", [](AnalyzerCommands& a) { a.setAutoAttenuation(false); },
        "INP:ATT:AUTO OFF\n");
    row(
        "rbw", [](AnalyzerCommands& a) { a.setResolutionBandwidth(30000); },
        "BAND:RES 30000.00000000000\n");
    row(
        "automatic rbw", [](AnalyzerCommands& a) { a.setResolutionBandwidth(0); },
        "BAND:RES:AUTO ON\n");
    row(
        "vbw", [](AnalyzerCommands& a) { a.setVideoBandwidth(1); }, "BAND:VID 1.00000000000\n");
    row(
        "automatic vbw", [](AnalyzerCommands& a) { a.setVideoBandwidth(0); }, "BAND:VID:AUTO ON\n");
    row(
        "sweep time", [](AnalyzerCommands& a) { a.setSweepTime(0.25); }, "SWE:TIME 0.250000\n");
    row(
        "automatic sweep time", [](AnalyzerCommands& a) { a.setSweepTime(0.0); },
        "SWE:TIME:AUTO ON\n");
    row(
        "channels", [](AnalyzerCommands& a) { a.setChannels(7.5e6, 12e6); },
        "POW:ACH:BWID 7500000.00000000000\nPOW:ACH:BWID:ACH 7500000.00000000000\n"
        "POW:ACH:SPAC 12000000.00000000000\n");
}

void TestCommands::analyzerSettingsHaveTheirFormats()
{
    QFETCH(AnalyzerCall, call);
    QFETCH(QByteArray, sent);
    ScriptedInstrument instrument;
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    call(commands);
    commands.send("end");
    QCOMPARE(instrument.takeReceivedUpTo("end\n"), sent + "end\n");
}

void TestCommands::channelPowerPresetHasItsOrder()
{
    ScriptedInstrument instrument;
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    commands.presetChannelPower(-12.5);
    QCOMPARE(instrument.takeReceivedUpTo("&GTL\n"),
             QByteArray("SENS:DET1:FUNC RMS\n:CALC1:MARK1:FUNC:POW:SEL ACP\n"
                        ":SENS1:POW:ACH:ACP 1\n:CALC1:MARK1:FUNC:POW:RES:PHZ OFF;*WAI\n"
                        "POW:ACH:MODE REL\nINP:ATT:AUTO ON\nBAND:RES:AUTO ON\nBAND:VID:AUTO ON\n"
                        "SWE:TIME 1.000000\nDISP:WIND1:TRAC:Y:RLEV -12.500\n&GTL\n"));
}

void TestCommands::aMeasurementIsOneSweepAndOneQuery()
{
    ScriptedInstrument instrument;
    instrument.answer("*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP", "-10.25,-0.5,-43.75\n");
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    const std::array<double, 3> result = commands.measureChannelPower();
    QCOMPARE(instrument.takeReceived(),
             QByteArray("INIT:CONT OFF\nINIT;*WAI\n*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP\n"));
    QCOMPARE(result[0], -10.25);
    QCOMPARE(result[1], -0.5);
    QCOMPARE(result[2], -43.75);
}

void TestCommands::theThreeNumbersAreTakenAsTheyCome_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<double>("power");
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::newRow("exponents") << QByteArray("-1.5E+01,2e0,3\n") << -15.0 << 2.0 << 3.0;
    QTest::newRow("two fields") << QByteArray("1,2\n") << 1.0 << 2.0 << 0.0;
    QTest::newRow("one field") << QByteArray("1\n") << 1.0 << 0.0 << 0.0;
    QTest::newRow("empty line") << QByteArray("\n") << 0.0 << 0.0 << 0.0;
    QTest::newRow("empty field is kept") << QByteArray("1,,3\n") << 1.0 << 0.0 << 3.0;
    QTest::newRow("more fields") << QByteArray("1,2,3,4,5\n") << 1.0 << 2.0 << 3.0;
    QTest::newRow("no numbers") << QByteArray("a,b,c\n") << 0.0 << 0.0 << 0.0;
}

void TestCommands::theThreeNumbersAreTakenAsTheyCome()
{
    QFETCH(QByteArray, answer);
    ScriptedInstrument instrument;
    instrument.answer("*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP", answer);
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    const std::array<double, 3> result = commands.measureChannelPower();
    QTEST(result[0], "power");
    QTEST(result[1], "lower");
    QTEST(result[2], "upper");
}

void TestCommands::anAnswerWithoutThreeNumbersIsNoReading_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("empty line") << QByteArray("\n");
    QTest::newRow("two fields") << QByteArray("-10,-30\n");
    QTest::newRow("an empty field") << QByteArray("-10,,-30\n");
    QTest::newRow("a word") << QByteArray("-10,-30,NAN1\n");
    QTest::newRow("not a number") << QByteArray("nan,-30,-30\n");
    // What stands for "no result".
    QTest::newRow("far too much") << QByteArray("9.91E37,-30,-30\n");
    QTest::newRow("far too little") << QByteArray("-10,-1000,-30\n");
}

void TestCommands::anAnswerWithoutThreeNumbersIsNoReading()
{
    QFETCH(QByteArray, answer);
    ScriptedInstrument instrument;
    instrument.answer("*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP", answer);
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    QVERIFY(!commands.readChannelPower());
}

void TestCommands::aReadingHasTheThreeNumbers()
{
    ScriptedInstrument instrument;
    instrument.answer("*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP", "-999.5,-0.5,999.5,more\n");
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    const std::optional<std::array<double, 3>> reading = commands.readChannelPower();
    QVERIFY(reading);
    QCOMPARE(reading->at(0), -999.5);
    QCOMPARE(reading->at(1), -0.5);
    QCOMPARE(reading->at(2), 999.5);
}

void TestCommands::withoutATransportNothingHappensOrItIsSaid()
{
    AnalyzerCommands commands(nullptr);
    commands.closeInterface();
    commands.reset();
    commands.send("*RST");
    QCOMPARE(commands.identity(), QString());
    QCOMPARE(commands.query("*OPT?"), QString());
    const QString failure = "No valid interface selected";
    QCOMPARE(failureOf([&] { commands.openInterface(); }), failure);
    QCOMPARE(failureOf([&] { commands.goToLocal(); }), failure);
}

void TestCommands::everyInstrumentIsAskedResetAndHandedBackAlike()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", "somebody\n");
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    QCOMPARE(commands.identity(), QString("somebody"));
    commands.reset();
    commands.goToLocal();
    QCOMPARE(instrument.takeReceivedUpTo("&GTL\n"), QByteArray("*IDN?\n*RST\n&GTL\n"));
}

void TestCommands::closingTheInterfaceDropsTheConnection()
{
    ScriptedInstrument instrument;
    AnalyzerCommands commands(socketToInstrument());
    commands.openInterface();
    QTRY_COMPARE(instrument.openConnections(), 1);
    commands.closeInterface();
    QTRY_COMPARE(instrument.openConnections(), 0);
}

QTEST_GUILESS_MAIN(TestCommands)
#include "test_commands.moc"
