// Theory of a campaign's own signal against figures worked by other means, against the tests' plain
// theory, and against simulated campaigns.
#include "campaign/campaign.h"
#include "campaign/npr_curve.h"
#include "campaign/simulated_bench.h"
#include "campaign/theory.h"
#include "campaign/theory_orders.h"
#include "dut/experiment.h"
#include "dut/theory.h"
#include "kit/device_chains.h"
#include "setup/notch_editing.h"

#include <QtTest>

#include <numeric>

namespace {

// One notch of a width in a band that fills the rate; its channel is at the carrier.
MeasurementSetup setupWith(double width, double bandwidthRatio = 1.0, quint32 notches = 1)
{
    MeasurementSetup setup;
    setup.nbwSrate = bandwidthRatio;
    setup.notchCount = notches;
    setup.notchWidth = width;
    setup.notchOffset = 0.0;
    setup.notchDepth = -140.0; // as good as empty
    autoCalculateNotches(setup);
    setup.calculateSignal();
    return setup;
}

QVector<NumberedNotch> notchesOf(const MeasurementSetup& setup)
{
    return numberedNotches(setup, setup.signal.length);
}

double theoryOfFirst(const MeasurementSetup& setup, const Chain& chain, double level)
{
    return *Theory(setup.signal, setup.sampleRate, chain, notchesOf(setup)).at(level).constFirst();
}

} // namespace

class TestTheoryOfCampaigns : public QObject
{
    Q_OBJECT

private slots:
    void notchesOfAllWidthsReadWhatTheyMust_data();
    void notchesOfAllWidthsReadWhatTheyMust();
    void ordersAreThoseOfThePlainIntegrals_data();
    void ordersAreThoseOfThePlainIntegrals();
    void clippingOrdersAreThoseOfThePlainIntegrals();
    void convertersHaveTheirTable_data();
    void convertersHaveTheirTable();
    void noiseAndSourceFillTheNotch();
    void campaignsFollowTheory_data();
    void campaignsFollowTheory();
    void aLinearDeviceHasNone();
};

// In a band of 100 MHz a notch of 1 MHz is 1 %.
void TestTheoryOfCampaigns::notchesOfAllWidthsReadWhatTheyMust_data()
{
    QTest::addColumn<Chain>("chain");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("backOff");
    QTest::addColumn<double>("npr");
    const auto row = [](const char* name, const char* device, double width, double backOff,
                        double npr) {
        QTest::newRow(name) << chainOf(device, {0.0, 0.0}) << width << backOff << npr;
    };
    row("cubic, 1 %", "cubic", 1e6, 20.0, 38.15);
    row("cubic, 5 %", "cubic", 5e6, 20.0, 38.53);
    row("cubic, 10 %", "cubic", 10e6, 20.0, 39.07);
    row("cubic, 20 %", "cubic", 20e6, 20.0, 40.47);
    row("Rapp, 1.25 %", "rapp", 1.25e6, 6.0, 24.60);
    row("Rapp, 5 %", "rapp", 5e6, 6.0, 24.96);
    row("Rapp 0 dB, narrow", "rapp", 0.1e6, 0.0, 14.33);
    row("Rapp 12 dB, narrow", "rapp", 0.1e6, 12.0, 43.05);
    row("soft limiter 6 dB, narrow", "soft", 0.1e6, 6.0, 29.56);
    row("soft limiter 10 dB, narrow", "soft", 0.1e6, 10.0, 60.21);
}

void TestTheoryOfCampaigns::notchesOfAllWidthsReadWhatTheyMust()
{
    QFETCH(Chain, chain);
    QFETCH(double, width);
    QFETCH(double, backOff);
    QFETCH(double, npr);
    const double found = theoryOfFirst(setupWith(width), chain, -backOff);
    QVERIFY2(std::abs(found - npr) < 0.03, qPrintable(QString::number(found)));
}

void TestTheoryOfCampaigns::ordersAreThoseOfThePlainIntegrals_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QVector<double>>("expected");
    QTest::newRow("rapp") << "rapp" << distortionOrders(rappGain(4.0, 2.0));
    QTest::newRow("soft") << "soft" << distortionOrders(softLimiterGain(4.0));
    QTest::newRow("saleh") << "saleh" << distortionOrders(salehGain(4.0));
    QTest::newRow("cubic") << "cubic" << distortionOrders(cubicGain(4.0));
}

void TestTheoryOfCampaigns::ordersAreThoseOfThePlainIntegrals()
{
    QFETCH(QString, device);
    QFETCH(QVector<double>, expected);
    const DeviceSettings settings = deviceOf(device, {0.0, 0.0});
    const QVector<double> found = memorylessOrders(gainOf(settings), settings, milliwatts(-4.0));
    QCOMPARE(found.size(), expected.size());
    for (int m = 0; m < found.size(); ++m) {
        QVERIFY2(std::abs(found[m] - expected[m]) < 1e-4 * expected[m] + 1e-8,
                 qPrintable(QString("order %1").arg(m)));
    }
}

