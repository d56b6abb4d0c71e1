// Statistics of a stimulus against closed forms and against a plain interpolation and sort.
#include "signal/stimulus_statistics.h"

#include "setup/measurement_setup.h"
#include "setup/notch_editing.h"
#include "transform/interpolation.h"
#include "transform/transform.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

namespace {

constexpr double pi = 3.14159265358979323846;

MeasurementSetup noiseSetup(int exponent, double nbwSrate, quint32 seed)
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 22 - exponent;
    setup.nbwSrate = nbwSrate;
    setup.seed = seed;
    return setup;
}

StimulusStatistics statisticsOf(MeasurementSetup setup)
{
    setup.calculateSignal();
    return statisticsOf(setup.signal);
}

// A signal of lines alone, by their numbers from the carrier.
SignalData lines(int n, const QVector<int>& numbers)
{
    MeasurementSetup setup; // no notch, whole band
    SignalData signal(static_cast<quint32>(n));
    for (const int number : numbers) {
        signal.magnitude[n / 2 + number] = 1.0;
    }
    setup.finishSpectrum(signal);
    return signal;
}

// Falling, of the envelope and four times as dense.
std::vector<double> plainPowers(const SignalData& signal)
{
    QVector<double> re = signal.iSamples;
    QVector<double> im = signal.qSamples;
    interpolate(re, im, 4);
    std::vector<double> powers;
    powers.reserve(static_cast<std::size_t>(re.size()));
    for (int i = 0; i < re.size(); ++i) {
        powers.push_back(re.at(i) * re.at(i) + im.at(i) * im.at(i));
    }
    std::sort(powers.rbegin(), powers.rend());
    return powers;
}

double overTheMean(const std::vector<double>& powers, std::size_t place)
{
    const double mean = std::accumulate(powers.begin(), powers.end(), 0.0) / double(powers.size());
    return 10.0 * std::log10(powers[place] / mean);
}

// Noise whose power in dB is 1 + bend times as far from that of a sample of 1.
SignalData bentNoise(const MeasurementSetup& setup, double bend)
{
    SignalData signal = setup.signal;
    for (int i = 0; i < signal.length; ++i) {
        const double gain =
            std::pow(std::hypot(signal.iSamples.at(i), signal.qSamples.at(i)), bend);
        signal.iSamples[i] *= gain;
        signal.qSamples[i] *= gain;
    }
    QVector<double> re = signal.iSamples;
    QVector<double> im = signal.qSamples;
    forwardTransform(im, re, static_cast<quint32>(signal.length));
    for (int k = 0; k < signal.length; ++k) {
        const int bin = (k + signal.length / 2) % signal.length;
        signal.magnitude[bin] = std::hypot(re.at(k), im.at(k));
        signal.phase[bin] = std::atan2(im.at(k), re.at(k));
    }
    setup.finishSpectrum(signal);
    return signal;
}

// By how many dB the level that lies farthest off is beyond what noise of so many lines may have:
// 0.8 dB and four times the scatter of a binomial count. Below 0 for all within.
double excessOf(const std::vector<double>& powers, double lines)
{
    double excess = -HUGE_VAL;
    for (const double share : {0.5, 0.3, 0.1, 0.01, 0.001}) {
        if (share * lines >= 10.0) {
            const double nepers = -std::log(share);
            const double scatter =
                10.0 * std::log10(std::exp(1.0)) / nepers * std::sqrt((1.0 / share - 1.0) / lines);
            const auto place = static_cast<std::size_t>(std::lround(share * double(powers.size())));
            const double off = overTheMean(powers, place) - 10.0 * std::log10(nepers);
            excess = std::max(excess, std::abs(off) - 0.8 - 4.0 * scatter);
        }
    }
    return excess;
}

} // namespace

class TestStimulusStatistics : public QObject
{
    Q_OBJECT

private slots:
    void twoLinesBeatBetweenTheSamples();
    void levelsAreThoseOfAPlainInterpolationAndSort();
    void longNoiseHasTheLevelsOfNoise();
    void effectiveLinesLeaveOutWhatIsSuppressed();
    void randomPhasesAreNoiseLike_data();
    void randomPhasesAreNoiseLike();
    void orderedPhasesAreNot_data();
    void orderedPhasesAreNot();
    void levelsMayBeOffByLittleAndByChance_data();
    void levelsMayBeOffByLittleAndByChance();
    void realNoiseIsNot();
    void fewLinesAreNot();
    void aSignalWithoutPowerIsNot();
};

