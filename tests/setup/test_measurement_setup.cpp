// Defaults and rules of the record and of the instruments' settings.
#include "instruments/bandwidth_code.h"
#include "setup/measurement_setup.h"

#include <QtTest>

class TestMeasurementSetup : public QObject
{
    Q_OBJECT

private slots:
    void defaultsAreThoseOfAFreshBench();
    void instrumentDefaults();
    void lengthIsAPowerOfTwoByRow();
    void lengthOfAbsurdRowsIsBounded();
    void newDataIsFlaggedOnlyWhenDataBecomeValid();
    void microwaveGeneratorAddsItsFrequency();
    void copiesShareTheTable();
    void assignmentTakesEverythingOver();
    void signalDataStartsEmpty();
    void resetGivesZerosAndKeepsOddLengths();
    void copiesOfASignalDoNotSeeWrites();
    void bandwidthCodes_data();
    void bandwidthCodes();
    void everyCodeComesBack();
    void hugeCodesSaturate();
    void automaticSweepTimeClearsTheSweepTime();
};

void TestMeasurementSetup::defaultsAreThoseOfAFreshBench()
{
    const MeasurementSetup setup;
    QCOMPARE(setup.fftLength(), 131072U);
    QVERIFY(setup.notches && setup.spareNotches);
    QVERIFY(setup.notches != setup.spareNotches);
    QVERIFY(setup.notches->items.isEmpty());
    QVERIFY(setup.dataState == DataState::Invalid);
    QCOMPARE(setup.notchOrCarrier, NotchOrCarrier::Notch);
    QCOMPARE(setup.sampleRate, 1e8);
    QCOMPARE(setup.nbwSrate, 1.0);
    QCOMPARE(setup.notchCount, 0U);
    QCOMPARE(setup.notchWidth, 1e7);
    QCOMPARE(setup.notchOffset, 1e7);
    QCOMPARE(setup.notchDepth, -100.0);
    QCOMPARE(setup.phaseMode, PhaseLaw::Seeded);
    QCOMPARE(setup.customSource, SignalSource::Internal);
    QCOMPARE(setup.seed, 1U);
    QVERIFY(setup.phaseMagFile.isEmpty() && setup.iFile.isEmpty() && setup.qFile.isEmpty());
    QCOMPARE(setup.crestFactor, 0.0);
    QCOMPARE(setup.tcpState, 1);
    QCOMPARE(setup.tcpPort, quint16{1000});
    QCOMPARE(setup.measureNotch, 0);
    QCOMPARE(setup.measureMode, MeasureMode::Single);
    QVERIFY(!setup.sinxCompensation && !setup.compensate);
    QVERIFY(!setup.newDataFlag && !setup.traceLoaded);
    QCOMPARE(setup.signal.length, 0);
    QVERIFY(setup.compensationTrace.isEmpty());
}

void TestMeasurementSetup::instrumentDefaults()
{
    const MeasurementSetup setup;
    for (const Instrument* instrument : std::initializer_list<const Instrument*>{
             &setup.generator, &setup.analyzer, &setup.microwave}) {
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
    QCOMPARE(setup.analyzer.span, 1e5);
    QCOMPARE(setup.analyzer.sweepTime, 2.0);
    QCOMPARE(setup.analyzer.resolutionBandwidth(), 30000U);
    QCOMPARE(setup.analyzer.videoBandwidth(), 300000U);
    QCOMPARE(setup.analyzer.attenuation, 10U);
    QVERIFY(setup.analyzer.autoAttenuation && setup.analyzer.autoSweepTime);
    QCOMPARE(setup.microwave.attenuation, 0U);
    QVERIFY(setup.microwave.ifInput);
}

void TestMeasurementSetup::lengthIsAPowerOfTwoByRow()
{
    MeasurementSetup setup;
    quint32 length = 4194304;
    for (int row = 0; row <= 16; ++row) {
        setup.fftLengthIndex = row;
        QCOMPARE(setup.fftLength(), length);
        length /= 2;
    }
}

void TestMeasurementSetup::lengthOfAbsurdRowsIsBounded()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 23;
    QCOMPARE(setup.fftLength(), 0U);
    setup.fftLengthIndex = std::numeric_limits<qint32>::min();
    QCOMPARE(setup.fftLength(), 0xFFFFFFFFU);
}

