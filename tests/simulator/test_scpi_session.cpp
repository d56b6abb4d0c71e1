// What the instruments answer, what they make of bad words, and whom a reset reaches.
#include "ready_bench.h"
#include "scpi_session_test.h"

namespace {

// What a reading of channel power needs first.
const char channelPower[] = "CALC:MARK:FUNC:POW:SEL ACP;:POW:ACH:BWID 1e6;:POW:ACH:SPAC 2e6";

} // namespace

class TestScpiSession : public ScpiSessionTest
{
    Q_OBJECT

private slots:
    void init() { startAnew(); }
    void aMeasurementAnswersReferenceLowerAndUpper();
    void absoluteChannelsAnswerInDbm();
    void theOutputCanBeSwitchedOff_data();
    void theOutputCanBeSwitchedOff();
    void theModulationCanBeSwitchedOff_data();
    void theModulationCanBeSwitchedOff();
    void questionsHaveTheirAnswers();
    void answersOfOneLineComeTogether();
    void settingsCanBeAsked();
    void aResetSetsEverySetting();
    void aResetReachesOnlyTheInstrumentSpokenTo();
    void badInputLeavesAnErrorAndChangesNothing_data();
    void badInputLeavesAnErrorAndChangesNothing();
    void goingToLocalIsNoError();
    void clearingForgetsTheErrors();
    void errorsAreTheInstrumentsNotTheConnections();
    void aFullQueueSaysSoInPlaceOfTheNewest();
    void everyRefusalIsTold();
    void channelPowerNeedsItsSelectionAndItsChannels_data();
    void channelPowerNeedsItsSelectionAndItsChannels();
    void anOverloadIsTold();
    void eachInstrumentHasItsOwnWords();
};

void TestScpiSession::aMeasurementAnswersReferenceLowerAndUpper()
{
    Bench measured = readyBench();
    SimulatedInstrument instrument(measured, BenchFace::GeneratorAndAnalyzer);
    ScpiSession session(instrument);
    measured.play(noiseWithNotch(4096, {1000, 1199}, -45.0));
    tell(session, channelPower);
    tune(measured, 860.0, 100.0, 240.0);
    QCOMPARE(tell(session, "INIT:CONT OFF"), QByteArray());
    QVERIFY(!measured.settings.analyzer.continuousSweep);
    QCOMPARE(tell(session, "INIT;*WAI"), QByteArray());
    const QList<QByteArray> fields =
        tell(session, "*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP").split(',');
    QCOMPARE(fields.size(), 3);
    // The cut lines are missing in the whole: 3896 of 4096 share -30 dBm, 100 are in a channel.
    const double expected = -30.0 + 10.0 * std::log10(100.0 / 3896.0);
    QVERIFY(std::abs(fields[0].toDouble() - expected) < 1e-4);
    QCOMPARE(fields[1].toDouble(), 0.0);
    QCOMPARE(fields[2].toDouble(), -45.0);
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiSession::absoluteChannelsAnswerInDbm()
{
    ScpiSession session = main();
    tell(session, channelPower);
    QCOMPARE(tell(session, "CALC:MARK:FUNC:POW:RES? ACP"),
             QByteArray("-200.000000,0.000000,0.000000"));
    tell(session, "POW:ACH:MODE ABSolute");
    QCOMPARE(tell(session, "CALC:MARK:FUNC:POW:RES? ACP"),
             QByteArray("-200.000000,-200.000000,-200.000000"));
    tell(session, "POW:ACH:MODE sideways");
    QVERIFY(tell(session, "SYST:ERR?").startsWith("-224,"));
}

void TestScpiSession::theOutputCanBeSwitchedOff_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char* line : {"OUTP OFF", ":OUTP2 OFF", "OUTP1 OFF", "LEV:OFF", "L:OFF", "OUTP 0"}) {
        QTest::newRow(line) << QByteArray(line);
    }
}