// |1 + e^(j 2 pi k / 8)|^2 = 2 + 2 cos(2 pi t / 8): 4 over a mean of 2 at t = 0, that is 3.01 dB.
// Moved by half a sample the samples miss the peak: 2 + 2 cos(pi / 8) = 3.848, 2.84 dB.
void TestStimulusStatistics::twoLinesBeatBetweenTheSamples()
{
    QVERIFY(std::abs(statisticsOf(lines(8, {0, 1})).peak - 3.0103) < 1e-4);
    MeasurementSetup setup;
    SignalData signal(8);
    signal.magnitude[4] = signal.magnitude[5] = 1.0;
    signal.phase[5] = pi / 8;
    setup.finishSpectrum(signal);
    const StimulusStatistics statistics = statisticsOf(signal);
    QVERIFY(std::abs(statistics.crestFactor - 2.8423) < 1e-3);
    QVERIFY(std::abs(statistics.peak - 3.0103) < 1e-4);
    QCOMPARE(qRound(1e6 * statistics.lines), 2000000);
}

void TestStimulusStatistics::levelsAreThoseOfAPlainInterpolationAndSort()
{
    MeasurementSetup setup = noiseSetup(12, 0.8, 5);
    setup.notchCount = 3;
    setup.notchWidth = 2e6;
    autoCalculateNotches(setup);
    setup.calculateSignal();
    const std::vector<double> powers = plainPowers(setup.signal);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    const double tolerance = 1e-5; // dB; powers are kept as floats
    QVERIFY(std::abs(statistics.peak - overTheMean(powers, 0)) < tolerance);
    // 16384 powers: 1638.4, 163.84, 16.384 and 1.6384 of them lie above.
    const std::size_t above[] = {1638, 164, 16, 2};
    for (int i = 0; i < 4; ++i) {
        const double level = overTheMean(powers, above[i]);
        QVERIFY(std::abs(statistics.ccdf[std::size_t(i)] - level) < tolerance);
    }
    QCOMPARE(statistics.crestFactor, setup.crestFactor);
}

// 10 lg(-ln share); the tolerances are four times the scatter of a million samples.
void TestStimulusStatistics::longNoiseHasTheLevelsOfNoise()
{
    const StimulusStatistics statistics = statisticsOf(noiseSetup(20, 1.0, 1));
    const double levels[] = {3.6222, 6.6323, 8.3934, 9.6428};
    const double tolerances[] = {0.025, 0.04, 0.08, 0.2};
    for (std::size_t i = 0; i < 4; ++i) {
        QVERIFY2(std::abs(statistics.ccdf[i] - levels[i]) < tolerances[i],
                 qPrintable(QString::number(statistics.ccdf[i])));
    }
    QVERIFY(statistics.peak > 10.0 * std::log10(std::log(1048576.0) - 2.0));
    QVERIFY(statistics.isNoiseLike);
}

void TestStimulusStatistics::effectiveLinesLeaveOutWhatIsSuppressed()
{
    const double count = statisticsOf(noiseSetup(12, 0.5, 1)).lines;
    QVERIFY2(std::abs(count - 2047.0) < 0.01, qPrintable(QString::number(count)));
}

void TestStimulusStatistics::randomPhasesAreNoiseLike_data()
{
    QTest::addColumn<int>("exponent");
    for (const int exponent : {7, 8, 9, 10, 12, 14}) {
        QTest::addRow("2^%d", exponent) << exponent;
    }
}

void TestStimulusStatistics::randomPhasesAreNoiseLike()
{
    QFETCH(int, exponent);
    for (quint32 seed = 1; seed <= 50; ++seed) {
        for (const double nbwSrate : {1.0, 0.8}) {
            MeasurementSetup setup = noiseSetup(exponent, nbwSrate, seed);
            QVERIFY2(statisticsOf(setup).isNoiseLike, qPrintable(QString::number(seed)));
        }
    }
}

void TestStimulusStatistics::orderedPhasesAreNot_data()
{
    randomPhasesAreNoiseLike_data();
}

