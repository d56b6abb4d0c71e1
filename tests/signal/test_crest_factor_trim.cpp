// Clip and restore: what it reaches, what it leaves alone, and how it ends.
#include "signal/crest_factor_trim.h"

#include "setup/measurement_setup.h"
#include "setup/notch_editing.h"
#include "signal/stimulus_statistics.h"

#include <QtTest>

#include <cmath>

namespace {

const TrimProgress always = [](int, double) { return true; };

SignalData noise(double nbwSrate)
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 8; // 16384
    setup.nbwSrate = nbwSrate;
    setup.notchCount = 9;
    setup.notchWidth = 1e6;
    setup.notchOffset = 0.0;
    autoCalculateNotches(setup);
    setup.calculateSignal();
    return setup.signal;
}

} // namespace

class TestCrestFactorTrim : public QObject
{
    Q_OBJECT

private slots:
    void peaksEndBelowTheTargetBetweenTheSamplesToo_data();
    void peaksEndBelowTheTargetBetweenTheSamplesToo();
    void nineDecibelsStayNoiseAndSevenDoNot();
    void magnitudesStayWhatTheyWere();
    void samplesAreThoseOfThePhases();
    void whatIsBelowTheTargetIsLeftAlone();
    void aTargetThatCannotBeEndsWithTheBest();
    void itEndsWhenItIsStopped();
    void emptyLinesKeepTheirPhase();
};

void TestCrestFactorTrim::peaksEndBelowTheTargetBetweenTheSamplesToo_data()
{
    QTest::addColumn<double>("nbwSrate");
    QTest::addColumn<double>("target");
    for (const double nbwSrate : {1.0, 0.8, 0.2}) {
        for (const double target : {9.0, 8.0, 6.0}) {
            QTest::addRow("%.1f, %.0f dB", nbwSrate, target) << nbwSrate << target;
        }
    }
}

void TestCrestFactorTrim::peaksEndBelowTheTargetBetweenTheSamplesToo()
{
    QFETCH(double, nbwSrate);
    QFETCH(double, target);
    SignalData signal = noise(nbwSrate);
    const TrimResult result = trimCrestFactor(signal, target, always);
    QVERIFY(result.isReached);
    QVERIFY2(result.rounds <= (target > 7.0 ? 25 : 60), qPrintable(QString::number(result.rounds)));
    const StimulusStatistics statistics = statisticsOf(signal);
    QVERIFY(std::abs(statistics.peak - result.peak) < 1e-4);
    QVERIFY2(statistics.peak <= target && statistics.peak > target - 0.1,
             qPrintable(QString::number(statistics.peak)));
    QVERIFY2(statistics.crestFactor <= target && statistics.crestFactor > target - 0.25,
             qPrintable(QString::number(statistics.crestFactor)));
}

void TestCrestFactorTrim::nineDecibelsStayNoiseAndSevenDoNot()
{
    for (const double target : {9.0, 8.0}) {
        SignalData signal = noise(0.8);
        trimCrestFactor(signal, target, always);
        QVERIFY(statisticsOf(signal).isNoiseLike);
    }
    SignalData signal = noise(0.8);
    trimCrestFactor(signal, 7.0, always);
    QVERIFY(!statisticsOf(signal).isNoiseLike);
}

void TestCrestFactorTrim::magnitudesStayWhatTheyWere()
{
    SignalData signal = noise(0.8);
    const QVector<double> magnitude = signal.magnitude;
    const QVector<double> phase = signal.phase;
    trimCrestFactor(signal, 9.0, always);
    QCOMPARE(signal.magnitude, magnitude);
    QVERIFY(signal.phase != phase);
}

void TestCrestFactorTrim::samplesAreThoseOfThePhases()
{
    SignalData signal = noise(0.8);
    trimCrestFactor(signal, 9.0, always);
    SignalData again(static_cast<quint32>(signal.length));
    again.magnitude = signal.magnitude;
    again.phase = signal.phase;
    MeasurementSetup().finishSpectrum(again); // cuts nothing
    double worst = 0.0;
    for (int i = 0; i < signal.length; ++i) {
        worst = std::max({worst, std::abs(again.iSamples.at(i) - signal.iSamples.at(i)),
                          std::abs(again.qSamples.at(i) - signal.qSamples.at(i))});
    }
    QVERIFY2(worst < 1e-9, qPrintable(QString::number(worst)));
}

void TestCrestFactorTrim::whatIsBelowTheTargetIsLeftAlone()
{
    SignalData signal = noise(0.8);
    const SignalData before = signal;
    const TrimResult result = trimCrestFactor(signal, 20.0, always);
    QVERIFY(result.isReached);
    QCOMPARE(result.rounds, 0);
    QCOMPARE(signal.phase, before.phase);
    QCOMPARE(signal.iSamples, before.iSamples);
}

// A comb of 2 equal lines has a peak of 3.01 dB whatever its phases are.
void TestCrestFactorTrim::aTargetThatCannotBeEndsWithTheBest()
{
    SignalData signal(64);
    signal.magnitude[32] = signal.magnitude[33] = 1.0;
    MeasurementSetup().finishSpectrum(signal);
    int rounds = 0;
    const TrimResult result = trimCrestFactor(signal, 2.0, [&](int, double) {
        ++rounds;
        return true;
    });
    QVERIFY(!result.isReached);
    QVERIFY(std::abs(result.peak - 3.0103) < 0.01);
    QVERIFY2(rounds < 100, qPrintable(QString::number(rounds)));
}

void TestCrestFactorTrim::itEndsWhenItIsStopped()
{
    SignalData signal = noise(0.8);
    const double before = statisticsOf(signal).peak;
    QVector<int> told;
    const TrimResult result = trimCrestFactor(signal, 5.0, [&](int round, double peak) {
        told.append(round);
        return round < 3 && peak > 0.0;
    });
    QCOMPARE(told, (QVector<int>{0, 1, 2, 3}));
    QVERIFY(!result.isReached);
    QVERIFY(result.peak < before);
    QVERIFY(std::abs(statisticsOf(signal).peak - result.peak) < 1e-4);
}

void TestCrestFactorTrim::emptyLinesKeepTheirPhase()
{
    SignalData signal = noise(0.8);
    signal.magnitude.fill(0.0);
    signal.magnitude[9000] = 1.0;
    signal.phase.fill(0.5);
    MeasurementSetup().finishSpectrum(signal);
    trimCrestFactor(signal, 1.0, always); // one line has a crest factor of 0 dB
    QCOMPARE(signal.phase, QVector<double>(signal.length, 0.5));
}

QTEST_APPLESS_MAIN(TestCrestFactorTrim)
#include "test_crest_factor_trim.moc"
