// The instruments' settings without a device: defaults, bandwidths, sections of the configuration.
#include "instruments/analyzer.h"
#include "instruments/bandwidth_code.h"
#include "instruments/microwave_generator.h"
#include "instruments/signal_generator.h"

#include <QtTest>

class TestInstrumentSettings : public QObject
{
    Q_OBJECT

private slots:
    void defaultsAreThoseOfAFreshBench();
    void aGeneratorsSectionHoldsItsSettings();
    void anAnalyzersSectionHoldsItsSettings();
    void aMicrowaveGeneratorsSectionHoldsItsSettings();
    void aBandwidthIsCutToItsSeries_data();
    void aBandwidthIsCutToItsSeries();
    void everyCodeComesBack();
    void hugeCodesSaturate();
    void automaticSweepTimeClearsTheSweepTime();
};

void TestInstrumentSettings::defaultsAreThoseOfAFreshBench()
{
    const SignalGenerator generator;
    const Analyzer analyzer;
    const MicrowaveGenerator microwave;
    for (const Instrument* instrument :
         std::initializer_list<const Instrument*>{&generator, &analyzer, &microwave}) {
        QVERIFY(instrument->interfaceKind == InterfaceKind::LanSocket);
        QCOMPARE(instrument->device, 0U);
        QCOMPARE(instrument->gpibAddress, 20U);
        QCOMPARE(instrument->rs232Port, 0U);
        QVERIFY(instrument->deviceMessage().isEmpty());
        QCOMPARE(instrument->ipAddress, QString("127.0.0.1"));
        QCOMPARE(instrument->frequency, 0.0);
        QCOMPARE(instrument->level, -20.0);
        QCOMPARE(instrument->rs232BaudRate, 9600U);
        QCOMPARE(instrument->rs232DataBits, 8);
        QCOMPARE(instrument->rs232Parity, 0);
        QCOMPARE(instrument->rs232StopBits, 1);
        QCOMPARE(instrument->rs232FlowControl, 0);
        QVERIFY(!instrument->initialized());
    }
    QCOMPARE(analyzer.span, 1e5);
    QCOMPARE(analyzer.sweepTime, 2.0);
    QCOMPARE(analyzer.resolutionBandwidth(), 30000U);
    QCOMPARE(analyzer.videoBandwidth(), 300000U);
    QCOMPARE(analyzer.attenuation, 10U);
    QVERIFY(analyzer.autoAttenuation && analyzer.autoSweepTime);
    QCOMPARE(microwave.attenuation, 0U);
    QVERIFY(microwave.ifInput);
}

void TestInstrumentSettings::aGeneratorsSectionHoldsItsSettings()
{
    SignalGenerator generator;
    generator.device = 3;
    generator.interfaceKind = InterfaceKind::LanTlnk;
    generator.gpibAddress = 5;
    generator.ipAddress = "10.0.0.1";
    generator.rs232Port = 1;
    generator.rs232BaudRate = 19200;
    generator.rs232DataBits = 7;
    generator.rs232Parity = 2;
    generator.rs232StopBits = 3;
    generator.rs232FlowControl = 4;
    generator.frequency = 1e9;
    generator.level = -7.5;
    QCOMPARE(generator.configSection(), QString("[Generator1]\n"
                                                "Device = 3\n"
                                                "Interface = 2\n"
                                                "GPIB Addr = 5\n"
                                                "IP Addr = \"10.0.0.1\"\n"
                                                "RS232 Port = 1\n"
                                                "RS232 BaudRate = 19200\n"
                                                "RS232 DataBits = 7\n"
                                                "RS232 Parity = 2\n"
                                                "RS232 StopBits = 3\n"
                                                "RS232 FlowControl = 4\n"
                                                "Frequency = 1e+09\n"
                                                "Level = -7.5\n\n"));
}

void TestInstrumentSettings::anAnalyzersSectionHoldsItsSettings()
{
    Analyzer analyzer;
    analyzer.span = 5e6;
    analyzer.level = -3.0;
    analyzer.attenuation = 25;
    analyzer.autoAttenuation = false;
    analyzer.setResolutionBandwidth(50000);
    analyzer.setVideoBandwidth(2000);
    analyzer.setAutoSweepTime(false);
    analyzer.sweepTime = 0.25;
    const QString section = analyzer.configSection();
    QVERIFY(section.startsWith("[Analyzer]\nDevice = 0\n"));
    QVERIFY2(section.endsWith("Frequency = 0\n"
                              "Span = 5e+06\n"
                              "Level = -3\n"
                              "Atten = 25\n"
                              "AUTO Atten = 0\n"
                              "Res BW = 50000\n"
                              "Video BW = 2000\n"
                              "Sweeptime = 0.25\n"
                              "AUTO Swt = 0\n\n"),
             qPrintable(section));
}

void TestInstrumentSettings::aMicrowaveGeneratorsSectionHoldsItsSettings()
{
    MicrowaveGenerator generator;
    generator.level = -1.0;
    generator.attenuation = 15;
    generator.ifInput = false;
    const QString section = generator.configSection();
    QVERIFY(section.startsWith("[Generator2]\nDevice = 0\n"));
    QVERIFY2(section.endsWith("Frequency = 0\n"
                              "Level = -1\n"
                              "Atten = 15\n"
                              "IF Input = 0\n\n"),
             qPrintable(section));
}

void TestInstrumentSettings::aBandwidthIsCutToItsSeries_data()
{
    QTest::addColumn<quint32>("hertz");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<quint32>("back");
    QTest::newRow("auto") << 0U << 0U << 0U;
    QTest::newRow("1") << 1U << 1U << 1U;
    QTest::newRow("3") << 3U << 3U << 3U;
    QTest::newRow("4") << 4U << 4U << 5U;
    QTest::newRow("9") << 9U << 4U << 5U;
    QTest::newRow("10") << 10U << 5U << 10U;
    QTest::newRow("1000") << 1000U << 13U << 1000U;
    QTest::newRow("30000") << 30000U << 19U << 30000U;
    QTest::newRow("40000") << 40000U << 20U << 50000U;
    QTest::newRow("99999") << 99999U << 20U << 50000U;
    QTest::newRow("300000") << 300000U << 23U << 300000U;
    QTest::newRow("1000000") << 1000000U << 25U << 1000000U;
}

void TestInstrumentSettings::aBandwidthIsCutToItsSeries()
{
    QFETCH(quint32, hertz);
    QFETCH(quint32, code);
    QFETCH(quint32, back);
    QCOMPARE(codeFromBandwidth(hertz), code);
    QCOMPARE(bandwidthFromCode(code), back);
}

void TestInstrumentSettings::everyCodeComesBack()
{
    for (quint32 code = 0; code <= 36; ++code) {
        QCOMPARE(codeFromBandwidth(bandwidthFromCode(code)), code);
    }
}

void TestInstrumentSettings::hugeCodesSaturate()
{
    QCOMPARE(bandwidthFromCode(0xFFFFFFFFU), 0xFFFFFFFFU);
    QCOMPARE(codeFromBandwidth(0xFFFFFFFFU), 40U);
}

void TestInstrumentSettings::automaticSweepTimeClearsTheSweepTime()
{
    Analyzer analyzer;
    analyzer.setAutoSweepTime(false);
    QCOMPARE(analyzer.sweepTime, 2.0);
    analyzer.setAutoSweepTime(true);
    QCOMPARE(analyzer.sweepTime, 0.0);
}

QTEST_APPLESS_MAIN(TestInstrumentSettings)
#include "test_instrument_settings.moc"
