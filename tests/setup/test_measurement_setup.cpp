// Defaults and rules of the record.
#include "setup/measurement_setup.h"

#include <QtTest>

class TestMeasurementSetup : public QObject
{
    Q_OBJECT

private slots:
    void defaultsAreThoseOfAFreshBench();
    void rowsKeepTheNumbersThatFormAndFilesKnow();
    void lengthIsAPowerOfTwoByRow();
    void lengthOfAbsurdRowsIsBounded();
    void newDataIsFlaggedOnlyWhenDataBecomeValid();
    void microwaveGeneratorAddsItsFrequency();
    void copiesShareTheTable();
    void assignmentTakesEverythingOver();
    void signalDataStartsEmpty();
    void resetGivesZerosAndKeepsOddLengths();
    void copiesOfASignalDoNotSeeWrites();
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

// Stored files hold these numbers, and the form's boxes have their rows in this order.
void TestMeasurementSetup::rowsKeepTheNumbersThatFormAndFilesKnow()
{
    QVERIFY(NotchOrCarrier(0) == NotchOrCarrier::Notch);
    QVERIFY(NotchOrCarrier(1) == NotchOrCarrier::Carrier);
    QVERIFY(PhaseLaw(0) == PhaseLaw::Seeded);
    QVERIFY(PhaseLaw(1) == PhaseLaw::Clock);
    QVERIFY(PhaseLaw(2) == PhaseLaw::Parabolic);
    QVERIFY(PhaseLaw(3) == PhaseLaw::Constant);
    QVERIFY(SignalSource(0) == SignalSource::Internal);
    QVERIFY(SignalSource(1) == SignalSource::MagnitudePhaseFile);
    QVERIFY(SignalSource(2) == SignalSource::IQFiles);
    QVERIFY(MeasureMode(0) == MeasureMode::Continuous);
    QVERIFY(MeasureMode(1) == MeasureMode::Single);
    QVERIFY(DataState(0) == DataState::Valid); // the light's colours
    QVERIFY(DataState(1) == DataState::Invalid);
    QVERIFY(DataState(2) == DataState::Calculating);
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
    const QVector<double>* const vectors[] = {&data.iSamples, &data.qSamples, &data.magnitude,
                                              &data.phase};
    data.iSamples = data.qSamples = data.magnitude = data.phase = {5.0, 6.0};
    data.reset(3);
    for (const QVector<double>* values : vectors) {
        QCOMPARE(*values, QVector<double>(3, 0.0));
    }
    QCOMPARE(data.size(), 3);
    data.reset(-7);
    for (const QVector<double>* values : vectors) {
        QVERIFY(values->isEmpty());
    }
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

QTEST_GUILESS_MAIN(TestMeasurementSetup)
#include "test_measurement_setup.moc"