// Whatever share of the band they fill, with notches and without.
void TestStimulusStatistics::orderedPhasesAreNot()
{
    QFETCH(int, exponent);
    constexpr double fewestLines = 300.0; // with fewer the chance of random phases is too wide
    for (int percent = 10; percent <= 100; percent += 5) {
        const double nbwSrate = percent / 100.0;
        for (const PhaseLaw law : {PhaseLaw::Parabolic, PhaseLaw::Constant}) {
            MeasurementSetup setup = noiseSetup(exponent, nbwSrate, 1);
            setup.phaseMode = law;
            setup.calculateSignal();
            const StimulusStatistics bare = statisticsOf(setup.signal);
            QVERIFY2(bare.lines < fewestLines || !bare.isNoiseLike,
                     qPrintable(QString::number(nbwSrate)));
            setup.notchCount = 9;
            setup.notchWidth = 1e6 * nbwSrate;
            setup.notchOffset = 0.0;
            autoCalculateNotches(setup);
            setup.calculateSignal();
            const StimulusStatistics notched = statisticsOf(setup.signal);
            QVERIFY2(notched.lines < fewestLines || !notched.isNoiseLike,
                     qPrintable(QString::number(nbwSrate)));
        }
    }
}

void TestStimulusStatistics::levelsMayBeOffByLittleAndByChance_data()
{
    QTest::addColumn<int>("exponent");
    QTest::addColumn<double>("step");
    QTest::newRow("few lines, more by chance") << 10 << 0.02;
    QTest::newRow("many lines") << 14 << 0.01;
}

// Signals from too flat to too peaky, of which some lie within a tenth of a dB on either side of
// the bounds. The peaks are noise's all the while.
void TestStimulusStatistics::levelsMayBeOffByLittleAndByChance()
{
    QFETCH(int, exponent);
    QFETCH(double, step);
    MeasurementSetup setup = noiseSetup(exponent, 1.0, 1);
    setup.calculateSignal();
    double nearestWithin = -HUGE_VAL;
    double nearestBeyond = HUGE_VAL;
    for (int k = 0; 0.1 + k * step < 0.6; ++k) {
        const double bend = 0.1 + k * step;
        const SignalData signal = bentNoise(setup, bend);
        const StimulusStatistics statistics = statisticsOf(signal);
        const double excess = excessOf(plainPowers(signal), statistics.lines);
        if (statistics.peak > 10.0 * std::log10(std::log(statistics.lines) + 12.0)) {
            break;
        }
        QVERIFY2(statistics.isNoiseLike == (excess <= 0.0), qPrintable(QString::number(bend)));
        if (excess <= 0.0) {
            nearestWithin = std::max(nearestWithin, excess);
        } else {
            nearestBeyond = std::min(nearestBeyond, excess);
        }
    }
    QVERIFY2(nearestWithin > -0.1 && nearestBeyond < 0.1,
             qPrintable(QString("%1 %2").arg(nearestWithin).arg(nearestBeyond)));
}

// One component alone: its power has another distribution, 10 % of it lie 4.32 dB over the mean.
void TestStimulusStatistics::realNoiseIsNot()
{
    constexpr int n = 16384;
    std::mt19937 engine(3);
    SignalData signal(n);
    for (int i = 1; i < n / 2; ++i) {
        const double phase = 2.0 * pi * double(engine()) / 4294967296.0;
        signal.magnitude[n / 2 + i] = signal.magnitude[n / 2 - i] = 1.0;
        signal.phase[n / 2 + i] = phase;
        signal.phase[n / 2 - i] = -phase;
    }
    MeasurementSetup().finishSpectrum(signal);
    const StimulusStatistics statistics = statisticsOf(signal);
    QVERIFY(std::abs(statistics.ccdf[0] - 4.32) < 0.1);
    QVERIFY(!statistics.isNoiseLike);
}

void TestStimulusStatistics::fewLinesAreNot()
{
    QVERIFY(!statisticsOf(noiseSetup(6, 1.0, 1)).isNoiseLike);
    MeasurementSetup carriers = noiseSetup(14, 1.0, 1);
    carriers.notchOrCarrier = NotchOrCarrier::Carrier;
    carriers.notchCount = 11;
    autoCalculateNotches(carriers);
    QVERIFY(!statisticsOf(carriers).isNoiseLike);
}

void TestStimulusStatistics::aSignalWithoutPowerIsNot()
{
    const StimulusStatistics statistics = statisticsOf(lines(1024, {}));
    QVERIFY(std::isnan(statistics.peak));
    QVERIFY(!statistics.isNoiseLike);
}

QTEST_APPLESS_MAIN(TestStimulusStatistics)
#include "test_stimulus_statistics.moc"
