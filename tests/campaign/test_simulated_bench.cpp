// Campaigns in the process against the figures of the physics page: converters, a cubic device with
// a noise floor, how readings scatter, and that the cores change no bit.
#include "base/parallel.h"
#include "campaign/campaign.h"
#include "campaign/npr_curve.h"
#include "campaign/simulated_bench.h"
#include "kit/device_chains.h"
#include "kit/instrumented.h"
#include "setup/notch_editing.h"

#include <QtTest>

Q_DECLARE_METATYPE(Chain*)

namespace {

// Nine notches of 1 % of the rate in a band of 80 %; 131072 points at 100 MHz.
MeasurementSetup nineNotches(int lengthIndex = 5)
{
    MeasurementSetup setup;
    setup.nbwSrate = 0.8;
    setup.fftLengthIndex = lengthIndex;
    setup.notchCount = 9;
    setup.notchWidth = 1e6;
    setup.notchOffset = 0.0;
    autoCalculateNotches(setup);
    return setup;
}

MeasurementSetup oneNotch(int lengthIndex = 5)
{
    MeasurementSetup setup = nineNotches(lengthIndex);
    setup.nbwSrate = 1.0;
    setup.notchCount = 1;
    autoCalculateNotches(setup);
    return setup;
}

CampaignPlan planOf(const MeasurementSetup& setup, const QVector<double>& levels, int averages = 1)
{
    CampaignPlan plan;
    plan.levels = levels;
    plan.averages = averages;
    plan.notches = numberedNotches(setup, static_cast<int>(setup.fftLength()));
    return plan;
}

CampaignOutcome measured(const MeasurementSetup& setup, const Chain& chain,
                         const CampaignPlan& plan)
{
    SimulatedBench bench(setup.forOtherThread(), chain, QStringLiteral("device"));
    return runCampaign(plan, bench, Interruption());
}

// Its full scale is a carrier of 0 dBm.
Chain converterChain(int bits)
{
    Chain chain = chainOf("adc");
    chain.device.bits = bits;
    chain.device.fullScale = 0.0;
    return chain;
}

// Sigma of the readings of seeds 1 to count in the notch numbered 1, over the sigma they tell.
struct Scatter
{
    double seen;
    double told; // mean square root
    int fewPeaks;
};

Scatter scatterOf(const Chain& chain, double level, int seeds, int lengthIndex)
{
    MeasurementSetup setup = oneNotch(lengthIndex);
    double sum = 0.0;
    double squares = 0.0;
    double told = 0.0;
    int marked = 0;
    for (int seed = 1; seed <= seeds; ++seed) {
        setup.seed = static_cast<quint32>(seed);
        const NprPoint point = measured(setup, chain, planOf(setup, {level})).points.constFirst();
        sum += *point.npr;
        squares += *point.npr * *point.npr;
        told += *point.sigma * *point.sigma;
        marked += point.marks.contains(PointMark::fewPeaks) ? 1 : 0;
    }
    const double mean = sum / seeds;
    return {std::sqrt((squares - sum * mean) / (seeds - 1)), std::sqrt(told / seeds), marked};
}

} // namespace

class TestSimulatedBench : public QObject
{
    Q_OBJECT

private slots:
    void aLinearDeviceReadsTheDepthOfTheNotch();
    void aConverterHasItsPeakAndRange_data();
    void aConverterHasItsPeakAndRange();
    void fourteenBitsHaveTheirRange();
    void readingsNearTheBestLoadingTellTheirScatter_data();
    void readingsNearTheBestLoadingTellTheirScatter();
    void aCubicDeviceWithANoiseFloorPeaksWhereItMust();
    void averagesTakeTheNextSeeds();
    void aPhaseLawWithoutASeedRepeatsItsStimulus();
    void sigmaIsWhatScatters_data();
    void sigmaIsWhatScatters();
    void theCoresChangeNoBit();
    void aReadingDoesNotDependOnItsNeighbours();
    void aSignalThatIsThereIsNotCalculatedAgain();
    void aSignalOfOddLengthIsRefused();
};

