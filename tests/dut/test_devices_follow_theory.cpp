// The short form of docs/physics.md: devices against theory, averaged over seeds.
#include "dut/experiment.h"
#include "kit/converter_theory.h"
#include "kit/device_chains.h"

#include <QtTest>

namespace {

Stimulus stimulus(double beta, double notchShare, bool atEdge)
{
    return {beta, notchShare, 32768, atEdge};
}

Chain rapp(double smoothness)
{
    Chain chain = chainOf("rapp");
    chain.device.smoothness = smoothness;
    return chain;
}

constexpr double averagedSigma = 0.04; // dB
constexpr double tolerance = 0.1;      // dB; the seeds are fixed, so what holds once holds always

} // namespace

class TestDevicesFollowTheory : public QObject
{
    Q_OBJECT

private slots:
    void memorylessDevicesReadWhatTheoryTells_data();
    void memorylessDevicesReadWhatTheoryTells();
    void convertersReadWhatTheoryTells_data();
    void convertersReadWhatTheoryTells();
    void aSingleReadingScattersAsItSays();
    void noiseAndDistortionHaveTheirBestLevel();
};

void TestDevicesFollowTheory::memorylessDevicesReadWhatTheoryTells_data()
{
    QTest::addColumn<Chain>("chain");
    QTest::addColumn<double>("backOff");
    QTest::addColumn<QVector<double>>("orders");
    QTest::addColumn<Stimulus>("stimulus");
    const auto add = [](const char* name, const Chain& chain, double backOff, const Gain& gain,
                        const Stimulus& played) {
        QTest::newRow(name) << chain << backOff << distortionOrders(gain) << played;
    };
    add("Rapp 1, 0 dB", rapp(1), 0, rappGain(0, 1), stimulus(0.8, 0.1, false));
    add("Rapp 2, 6 dB", rapp(2), 6, rappGain(6, 2), stimulus(1.0, 0.1, true));
    add("soft limiter, 2 dB", chainOf("soft"), 2, softLimiterGain(2), stimulus(0.5, 0.1, false));
    add("soft limiter, 4 dB", chainOf("soft"), 4, softLimiterGain(4), stimulus(1.0, 0.1, false));
    add("Saleh, 3 dB", chainOf("saleh"), 3, salehGain(3), stimulus(0.8, 0.1, true));
    add("Saleh, 10 dB", chainOf("saleh"), 10, salehGain(10), stimulus(1.0, 0.1, false));
    add("cubic, 10 dB", chainOf("cubic", {0.0, 0.0}), 10, cubicGain(10), stimulus(1.0, 0.1, true));
    add("cubic, 20 dB", chainOf("cubic", {0.0, 0.0}), 20, cubicGain(20),
        stimulus(0.8, 0.05, false));
}

void TestDevicesFollowTheory::memorylessDevicesReadWhatTheoryTells()
{
    QFETCH(Chain, chain);
    QFETCH(double, backOff);
    QFETCH(QVector<double>, orders);
    QFETCH(Stimulus, stimulus);
    const Averaged measured = measureOverSeeds(chain, -backOff, stimulus, {averagedSigma, 200});
    QVERIFY(measured.sigma <= averagedSigma);
    const double expected = theoryOf(stimulus, orders);
    QVERIFY2(std::abs(measured.reading - expected) < tolerance,
             qPrintable(QString("%1 dB, theory %2 dB").arg(measured.reading).arg(expected)));
}

void TestDevicesFollowTheory::convertersReadWhatTheoryTells_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("loading");
    QTest::addColumn<double>("beta");
    QTest::newRow("6 bits, best") << 6 << bestLoading(6) << 1.0;
    QTest::newRow("8 bits, rounding") << 8 << 5.0 << 0.5;
    QTest::newRow("8 bits, clipping") << 8 << 3.0 << 1.0;
    QTest::newRow("8 bits, clipping, half the band") << 8 << 3.0 << 0.5;
    QTest::newRow("12 bits, rounding") << 12 << 7.0 << 0.8;
    QTest::newRow("16 bits, rounding") << 16 << 8.0 << 1.0;
}

void TestDevicesFollowTheory::convertersReadWhatTheoryTells()
{
    QFETCH(int, bits);
    QFETCH(double, loading);
    QFETCH(double, beta);
    const Stimulus played = stimulus(beta, 0.1, false);
    const Averaging averaging{averagedSigma, 1000, scatterOfClipping(bits, loading, played.count)};
    const Averaged measured =
        measureOverSeeds(chainOf(converterOf(bits, loading)), 0.0, played, averaging);
    QVERIFY(measured.sigma <= averagedSigma);
    const double expected = theoryOf(played, bits, loading);
    QVERIFY2(std::abs(measured.reading - expected) < tolerance,
             qPrintable(QString("%1 dB, theory %2 dB").arg(measured.reading).arg(expected)));
}

// Single readings of 40 seeds spread by their own sigma. The spread of 40 is itself known to a
// ninth; three of these are allowed.
void TestDevicesFollowTheory::aSingleReadingScattersAsItSays()
{
    const Stimulus played = stimulus(0.8, 0.02, false);
    double sum = 0.0;
    double squares = 0.0;
    double sigma = 0.0;
    constexpr int readings = 40;
    for (int k = 0; k < readings; ++k) {
        const Averaged single = measureSeed(chainOf("soft"), -5.0, played, unsigned(k + 1));
        sum += single.reading;
        squares += single.reading * single.reading;
        sigma += single.sigma / readings;
    }
    const double spread = std::sqrt((squares - sum * sum / readings) / (readings - 1));
    QVERIFY2(std::abs(spread / sigma - 1.0) < 0.34,
             qPrintable(QString("%1 dB, expected %2 dB").arg(spread).arg(sigma)));
}

// Noise of -40 dBm in the band and an intercept of 20 dBm: the best level is the third root of
// N IP3^2 / 3. There the noise joins what theory says of the distortion alone: it is N/P below the
// signal, which is compressed by (1 - 2 P/IP3)^2 and stands in nine tenths of the band.
void TestDevicesFollowTheory::noiseAndDistortionHaveTheirBestLevel()
{
    const Stimulus played = stimulus(0.8, 0.1, false);
    Chain chain = chainOf("cubic", {0.0, 20.0});
    chain.deviceNoise = -40.0 - 10.0 * std::log10(0.8 * played.count);
    const double best = (-40.0 + 2.0 * 20.0 - 4.771) / 3.0;
    const auto reading = [&](double level) {
        return measureOverSeeds(chain, level, played, {averagedSigma, 100}).reading;
    };
    const double alone = theoryOf(played, distortionOrders(cubicGain(20.0 - best)));
    const double compressed = std::pow(1.0 - 2.0 * std::pow(10.0, (best - 20.0) / 10.0), 2.0);
    const double noise = 0.9 / compressed * std::pow(10.0, (-40.0 - best) / 10.0);
    const double expected = -10.0 * std::log10(std::pow(10.0, -alone / 10.0) + noise);
    const double peak = reading(best);
    QVERIFY2(std::abs(peak - expected) < tolerance,
             qPrintable(QString("%1 dB, theory %2 dB").arg(peak).arg(expected)));
    QVERIFY(reading(best - 1.5) < peak - 0.1);
    QVERIFY(reading(best + 1.5) < peak - 0.1);
}

QTEST_APPLESS_MAIN(TestDevicesFollowTheory)
#include "test_devices_follow_theory.moc"
