// The words that the program sends to its instruments, row by row of its dialects.
#include "scpi_session_test.h"

class TestScpiDialects : public ScpiSessionTest
{
    Q_OBJECT

private slots:
    void init() { startAnew(); }
    void everyGeneratorDialectIsUnderstood_data();
    void everyGeneratorDialectIsUnderstood();
    void everyMicrowaveDialectIsUnderstood_data();
    void everyMicrowaveDialectIsUnderstood();
    void theMicrowaveGeneratorsSwitchesAreUnderstood();
    void aLevelOfTheMicrowaveGeneratorReplacesItsIfInput();
    void theChannelPowerPresetIsUnderstood();
    void tuningToANotchIsUnderstood();
    void automaticSettingsAreUnderstood();
    void aValueEndsTheAutomaticChoice();
};

void TestScpiDialects::everyGeneratorDialectIsUnderstood_data()
{
    QTest::addColumn<QByteArrayList>("lines");
    const struct
    {
        const char* device;
        QByteArrayList lines;
    } rows[] = {
        {"RIGL", {"OUTP ON", "IQ:STAT ON", "FREQ 2000000.500000", "POW -20.250000"}},
        {"LYR", {"LEV:ON", "RF 2000000.500000", "L -20.250000"}},
        {"ALTAIR", {"L:ON", "IQ:ON", "RF 2000000.500000", "L -20.250000"}},
        {"DENB, ORI, PHD(A)",
         {"OUTP ON", ":DM:IQ:STAT ON;:DM:IQ:PRAM OFF", "FREQ 2000000.500000", "POW -20.250000"}},
        {"PHD(B)",
         {":OUTP2 ON", ":DM:IQ:STAT ON;:DM:IQ:PRAM OFF", "SOUR2:FREQ 2000000.500000",
          "SOUR2:POW -20.250000"}},
        {"CYG",
         {"OUTP1 ON", ":DM:IQ:STAT ON;:DM:IQ:PRAM OFF", "FREQ 2000000.500000", "POW -20.250000"}},
        {"KAU(A)", {"OUTP ON", "FREQ 2000000.500000", "POW -20.250000"}},
        {"KAU(B)", {":OUTP2 ON", "SOUR2:FREQ 2000000.500000", "SOUR2:POW -20.250000"}},
    };
    for (const auto& row : rows) {
        QTest::newRow(row.device) << row.lines;
    }
}

void TestScpiDialects::everyGeneratorDialectIsUnderstood()
{
    QFETCH(QByteArrayList, lines);
    ScpiSession session = main();
    for (const QByteArray& line : lines) {
        QCOMPARE(tell(session, line), QByteArray());
    }
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
    QCOMPARE(bench.settings.generator.frequency, 2000000.5);
    QCOMPARE(bench.settings.generator.level, -20.25);
    QVERIFY(bench.settings.generator.output);
    QVERIFY(bench.settings.generator.iqModulation);
}

void TestScpiDialects::everyMicrowaveDialectIsUnderstood_data()
{
    QTest::addColumn<QByteArrayList>("lines");
    QTest::newRow("TAU") << QByteArrayList{"FREQ 18000000000.000000", "OUTP ON", "POW 3.500000"};
    QTest::newRow("ZUB") << QByteArrayList{"FREQ 18000000000.000000", "OUTP1 ON",
                                           ":INP:IF:STAT OFF", "OUTP1:ATT 10.000000",
                                           "POW 3.500000"};
}

void TestScpiDialects::everyMicrowaveDialectIsUnderstood()
{
    QFETCH(QByteArrayList, lines);
    ScpiSession session = microwave();
    for (const QByteArray& line : lines) {
        QCOMPARE(tell(session, line), QByteArray());
    }
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
    QCOMPARE(bench.settings.microwave.frequency, 18e9);
    QCOMPARE(bench.settings.microwave.level, 3.5);
    QVERIFY(bench.settings.microwave.output);
    QVERIFY(!bench.settings.microwave.ifInput);
    QCOMPARE(bench.settings.generator.frequency, SimulatedGenerator().frequency);
    QVERIFY(!bench.settings.generator.output);
}