// The notch is 40 dB deep: 39.9996 after turning back.
void TestSimulatedBench::aLinearDeviceReadsTheDepthOfTheNotch()
{
    MeasurementSetup setup = nineNotches();
    for (Notch& notch : setup.notches->items) {
        notch.depth = -40.0;
    }
    const CampaignOutcome outcome = measured(setup, chainOf("linear"), planOf(setup, {-20.0, 3.0}));
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Done);
    QCOMPARE(outcome.points.size(), 18);
    for (const NprPoint& point : outcome.points) {
        QVERIFY(std::abs(*point.npr - 10.0 * std::log10(9999.0)) < 1e-6);
        QVERIFY(*point.sigma < 1e-3);
        // 0.75 MHz of the 71 MHz that are left of the band.
        QVERIFY(std::abs(point.power - (point.level + 10.0 * std::log10(0.75 / 71.0))) < 0.02);
    }
    QCOMPARE(*outcome.bench.simulated, QString("device"));
}

void TestSimulatedBench::aConverterHasItsPeakAndRange_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("npr");
    QTest::addColumn<double>("level"); // 3.01 dB - 20 lg k
    QTest::addColumn<double>("range"); // at 41 dB
    QTest::addColumn<int>("averages");
    QTest::newRow("12 bits") << 12 << 62.71 << -10.99 << 25.35 << 16;
    QTest::newRow("10 bits") << 10 << 51.56 << -10.03 << 13.28 << 4;
    QTest::newRow("8 bits") << 8 << 40.60 << -8.86 << 0.0 << 2;
    QTest::newRow("6 bits") << 6 << 29.94 << -7.33 << 0.0 << 1;
}

void TestSimulatedBench::aConverterHasItsPeakAndRange()
{
    QFETCH(int, bits);
    QFETCH(double, npr);
    QFETCH(double, level);
    QFETCH(double, range);
    QFETCH(int, averages);
    const MeasurementSetup setup = oneNotch();
    const QVector<double> levels = levelSteps(-36.0, -5.0, 1.0);
    const CampaignOutcome outcome =
        measured(setup, converterChain(bits), planOf(setup, levels, averages));
    const NprCurve curve = curvesOf(outcome.points, {41.0}).constFirst();
    QVERIFY2(std::abs(*curve.peakNpr - npr) < 0.5, qPrintable(QString::number(*curve.peakNpr)));
    QVERIFY2(std::abs(*curve.peakLevel - level) < 0.7,
             qPrintable(QString::number(*curve.peakLevel)));
    QCOMPARE(curve.ranges[0].range().has_value(), range > 0.0);
    if (range > 0.0) {
        QVERIFY2(std::abs(*curve.ranges[0].range() - range) < 0.6,
                 qPrintable(QString::number(*curve.ranges[0].range())));
    }
}

// Their peak is 74 dB at the most, but hardly one stimulus in a hundred shows the clipping there.
void TestSimulatedBench::fourteenBitsHaveTheirRange()
{
    const MeasurementSetup setup = oneNotch(7);
    const CampaignPlan plan = planOf(setup, levelSteps(-46.0, -5.0, 1.0), 4);
    const CampaignOutcome outcome = measured(setup, converterChain(14), plan);
    const NprCurve curve = curvesOf(outcome.points, {41.0}).constFirst();
    QVERIFY2(std::abs(*curve.ranges[0].range() - 37.39) < 0.6,
             qPrintable(QString::number(*curve.ranges[0].range())));
    for (const NprPoint& point : outcome.points) {
        // From k = 6 down to 3.2: two clipped samples in a thousand million to one in 700.
        const bool isNearClipping = point.level > -12.5 && point.level < -7.0;
        QVERIFY(!isNearClipping || point.marks.contains(PointMark::fewPeaks));
        QVERIFY(point.level > -15.0 || point.marks.isEmpty());
    }
}

// NPR by Gray and Zeoli's formula, worked out apart.
void TestSimulatedBench::readingsNearTheBestLoadingTellTheirScatter_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("loading");
    QTest::addColumn<double>("npr");
    QTest::addColumn<int>("averages");
    for (const int averages : {1, 4, 16}) {
        const auto row = [averages](int bits, double loading, double npr) {
            QTest::addRow("%d bits, k = %.2f, %d averages", bits, loading, averages)
                << bits << loading << npr << averages;
        };
        row(12, 4.5, 60.22);
        row(12, 5.0, 62.71);
        row(14, 5.0, 71.57);
        row(14, 5.49, 74.01);
        row(14, 5.75, 73.82);
    }
}

