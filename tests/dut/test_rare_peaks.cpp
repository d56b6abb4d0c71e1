// Peaks to be expected, against tabled tails of the normal distribution and against sums of random
// peaks.
#include "dut/rare_peaks.h"
#include "kit/device_chains.h"

#include <QtTest>

#include <random>

namespace {

bool isWithin(double value, double expected, double share)
{
    return std::abs(value - expected) <= share * std::abs(expected);
}

// Variance of ln(power) over many draws of a Poisson number of peaks beside what is always there.
double drawnScatter(const RarePeaks& peaks)
{
    std::mt19937 random(1);
    std::poisson_distribution<int> number(peaks.count);
    std::exponential_distribution<double> height(1.0);
    const double perPeak = peaks.power / (peaks.count * std::tgamma(peaks.growth + 1.0));
    constexpr int draws = 20000;
    double sum = 0.0;
    double squares = 0.0;
    for (int draw = 0; draw < draws; ++draw) {
        double power = peaks.evenPower;
        for (int n = number(random); n > 0; --n) {
            power += perPeak * std::pow(height(random), peaks.growth);
        }
        const double level = std::log(power);
        sum += level;
        squares += level * level;
    }
    return (squares - sum * sum / draws) / (draws - 1);
}

} // namespace

class TestRarePeaks : public QObject
{
    Q_OBJECT

private slots:
    void aConverterClipsTheTailsOfTwoComponents();
    void theFullScaleGivesTheLoading();
    void aLimiterCutsAsOftenAsTheEnvelopeRises();
    void aLimiterThatLimitsNearlyAlwaysHasNone();
    void gentleDevicesHaveNone();
    void scatterIsThatOfRandomPeaks_data();
    void scatterIsThatOfRandomPeaks();
};

// Q(5) = 2.86652e-7: 4 x 131072 x Q(5) = 0.150289 samples. NPR of 12 bits is 62.71 dB at k = 5 of
// which rounding alone would be 25 / (3 x 4^12), 63.04 dB.
void TestRarePeaks::aConverterClipsTheTailsOfTwoComponents()
{
    const RarePeaks peaks = rarePeaksOf(converterOf(12, 5.0), 4.0, 131072.0, 0.8);
    QVERIFY(isWithin(peaks.count, 0.150289, 1e-5));
    QVERIFY(isWithin(peaks.evenPower, 4.0 * 25.0 / 3.0 / 16777216.0, 1e-12));
    const double npr = -10.0 * std::log10((peaks.power + peaks.evenPower) / 4.0);
    QVERIFY2(std::abs(npr - 62.71) < 0.005, qPrintable(QString::number(npr)));
}

// A carrier of 0 dBm that just reaches full scale, 3.0103 dB - 20 lg 5 = -10.9691 dBm of noise.
void TestRarePeaks::theFullScaleGivesTheLoading()
{
    DeviceSettings device = converterOf(12, 1.0);
    device.fullScale = 0.0;
    const RarePeaks peaks = rarePeaksOf(device, milliwatts(-10.9691), 131072.0, 1.0);
    QVERIFY(isWithin(peaks.count, 0.150289, 1e-3));
}

// Saturation 10 dB above the power: sqrt(pi/3) x sqrt(10) x exp(-10) = 1.46918e-4 a sample of the
// band. All of the distortion: 60.2 dB in the middle of the band, where its density is higher by
// less than 3 dB than it would be if it were spread over the band alone.
void TestRarePeaks::aLimiterCutsAsOftenAsTheEnvelopeRises()
{
    const DeviceSettings device = deviceOf("soft", {0.0, 20.0});
    const RarePeaks peaks = rarePeaksOf(device, milliwatts(-10.0), 1e5, 0.5);
    QVERIFY(isWithin(peaks.count, 0.5e5 * 1.46918e-4, 1e-4));
    QCOMPARE(peaks.evenPower, 0.0);
    const double share = 10.0 * std::log10(peaks.power / milliwatts(-10.0));
    QVERIFY2(std::abs(share - -57.0) < 0.5, qPrintable(QString::number(share)));
}

// 30 dB over saturation every thousandth sample is below it. The readings of 160 stimuli scatter
// there as much as those at 10 dB, by the lines alone.
void TestRarePeaks::aLimiterThatLimitsNearlyAlwaysHasNone()
{
    const DeviceSettings device = deviceOf("soft", {0.0, 20.0});
    QCOMPARE(scatterOf(rarePeaksOf(device, milliwatts(30.0), 131072.0, 0.8)), 0.0);
    QVERIFY(scatterOf(rarePeaksOf(device, milliwatts(2.9), 131072.0, 0.8)) > 0.0);
}

void TestRarePeaks::gentleDevicesHaveNone()
{
    for (const char* name : {"linear", "rapp", "saleh", "cubic"}) {
        const DeviceSettings device = deviceOf(name, {10.0, 20.0});
        QCOMPARE(scatterOf(rarePeaksOf(device, 1.0, 131072.0, 1.0)), 0.0);
    }
    QCOMPARE(rarePeaksOf(converterOf(12, 5.0), 0.0, 131072.0, 1.0).count, 0.0);
}

void TestRarePeaks::scatterIsThatOfRandomPeaks_data()
{
    QTest::addColumn<double>("count");
    QTest::addColumn<double>("share"); // of the peaks
    QTest::addColumn<double>("growth");
    QTest::newRow("many") << 100.0 << 0.9 << 2.0;
    QTest::newRow("some") << 8.0 << 0.5 << 2.0;
    QTest::newRow("two, and little else") << 2.0 << 0.8 << 2.0;
    QTest::newRow("one") << 1.0 << 0.3 << 2.0;
    QTest::newRow("one in six") << 1.0 / 6.0 << 0.06 << 2.0;
    QTest::newRow("one in a hundred") << 0.01 << 0.05 << 2.0;
    QTest::newRow("limiter, many") << 130.0 << 0.999 << 2.5;
    QTest::newRow("limiter, twenty") << 20.0 << 0.999 << 2.5;
}

// Scatter, the root, within a half.
void TestRarePeaks::scatterIsThatOfRandomPeaks()
{
    QFETCH(double, count);
    QFETCH(double, share);
    QFETCH(double, growth);
    RarePeaks peaks;
    peaks.count = count;
    peaks.power = share;
    peaks.evenPower = 1.0 - share;
    peaks.growth = growth;
    const double ratio = std::sqrt(scatterOf(peaks) / drawnScatter(peaks));
    QVERIFY2(ratio > 1.0 / 1.5 && ratio < 1.5, qPrintable(QString::number(ratio)));
}

QTEST_APPLESS_MAIN(TestRarePeaks)
#include "test_rare_peaks.moc"