void TestScpiSession::theOutputCanBeSwitchedOff()
{
    QFETCH(QByteArray, line);
    ScpiSession session = main();
    bench.settings.generator.output = true;
    tell(session, line);
    QVERIFY(!bench.settings.generator.output);
}

void TestScpiSession::theModulationCanBeSwitchedOff_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char* line : {"IQ:STAT OFF", "IQ:OFF", ":DM:IQ:STAT OFF;:DM:IQ:PRAM OFF"}) {
        QTest::newRow(line) << QByteArray(line);
    }
}

void TestScpiSession::theModulationCanBeSwitchedOff()
{
    QFETCH(QByteArray, line);
    ScpiSession session = main();
    tell(session, line);
    QVERIFY(!bench.settings.generator.iqModulation);
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiSession::questionsHaveTheirAnswers()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "*IDN?").count(','), 3);
    QCOMPARE(tell(session, "*OPT?"), QByteArray("B15"));
    QCOMPARE(tell(session, "*OPC?"), QByteArray("1"));
    QCOMPARE(tell(session, "syst:err?"), QByteArray(noError));
    QCOMPARE(tell(session, "SYSTEM:ERROR:NEXT?"), QByteArray(noError));
    ScpiSession other = microwave();
    QCOMPARE(tell(other, "*OPT?"), QByteArray("B15,B23"));
    QVERIFY(tell(other, "*IDN?").contains("Microwave"));
}

void TestScpiSession::answersOfOneLineComeTogether()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "*OPC?;*OPT?;FREQ 1;*OPC?"), QByteArray("1;B15;1"));
    QCOMPARE(tell(session, "*WAI"), QByteArray());
}

void TestScpiSession::settingsCanBeAsked()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "FREQ 123.5;FREQ?"), QByteArray("123.500000"));
    QCOMPARE(tell(session, "FREQ:CENT 7;CENT?"), QByteArray("7.000000"));
    QCOMPARE(tell(session, "OUTP ON;OUTP?"), QByteArray("1"));
    QCOMPARE(tell(session, "LEV:OFF?"), QByteArray("0"));
    QCOMPARE(tell(session, "POW:ACH:MODE?"), QByteArray("RELative"));
    QCOMPARE(tell(session, "DET:FUNC?"), QByteArray("RMS"));
    QCOMPARE(tell(session, "SWE:TIME?"), QByteArray("0.000000"));
    ScpiSession other = microwave();
    QCOMPARE(tell(other, "POW?"), QByteArray("-30.000000"));
}

void TestScpiSession::aResetSetsEverySetting()
{
    ScpiSession session = main();
    const struct
    {
        const char* line;
        const char* question;
        const char* afterReset;
    } rows[] = {
        {"FREQ 5", "FREQ?", "1000000000.000000"},
        {"POW 5", "POW?", "-30.000000"},
        {"OUTP ON", "OUTP?", "0"},
        {"IQ:STAT OFF", "IQ:STAT?", "1"},
        {"FREQ:CENT 5", "FREQ:CENT?", "1000000000.000000"},
        {"FREQ:SPAN 5", "FREQ:SPAN?", "100000000.000000"},
        {"DISP:TRAC:Y:RLEV 5", "DISP:TRAC:Y:RLEV?", "0.000000"},
        {"INP:ATT 5", "INP:ATT?;ATT:AUTO?", "0.000000;1"},
        {"BAND:RES 5", "BAND:RES?;RES:AUTO?", "0.000000;1"},
        {"BAND:VID 5", "BAND:VID?;VID:AUTO?", "0.000000;1"},
        {"SWE:TIME 5", "SWE:TIME?;TIME:AUTO?", "0.000000;1"},
        {"INIT:CONT OFF", "INIT:CONT?", "1"},
        {"POW:ACH:BWID 5", "POW:ACH:BWID?", "1000000.000000"},
        {"POW:ACH:BWID:ACH 5", "POW:ACH:BWID:ACH?", "1000000.000000"},
        {"POW:ACH:SPAC 5", "POW:ACH:SPAC?", "2000000.000000"},
        {"POW:ACH:MODE ABS", "POW:ACH:MODE?", "RELative"},
    };
    for (const auto& row : rows) {
        tell(session, row.line);
        QVERIFY2(tell(session, row.question) != row.afterReset, row.line);
    }
    ScpiSession stranger = main(); // has set nothing, so all goes back
    tell(stranger, "*RST");
    for (const auto& row : rows) {
        QCOMPARE(tell(session, row.question), QByteArray(row.afterReset));
    }
    ScpiSession converter = microwave();
    tell(converter, "FREQ 5;OUTP ON;:INP:IF:STAT OFF;:OUTP1:ATT 5;:POW 5;*RST");
    QCOMPARE(tell(converter, "FREQ?;OUTP?;:INP:IF:STAT?;:OUTP1:ATT?;:POW?"),
             QByteArray("10000000000.000000;0;1;0.000000;-30.000000"));
}