// All of the output's power: 1 - 2 ((1 + k^2) Q(k) - k phi(k)) - (what the clipping takes), here by
// the moments of a clipped normal value at k = 1.5: 0.7784650.
void TestTheoryOfCampaigns::clippingOrdersAreThoseOfThePlainIntegrals()
{
    const QVector<double> orders = clippingOrders(1.5);
    QVERIFY(std::abs(orders[0] - converterGain(1.5)) < 1e-6);
    const double sum = std::accumulate(orders.begin(), orders.end(), 0.0);
    QVERIFY2(std::abs(sum - 0.7784650) < 1e-5, qPrintable(QString::number(sum, 'f', 7)));
    QVERIFY(std::abs(orders[0] - std::pow(std::erf(1.5 / std::sqrt(2.0)), 2.0)) < 1e-6);
}

// Noise that fills the rate, in a notch of 0.1 %.
void TestTheoryOfCampaigns::convertersHaveTheirTable_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("loading");
    QTest::addColumn<double>("npr");
    QTest::newRow("12 bits, 3.5") << 12 << 3.5 << 42.51;
    QTest::newRow("12 bits, 4") << 12 << 4.0 << 51.87;
    QTest::newRow("12 bits, 5") << 12 << 5.01 << 62.71;
    QTest::newRow("12 bits, 8") << 12 << 8.0 << 58.96;
    QTest::newRow("8 bits") << 8 << 3.92 << 40.60;
    QTest::newRow("16 bits") << 16 << 5.94 << 85.40;
}

void TestTheoryOfCampaigns::convertersHaveTheirTable()
{
    QFETCH(int, bits);
    QFETCH(double, loading);
    QFETCH(double, npr);
    Chain chain = chainOf("adc");
    chain.device.bits = bits;
    chain.device.loadingFactor = loading;
    const MeasurementSetup setup = setupWith(0.1e6);
    double found = theoryOfFirst(setup, chain, -20.0);
    QVERIFY2(std::abs(found - npr) < 0.05, qPrintable(QString::number(found)));
    // The same by its full scale: 3.01 dB - 20 lg k below it.
    chain.device.fullScale = -20.0 - (10.0 * std::log10(2.0) - 20.0 * std::log10(loading));
    found = theoryOfFirst(setup, chain, -20.0);
    QVERIFY2(std::abs(found - npr) < 0.05, qPrintable(QString::number(found)));
}

// A mild device, so that the other parts decide. Noise of -120 dBm/Hz in 100 MHz: -40 dBm, 40 dB
// below the signal; the signal's density is that of 99 MHz. A source of 30 dB: 29.99 turned back.
void TestTheoryOfCampaigns::noiseAndSourceFillTheNotch()
{
    const MeasurementSetup setup = setupWith(1e6);
    Chain chain = chainOf("cubic", {0.0, 80.0});
    chain.noiseFloor = -123.0102999566;
    chain.deviceNoise = -123.0102999566;
    const double withNoise = theoryOfFirst(setup, chain, 0.0);
    QVERIFY2(std::abs(withNoise - 40.0436) < 1e-3, qPrintable(QString::number(withNoise)));
    chain.noiseFloor = chain.deviceNoise = -noLimit;
    chain.sourceNotch = 30.0;
    const double ofSource = theoryOfFirst(setup, chain, 0.0);
    QVERIFY2(std::abs(ofSource - 30.0) < 1e-3, qPrintable(QString::number(ofSource)));
}

// Nine notches in a band of 80 %, with ripple, noise and a source that fills the notches.
void TestTheoryOfCampaigns::campaignsFollowTheory_data()
{
    QTest::addColumn<Chain>("chain");
    for (const char* name : {"rapp", "soft", "saleh", "cubic", "adc"}) {
        Chain chain = chainOf(name, {0.0, 15.0});
        chain.device.bits = 8;
        chain.device.fullScale = 6.0;
        chain.ripple = {2.0, 30e6};
        chain.sourceNotch = 55.0;
        chain.noiseFloor = -140.0;
        QTest::newRow(name) << chain;
    }
}

void TestTheoryOfCampaigns::campaignsFollowTheory()
{
    QFETCH(Chain, chain);
    const MeasurementSetup setup = setupWith(1e6, 0.8, 9);
    CampaignPlan plan;
    plan.levels = {-12.0, -5.0};
    plan.notches = notchesOf(setup);
    plan.averages = 8;
    SimulatedBench bench(setup.forOtherThread(), chain, QString());
    const CampaignOutcome outcome = runCampaign(plan, bench, Interruption());
    const Theory theory(setup.signal, setup.sampleRate, chain, plan.notches);
    QCOMPARE(outcome.points.size(), 2 * 9);
    for (const NprPoint& point : outcome.points) {
        const double expected = *theory.at(point.level)[point.notch - 1];
        // Four sigma, for there are 90 points, and what interpolation and folding leave.
        const double tolerance = 4.0 * *point.sigma + 0.1;
        QVERIFY2(std::abs(*point.npr - expected) < tolerance,
                 qPrintable(QString("%1 dBm, notch %2: %3 dB, theory %4 dB")
                                .arg(point.level)
                                .arg(point.notch)
                                .arg(*point.npr)
                                .arg(expected)));
    }
}

void TestTheoryOfCampaigns::aLinearDeviceHasNone()
{
    QVERIFY(!Theory::isIn(chainOf("linear").device));
    for (const char* name : {"rapp", "soft", "saleh", "cubic", "adc"}) {
        QVERIFY(Theory::isIn(chainOf(name).device));
    }
}

QTEST_GUILESS_MAIN(TestTheoryOfCampaigns)
#include "test_theory_of_campaigns.moc"