// Far more often than not none of the samples is clipped, and the reading is too high.
void TestSimulatedBench::readingsNearTheBestLoadingTellTheirScatter()
{
    QFETCH(int, bits);
    QFETCH(double, loading);
    QFETCH(double, npr);
    QFETCH(int, averages);
    const MeasurementSetup setup = oneNotch();
    const double level = 3.0103 - 20.0 * std::log10(loading);
    const NprPoint point =
        measured(setup, converterChain(bits), planOf(setup, {level}, averages)).points.constFirst();
    const QString text = QString("%1 dB, sigma %2").arg(*point.npr).arg(*point.sigma);
    QVERIFY2(std::abs(*point.npr - npr) < 3.0 * *point.sigma + 0.1, qPrintable(text));
    QVERIFY2(*point.sigma < 6.0, qPrintable(text));
    QVERIFY(point.marks.contains(PointMark::fewPeaks));
}

// Best level (N IP3^2 / 3)^(1/3), peak 2/3 (IP3 - N) - 3.35 dB; IP3 of 20 dBm and a noise power in
// the band (100 MHz) of N = -40 dBm: 10 (-4 + 4 - 0.477) / 3 = -1.59 dBm and 36.65 dB.
void TestSimulatedBench::aCubicDeviceWithANoiseFloorPeaksWhereItMust()
{
    Chain chain = chainOf("cubic");
    chain.noiseFloor = -120.0;
    const MeasurementSetup setup = oneNotch();
    const CampaignOutcome outcome =
        measured(setup, chain, planOf(setup, levelSteps(-12.0, 8.0, 1.0), 8));
    const NprCurve curve = curvesOf(outcome.points, {}).constFirst();
    QVERIFY2(std::abs(*curve.peakLevel - -1.59) < 0.3,
             qPrintable(QString::number(*curve.peakLevel)));
    // The notch, 1 % of the band, measures itself 0.1 dB higher.
    QVERIFY2(std::abs(*curve.peakNpr - 36.65) < 0.25, qPrintable(QString::number(*curve.peakNpr)));
}

void TestSimulatedBench::averagesTakeTheNextSeeds()
{
    MeasurementSetup setup = oneNotch(9);
    setup.seed = 41;
    const CampaignOutcome outcome = measured(setup, chainOf("cubic"), planOf(setup, {0.0}, 3));
    QCOMPARE(outcome.seeds, (QVector<quint32>{41, 42, 43}));
    // Their powers averaged, each measured by itself.
    double reference = 0.0;
    double notch = 0.0;
    for (const quint32 seed : {41U, 42U, 43U}) {
        setup.seed = seed;
        const NprPoint point =
            measured(setup, chainOf("cubic"), planOf(setup, {0.0})).points.constFirst();
        reference += milliwatts(point.power);
        notch += milliwatts(point.power) / (1.0 + milliwatts(*point.npr));
    }
    const double expected = 10.0 * std::log10((reference - notch) / notch);
    QVERIFY(std::abs(*outcome.points[0].npr - expected) < 1e-9);
}

void TestSimulatedBench::aPhaseLawWithoutASeedRepeatsItsStimulus()
{
    MeasurementSetup setup = oneNotch(9);
    setup.phaseMode = PhaseLaw::Parabolic;
    const CampaignOutcome once = measured(setup, chainOf("rapp"), planOf(setup, {-6.0}));
    const CampaignOutcome often = measured(setup, chainOf("rapp"), planOf(setup, {-6.0}, 5));
    QVERIFY(often.seeds.isEmpty());
    QVERIFY(std::abs(*often.points[0].npr - *once.points[0].npr) < 1e-12);
    QVERIFY(std::abs(*often.points[0].sigma - *once.points[0].sigma) < 1e-12);
}

void TestSimulatedBench::sigmaIsWhatScatters_data()
{
    QTest::addColumn<Chain*>("chain");
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("factor");
    QTest::addColumn<bool>("fewPeaks");
    QTest::addColumn<int>("lengthIndex");
    static Chain cubic = chainOf("cubic");
    static Chain rapp = chainOf("rapp");
    static Chain adc = converterChain(10);
    static Chain soft = chainOf("soft");
    QTest::newRow("cubic 20 dB") << &cubic << 0.0 << 1.15 << false << 7;
    QTest::newRow("Rapp 6 dB") << &rapp << -6.0 << 1.15 << false << 7;
    QTest::newRow("rounding flank") << &adc << -25.0 << 1.15 << false << 7;
    QTest::newRow("soft limiter 8 dB") << &soft << -8.0 << 2.0 << true << 7;
    // Rare peaks take a long signal.
    QTest::newRow("soft limiter 10 dB") << &soft << -10.0 << 2.0 << true << 5;
    // k = 4.22: 1.6 clipped samples a stimulus; k = 4.73: one in six stimuli.
    static Chain twelve = converterChain(12);
    QTest::newRow("a clip or two") << &twelve << -9.5 << 2.0 << true << 7;
    QTest::newRow("hardly a clip") << &twelve << -10.5 << 2.0 << true << 7;
}