void TestScpiSession::aResetReachesOnlyTheInstrumentSpokenTo()
{
    ScpiSession generator = main();
    ScpiSession analyzer = main();
    ScpiSession stranger = main();
    ScpiSession converter = microwave();
    tell(generator, "OUTP ON");
    tell(analyzer, "FREQ:SPAN 5");
    tell(converter, "OUTP ON");
    tell(analyzer, "*RST");
    QVERIFY(bench.settings.generator.output);
    QVERIFY(bench.settings.microwave.output);
    QCOMPARE(bench.settings.analyzer.span, SimulatedAnalyzer().span);
    tell(analyzer, "FREQ:SPAN 5");
    tell(generator, "*RST");
    QVERIFY(!bench.settings.generator.output);
    QCOMPARE(bench.settings.analyzer.span, 5.0);
    tell(stranger, "*RST");
    QCOMPARE(bench.settings.analyzer.span, SimulatedAnalyzer().span);
    QVERIFY(bench.settings.microwave.output);
    tell(converter, "*RST");
    QVERIFY(!bench.settings.microwave.output);
}

void TestScpiSession::badInputLeavesAnErrorAndChangesNothing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("error");
    const struct
    {
        const char* line;
        const char* error;
    } rows[] = {
        {"FOO:BAR 1", "-113,\"Undefined header;FOO:BAR\""},
        {"FREQ one", "-104,\"Data type error;FREQ one\""},
        {"FREQ 1 MHZ", "-104,\"Data type error;FREQ 1 MHZ\""},
        {"FREQ:CENT -1", "-222,\"Data out of range;FREQ:CENT -1\""},
        {"INP:ATT 1000", "-222,\"Data out of range;INP:ATT 1000\""},
        {"BAND:RES -1", "-222,\"Data out of range;BAND:RES -1\""},
        {"SWE:TIME 1e9", "-222,\"Data out of range;SWE:TIME 1e9\""},
        {"FREQ 1,2", "-108,\"Parameter not allowed;FREQ 1,2\""},
        {"FREQ? 1", "-108,\"Parameter not allowed;FREQ 1\""},
        {"*CLS 1", "-108,\"Parameter not allowed;*CLS 1\""},
        {"LEV:ON ON", "-108,\"Parameter not allowed;LEV:ON ON\""},
        {"*ESE", "-109,\"Missing parameter;*ESE \""},
        {"*SRE 256", "-222,\"Data out of range;*SRE 256\""},
        {"*ESE x", "-104,\"Data type error;*ESE x\""},
        {"POW:SEL ACP", "-113,\"Undefined header;POW:SEL\""},
        {"CALC:MARK:FUNC:POW:SEL NOISE",
         "-224,\"Illegal parameter value;CALC:MARK:FUNC:POW:SEL NOISE\""},
        {"CALC:MARK:FUNC:POW:RES?", "-109,\"Missing parameter;CALC:MARK:FUNC:POW:RES \""},
        {"CALC:MARK:FUNC:POW:RES? ACP", "-221,\"Settings conflict;CALC:MARK:FUNC:POW:RES ACP\""},
        {"FREQ", "-109,\"Missing parameter;FREQ \""},
        {"FREQ nan", "-222,\"Data out of range;FREQ nan\""},
        {"FREQ inf", "-222,\"Data out of range;FREQ inf\""},
        {"FREQ -1", "-222,\"Data out of range;FREQ -1\""},
        {"FREQ 1e300", "-222,\"Data out of range;FREQ 1e300\""},
        {"POW 1e9", "-222,\"Data out of range;POW 1e9\""},
        {"OUTP maybe", "-224,\"Illegal parameter value;OUTP maybe\""},
        {"OUTP", "-109,\"Missing parameter;OUTP \""},
        {":SENS1:POW:ACH:ACP 7", "-224,\"Illegal parameter value;SENS1:POW:ACH:ACP 7\""},
        {":OUTP3 ON", "-113,\"Undefined header;OUTP3\""},
        {"*IDN", "-113,\"Undefined header;*IDN\""},
        {"*RST?", "-113,\"Undefined header;*RST\""},
        {"\xff\xfe\x01", "-113,\"Undefined header;...\""},
        {"?", "-113,\"Undefined header\""},
        {":INP:IF:STAT ON", "-113,\"Undefined header;INP:IF:STAT\""},
    };
    for (const auto& row : rows) {
        QTest::newRow(row.line) << QByteArray(row.line) << QByteArray(row.error);
    }
}

