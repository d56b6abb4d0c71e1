// The theory against figures from the literature and from integrals done by other means: flat bands
// without a notch, in the middle and at the edge.
#include "dut/theory.h"
#include "kit/converter_theory.h"

#include <QtTest>

#include <numeric>

namespace {

// A band of lines, wide enough for edges to be sharp.
constexpr int lineCount = 4096;
constexpr int half = 1536;

LinePowers flatBand()
{
    LinePowers lines(lineCount, 0.0);
    std::fill(lines.begin() + lineCount / 2 - half, lines.begin() + lineCount / 2 + half, 1.0);
    return lines;
}

// Signal over distortion at a line, in dB.
double npr(const Gain& gain, int line)
{
    const QVector<double> orders = distortionOrders(gain);
    const LinePowers distortion = distortionLines(flatBand(), orders);
    return 10.0 * std::log10(orders[0] / distortion[distortion.size() / 2 + line]);
}

bool isClose(double value, double expected)
{
    return std::abs(value - expected) < 0.02;
}

} // namespace

class TestTheory : public QObject
{
    Q_OBJECT

private slots:
    void wellKnownDevicesHaveTheirRatios_data();
    void wellKnownDevicesHaveTheirRatios();
    void aCubicDeviceHasNoHigherOrders();
    void ordersHoldAllOfTheOutput();
    void convertersHaveTheirBestLoadings();
    void convertersHaveTheirFlanks();
    void converterLinesHoldAllOfTheNoise();
    void clippingIsNotWhiteInANarrowBand();
};

void TestTheory::wellKnownDevicesHaveTheirRatios_data()
{
    QTest::addColumn<double>("measured");
    QTest::addColumn<double>("expected");
    QTest::newRow("cubic 10 dB") << npr(cubicGain(10), 0) << 16.30;
    QTest::newRow("cubic 20 dB") << npr(cubicGain(20), 0) << 38.06;
    QTest::newRow("cubic 30 dB") << npr(cubicGain(30), 0) << 58.22;
    // (1 - 2a)^2 / a^2 with a of 0.01.
    QTest::newRow("cubic 20 dB, edge") << npr(cubicGain(20), half) << 39.82;
    QTest::newRow("soft limiter 0 dB") << npr(softLimiterGain(0), 0) << 13.50;
    QTest::newRow("soft limiter 3 dB") << npr(softLimiterGain(3), 0) << 18.93;
    QTest::newRow("soft limiter 6 dB") << npr(softLimiterGain(6), 0) << 29.55;
    QTest::newRow("Rapp 1, 0 dB") << npr(rappGain(0, 1), 0) << 14.74;
    QTest::newRow("Rapp 1, 10 dB") << npr(rappGain(10, 1), 0) << 26.62;
    QTest::newRow("Rapp 2, 0 dB") << npr(rappGain(0, 2), 0) << 14.32;
    QTest::newRow("Rapp 2, 6 dB") << npr(rappGain(6, 2), 0) << 24.49;
    QTest::newRow("Rapp 2, 12 dB") << npr(rappGain(12, 2), 0) << 43.04;
}

void TestTheory::wellKnownDevicesHaveTheirRatios()
{
    QFETCH(double, measured);
    QFETCH(double, expected);
    QVERIFY2(isClose(measured, expected), qPrintable(QString::number(measured)));
}

// g = 1 - a u: c_0 = 1 - 2a, c_1 = -a, so 2 |c_1|^2 = 2 a^2.
void TestTheory::aCubicDeviceHasNoHigherOrders()
{
    const QVector<double> orders = distortionOrders(cubicGain(20));
    QVERIFY(std::abs(orders[0] - 0.98 * 0.98) < 1e-8);
    QVERIFY(std::abs(orders[1] - 2e-4) < 1e-8);
    QVERIFY(orders.size() > 2);
    for (int m = 2; m < orders.size(); ++m) {
        QVERIFY(orders[m] < 1e-9);
    }
}

// A soft limiter puts out P (1 - e^-gamma^2); c_0 = 1 - e^-gamma^2 + sqrt(pi)/2 gamma erfc(gamma).
void TestTheory::ordersHoldAllOfTheOutput()
{
    const QVector<double> orders = distortionOrders(softLimiterGain(3));
    const double gamma = std::sqrt(std::pow(10.0, 0.3));
    const double wanted = 1.0 - std::exp(-gamma * gamma) + 0.886226925 * gamma * std::erfc(gamma);
    QVERIFY(std::abs(orders[0] - wanted * wanted) < 1e-6);
    const double total = std::accumulate(orders.begin(), orders.end(), 0.0);
    QVERIFY(std::abs(total - (1.0 - std::exp(-gamma * gamma))) < 1e-6);
}

void TestTheory::convertersHaveTheirBestLoadings()
{
    const struct
    {
        int bits;
        double loading;
        double npr;
    } rows[] = {{6, 3.29, 29.94},  {8, 3.92, 40.60},  {10, 4.49, 51.56},
                {12, 5.01, 62.71}, {14, 5.49, 74.01}, {16, 5.94, 85.40}};
    for (const auto& row : rows) {
        QVERIFY(std::abs(bestLoading(row.bits) - row.loading) < 0.011);
        QVERIFY(std::abs(converterNoise(row.bits, row.loading).npr() - row.npr) < 0.006);
    }
}

void TestTheory::convertersHaveTheirFlanks()
{
    QVERIFY(std::abs(converterNoise(12, 3.0).npr() - 33.90) < 0.006);
    QVERIFY(std::abs(converterNoise(12, 4.0).npr() - 51.87) < 0.006);
    QVERIFY(std::abs(converterNoise(12, 8.0).npr() - 58.96) < 0.006);
}

// Signal let through and lines together against the closed form, which counts the noise of a wide
// band in another way.
void TestTheory::converterLinesHoldAllOfTheNoise()
{
    const LinePowers all(lineCount, 1.0);
    for (const double loading : {2.5, 3.5, 5.0}) {
        const LinePowers lines = converterDistortionLines(all, 8, loading);
        const double noise = std::accumulate(lines.begin(), lines.end(), 0.0) / lineCount;
        const double lost = 1.0 - std::sqrt(converterGain(loading));
        const double npr = -10.0 * std::log10(noise + lost * lost);
        QVERIFY(std::abs(npr - converterNoise(8, loading).npr()) < 0.005);
    }
}

// White noise would gain 3.01 dB in half the band; in its middle clipping gains about 1 dB less.
void TestTheory::clippingIsNotWhiteInANarrowBand()
{
    LinePowers narrow(lineCount, 0.0);
    std::fill(narrow.begin() + lineCount / 4, narrow.end() - lineCount / 4, 2.0);
    const LinePowers wideNoise = converterDistortionLines(LinePowers(lineCount, 1.0), 12, 3.0);
    const LinePowers narrowNoise = converterDistortionLines(narrow, 12, 3.0);
    const double gained =
        10.0 * std::log10(2.0 * wideNoise[lineCount / 2] / narrowNoise[lineCount / 2]);
    QVERIFY2(gained > 3.01 - 1.2 && gained < 3.01 - 0.8, qPrintable(QString::number(gained)));
}

QTEST_APPLESS_MAIN(TestTheory)
#include "test_theory.moc"