// 200 seeds tell a sigma to 5 %.
void TestSimulatedBench::sigmaIsWhatScatters()
{
    if (isInstrumented) {
        QSKIP("1400 stimuli take too long under a sanitizer");
    }
    QFETCH(Chain*, chain);
    QFETCH(double, level);
    QFETCH(double, factor);
    QFETCH(bool, fewPeaks);
    QFETCH(int, lengthIndex);
    const Scatter scatter = scatterOf(*chain, level, 200, lengthIndex);
    const QString text = QString("seen %1 dB, told %2 dB").arg(scatter.seen).arg(scatter.told);
    QVERIFY2(scatter.seen < factor * scatter.told, qPrintable(text));
    QVERIFY2(scatter.seen > scatter.told / factor, qPrintable(text));
    QCOMPARE(scatter.fewPeaks, fewPeaks ? 200 : 0);
}

void TestSimulatedBench::theCoresChangeNoBit()
{
    const MeasurementSetup setup = nineNotches();
    const CampaignPlan plan = planOf(setup, levelSteps(-12.0, 0.0, 2.0), 2);
    const CampaignOutcome many = measured(setup, chainOf("rapp"), plan);
    const WorkAlone alone;
    const CampaignOutcome one = measured(setup, chainOf("rapp"), plan);
    QCOMPARE(many.points.size(), 7 * 9);
    QCOMPARE(one.points.size(), many.points.size());
    for (int k = 0; k < one.points.size(); ++k) {
        QVERIFY(*one.points[k].npr == *many.points[k].npr);
        QVERIFY(*one.points[k].sigma == *many.points[k].sigma);
        QVERIFY(one.points[k].power == many.points[k].power);
    }
}

void TestSimulatedBench::aReadingDoesNotDependOnItsNeighbours()
{
    const MeasurementSetup setup = nineNotches(9);
    const CampaignOutcome curve =
        measured(setup, chainOf("soft"), planOf(setup, levelSteps(-12.0, 0.0, 1.0)));
    CampaignPlan plan = planOf(setup, {-5.0});
    plan.notches = {plan.notches[6]};
    const CampaignOutcome single = measured(setup, chainOf("soft"), plan);
    QCOMPARE(single.points.size(), 1);
    QCOMPARE(single.points[0].notch, 7);
    QVERIFY(*single.points[0].npr == *curve.points[7 * 9 + 6].npr);
}

void TestSimulatedBench::aSignalThatIsThereIsNotCalculatedAgain()
{
    MeasurementSetup setup = oneNotch(9);
    setup.calculateSignal();
    const CampaignOutcome expected = measured(oneNotch(9), chainOf("cubic"), planOf(setup, {0.0}));
    const CampaignOutcome found = measured(setup, chainOf("cubic"), planOf(setup, {0.0}));
    QVERIFY(*found.points[0].npr == *expected.points[0].npr);
    // Another one in its place is what is played then.
    setup.signal = SignalData(setup.fftLength());
    const CampaignOutcome silent = measured(setup, chainOf("cubic"), planOf(setup, {0.0}));
    QVERIFY(!silent.points[0].npr);
}

void TestSimulatedBench::aSignalOfOddLengthIsRefused()
{
    MeasurementSetup setup = oneNotch(9);
    setup.signal = SignalData(1000);
    SimulatedBench bench(setup.forOtherThread(), chainOf("rapp"), QString());
    const CampaignOutcome outcome = runCampaign(planOf(setup, {0.0}), bench, Interruption());
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Failed);
    QVERIFY(outcome.failure.contains("1000"));
    QVERIFY(outcome.points.isEmpty());
    QVERIFY(SimulatedBench::objectionTo(SignalData(32)).isEmpty());
    QVERIFY(!SimulatedBench::objectionTo(SignalData(16)).isEmpty());
    QVERIFY(!SimulatedBench::objectionTo(SignalData()).isEmpty());
}

QTEST_GUILESS_MAIN(TestSimulatedBench)
#include "test_simulated_bench.moc"