void TestScpiDialects::theMicrowaveGeneratorsSwitchesAreUnderstood()
{
    ScpiSession session = microwave();
    bench.settings.microwave.ifInput = false;
    tell(session, ":INP:IF:STAT ON");
    tell(session, "OUTP1:ATT 12.500000");
    QVERIFY(bench.settings.microwave.ifInput);
    QCOMPARE(bench.settings.microwave.attenuation, 12.5);
    tell(session, "OUTP1 ON;OUTP1 OFF");
    QVERIFY(!bench.settings.microwave.output);
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiDialects::aLevelOfTheMicrowaveGeneratorReplacesItsIfInput()
{
    ScpiSession session = microwave();
    QVERIFY(bench.settings.microwave.ifInput);
    tell(session, "POW nonsense");
    QVERIFY(bench.settings.microwave.ifInput);
    tell(session, "POW -3.000000");
    QVERIFY(!bench.settings.microwave.ifInput);
}

void TestScpiDialects::theChannelPowerPresetIsUnderstood()
{
    ScpiSession session = main();
    for (const QByteArray& line : channelPowerPreset) {
        QVERIFY2(isUnderstood(session, line), line);
    }
    QCOMPARE(bench.settings.analyzer.sweepTime.value, 1.0);
    QCOMPARE(bench.settings.analyzer.referenceLevel, -20.0);
}

void TestScpiDialects::tuningToANotchIsUnderstood()
{
    ScpiSession session = main();
    const char* const lines[] = {"FREQ:CENT 1008800000.00000000000",
                                 "FREQ:SPAN 3500000.00000000000",
                                 "POW:ACH:BWID 750000.00000000000",
                                 "POW:ACH:BWID:ACH 740000.00000000000",
                                 "POW:ACH:SPAC 1200000.00000000000",
                                 "DISP:WIND1:TRAC:Y:RLEV -20.000",
                                 "INP:ATT 10.000000",
                                 "INP:ATT:AUTO OFF",
                                 "BAND:RES 30000.00000000000",
                                 "BAND:VID 300000.00000000000",
                                 "SWE:TIME 2.000000"};
    for (const char* line : lines) {
        QCOMPARE(tell(session, line), QByteArray());
    }
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
    const SimulatedAnalyzer& analyzer = bench.settings.analyzer;
    QCOMPARE(analyzer.centerFrequency, 1008800000.0);
    QCOMPARE(analyzer.span, 3500000.0);
    QCOMPARE(analyzer.channelBandwidth, 750000.0);
    QCOMPARE(analyzer.adjacentBandwidth, 740000.0);
    QCOMPARE(analyzer.channelSpacing, 1200000.0);
    QCOMPARE(analyzer.attenuation.value, 10.0);
    QCOMPARE(analyzer.resolutionBandwidth.value, 30000.0);
    QCOMPARE(analyzer.videoBandwidth.value, 300000.0);
    QCOMPARE(analyzer.sweepTime.value, 2.0);
    QCOMPARE(bench.settings.generator.frequency, SimulatedGenerator().frequency);
    QCOMPARE(bench.settings.generator.level, SimulatedGenerator().level);
}

void TestScpiDialects::automaticSettingsAreUnderstood()
{
    ScpiSession session = main();
    for (const char* header : {"INP:ATT", "BAND:RES", "BAND:VID", "SWE:TIME"}) {
        const QByteArray automatic = QByteArray(header) + ":AUTO";
        tell(session, automatic + " OFF");
        QCOMPARE(tell(session, automatic + '?'), QByteArray("0"));
        tell(session, automatic + " ON");
        QCOMPARE(tell(session, automatic + '?'), QByteArray("1"));
    }
    QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
}

void TestScpiDialects::aValueEndsTheAutomaticChoice()
{
    ScpiSession session = main();
    tell(session, "BAND:RES -5");
    QVERIFY(bench.settings.analyzer.resolutionBandwidth.automatic);
    tell(session, "BAND:RES 1000");
    QVERIFY(!bench.settings.analyzer.resolutionBandwidth.automatic);
    QVERIFY(bench.settings.analyzer.videoBandwidth.automatic);
}

QTEST_APPLESS_MAIN(TestScpiDialects)
#include "test_scpi_dialects.moc"