void TestMeasurementSetup::newDataIsFlaggedOnlyWhenDataBecomeValid()
{
    const DataState states[] = {DataState::Valid, DataState::Invalid, DataState::Calculating};
    for (const DataState from : states) {
        for (const DataState to : states) {
            MeasurementSetup setup;
            setup.dataState = from;
            setup.newDataFlag = true;
            setup.setDataState(to);
            QVERIFY(setup.dataState == to);
            QCOMPARE(setup.newDataFlag, from != DataState::Valid && to == DataState::Valid);
        }
    }
}

void TestMeasurementSetup::microwaveGeneratorAddsItsFrequency()
{
    MeasurementSetup setup;
    setup.generator.frequency = 2e9;
    setup.microwave.frequency = 10e9;
    QCOMPARE(setup.effectiveFrequency(), 2e9);
    setup.microwave.device = 1;
    QCOMPARE(setup.effectiveFrequency(), 12e9);
}

void TestMeasurementSetup::copiesShareTheTable()
{
    const MeasurementSetup setup;
    const MeasurementSetup copy(setup);
    copy.notches->insert(1, Notch());
    QCOMPARE(setup.notches->items.size(), 1);
}

void TestMeasurementSetup::assignmentTakesEverythingOver()
{
    MeasurementSetup setup;
    setup.crestFactor = 11.0;
    setup.traceLoaded = true;
    setup.signal = SignalData(4);
    setup.compensationTrace = {1.0};
    setup.analyzer.link()->setInitialized();
    MeasurementSetup loaded;
    loaded.seed = 5;
    const auto table = loaded.notches;
    setup = std::move(loaded);
    QCOMPARE(setup.seed, 5U);
    QCOMPARE(setup.crestFactor, 0.0);
    QVERIFY(!setup.traceLoaded && !setup.analyzer.initialized());
    QCOMPARE(setup.signal.length, 0);
    QVERIFY(setup.compensationTrace.isEmpty());
    QCOMPARE(setup.notches, table);
}

void TestMeasurementSetup::signalDataStartsEmpty()
{
    const SignalData data(0);
    QCOMPARE(data.size(), 0);
    QVERIFY(data.iSamples.isEmpty() && data.qSamples.isEmpty());
    QVERIFY(data.magnitude.isEmpty() && data.phase.isEmpty());
}

void TestMeasurementSetup::resetGivesZerosAndKeepsOddLengths()
{
    SignalData data(2);
    data.iSamples[0] = 5.0;
    data.reset(3);
    QCOMPARE(data.iSamples, QVector<double>(3, 0.0));
    QCOMPARE(data.phase, QVector<double>(3, 0.0));
    QCOMPARE(data.size(), 3);
    data.reset(-7);
    QVERIFY(data.magnitude.isEmpty());
    QCOMPARE(data.size(), -7);
}

void TestMeasurementSetup::copiesOfASignalDoNotSeeWrites()
{
    SignalData data(2);
    const SignalData copy = data;
    QCOMPARE(copy.iSamples.constData(), data.iSamples.constData()); // shared, nothing moved
    data.iData()[0] = 5.0;
    QCOMPARE(copy.iData().at(0), 0.0);
}

void TestMeasurementSetup::bandwidthCodes_data()
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

void TestMeasurementSetup::bandwidthCodes()
{
    QFETCH(quint32, hertz);
    QFETCH(quint32, code);
    QFETCH(quint32, back);
    QCOMPARE(codeFromBandwidth(hertz), code);
    QCOMPARE(bandwidthFromCode(code), back);
}

void TestMeasurementSetup::everyCodeComesBack()
{
    for (quint32 code = 0; code <= 36; ++code) {
        QCOMPARE(codeFromBandwidth(bandwidthFromCode(code)), code);
    }
}

void TestMeasurementSetup::hugeCodesSaturate()
{
    QCOMPARE(bandwidthFromCode(0xFFFFFFFFU), 0xFFFFFFFFU);
    QCOMPARE(codeFromBandwidth(0xFFFFFFFFU), 40U);
}

void TestMeasurementSetup::automaticSweepTimeClearsTheSweepTime()
{
    Analyzer analyzer;
    analyzer.setAutoSweepTime(false);
    QCOMPARE(analyzer.sweepTime, 2.0);
    analyzer.setAutoSweepTime(true);
    QCOMPARE(analyzer.sweepTime, 0.0);
}

QTEST_GUILESS_MAIN(TestMeasurementSetup)
#include "test_measurement_setup.moc"