void TestScpiSession::badInputLeavesAnErrorAndChangesNothing()
{
    QFETCH(QByteArray, line);
    ScpiSession session = main();
    QCOMPARE(tell(session, line), QByteArray());
    QTEST(tell(session, "SYST:ERR?"), "error");
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
    QCOMPARE(bench.settings.generator.frequency, SimulatedGenerator().frequency);
    QCOMPARE(bench.settings.generator.level, SimulatedGenerator().level);
    QVERIFY(!bench.settings.generator.output);
    QCOMPARE(bench.settings.analyzer.centerFrequency, SimulatedAnalyzer().centerFrequency);
    QVERIFY(bench.settings.analyzer.attenuation.automatic);
    QVERIFY(bench.settings.analyzer.resolutionBandwidth.automatic);
    QVERIFY(bench.settings.analyzer.sweepTime.automatic);
}

void TestScpiSession::goingToLocalIsNoError()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "&GTL"), QByteArray());
    QCOMPARE(tell(session, "&GTL;@LOC;*OPC?"), QByteArray("1"));
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiSession::clearingForgetsTheErrors()
{
    ScpiSession session = main();
    tell(session, "FOO;BAR;*CLS");
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiSession::errorsAreTheInstrumentsNotTheConnections()
{
    ScpiSession one = main();
    ScpiSession two = main();
    ScpiSession other = microwave();
    tell(one, "FOO");
    tell(one, "BAR");
    QCOMPARE(tell(other, "SYST:ERR?"), QByteArray(noError));
    QCOMPARE(tell(two, "SYST:ERR?"), QByteArray("-113,\"Undefined header;FOO\""));
    QCOMPARE(tell(one, "SYST:ERR?"), QByteArray("-113,\"Undefined header;BAR\""));
    QCOMPARE(tell(two, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiSession::aFullQueueSaysSoInPlaceOfTheNewest()
{
    ScpiSession session = main();
    for (int k = 0; k < 35; ++k) {
        tell(session, "FOO" + QByteArray(k, 'X'));
    }
    for (int k = 0; k < 29; ++k) { // of thirty
        QVERIFY(tell(session, "SYST:ERR?").contains("FOO" + QByteArray(k, 'X')));
    }
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray("-350,\"Queue overflow\""));
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiSession::everyRefusalIsTold()
{
    ScpiSession session = main();
    QStringList told;
    mainInstrument.tell = [&told](const QString& text) { told << text; };
    tell(session, "FREQ -1;:FREQ:CENT -1;:FOO;*CLS");
    mainInstrument.tell = nullptr;
    QCOMPARE(told, QStringList({"generator: -222,\"Data out of range;FREQ -1\"",
                                "analyzer: -222,\"Data out of range;FREQ:CENT -1\"",
                                "bench: -113,\"Undefined header;FOO\""}));
}

void TestScpiSession::channelPowerNeedsItsSelectionAndItsChannels_data()
{
    QTest::addColumn<QByteArray>("missing");
    QTest::newRow("selection") << QByteArray(":CALC1:MARK1:FUNC:POW:SEL ACP");
    QTest::newRow("bandwidth") << QByteArray("POW:ACH:BWID 150.00000000000");
    QTest::newRow("spacing") << QByteArray("POW:ACH:SPAC 240.00000000000");
}

void TestScpiSession::channelPowerNeedsItsSelectionAndItsChannels()
{
    QFETCH(QByteArray, missing);
    ScpiSession session = main();
    for (const char* line : {":CALC1:MARK1:FUNC:POW:SEL ACP", "POW:ACH:BWID 150.00000000000",
                             "POW:ACH:SPAC 240.00000000000"}) {
        tell(session, missing == line ? QByteArray() : QByteArray(line));
    }
    const QByteArray question = ":CALC1:MARK1:FUNC:POW:RES? ACP";
    QCOMPARE(tell(session, question), QByteArray());
    QVERIFY(tell(session, "SYST:ERR?").startsWith("-221,"));
    tell(session, missing);
    QCOMPARE(tell(session, question).count(','), 2);
    tell(session, "*RST");
    QCOMPARE(tell(session, question), QByteArray());
}

void TestScpiSession::anOverloadIsTold()
{
    Bench driven = readyBench({}, 20.0);
    SimulatedInstrument instrument(driven, BenchFace::GeneratorAndAnalyzer);
    ScpiSession session(instrument);
    QStringList told;
    instrument.tell = [&told](const QString& text) { told << text; };
    driven.play(noiseWithNotch(4096, {1000, 1199}, -45.0));
    tell(session, channelPower);
    tell(session, "*CLS;INP:ATT 0;:CALC:MARK:FUNC:POW:RES? ACP");
    QCOMPARE(told.size(), 1);
    QVERIFY(told[0].startsWith("analyzer: overload: the input's peaks are above 10 dBm"));
    QCOMPARE(tell(session, "*STB?"), QByteArray("8"));
    QCOMPARE(tell(session, "STAT:QUES?;*STB?"), QByteArray("8;16"));
    tell(session, "INP:ATT 40;:DISP:TRAC:Y:RLEV 10;:CALC:MARK:FUNC:POW:RES? ACP");
    QCOMPARE(told.size(), 1);
}

void TestScpiSession::eachInstrumentHasItsOwnWords()
{
    SimulatedInstrument generator(bench, BenchFace::Generator);
    SimulatedInstrument analyzer(bench, BenchFace::Analyzer);
    ScpiSession toGenerator(generator);
    ScpiSession toAnalyzer(analyzer);
    QCOMPARE(tell(toGenerator, "FREQ 5;FREQ?"), QByteArray("5.000000"));
    QCOMPARE(tell(toAnalyzer, "FREQ:CENT 6;CENT?"), QByteArray("6.000000"));
    for (const char* line : {"FREQ:CENT 5", "INIT", "CALC:MARK:FUNC:POW:RES? ACP"}) {
        QCOMPARE(tell(toGenerator, line), QByteArray());
        QVERIFY(tell(toGenerator, "SYST:ERR?").startsWith("-113,"));
    }
    tell(toAnalyzer, "OUTP ON");
    QVERIFY(tell(toAnalyzer, "SYST:ERR?").startsWith("-113,"));
    tell(toGenerator, "OUTP ON");
    tell(toAnalyzer, "*RST");
    QVERIFY(bench.settings.generator.output);
    tell(toGenerator, "*RST");
    QVERIFY(!bench.settings.generator.output);
}

QTEST_APPLESS_MAIN(TestScpiSession)
#include "test_scpi_session.moc"
