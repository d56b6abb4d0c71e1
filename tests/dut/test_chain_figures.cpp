// The named figures of a chain.
#include "dut/chain_figures.h"

#include <QtTest>

namespace {

const ChainFigure& figure(const char* name)
{
    for (const ChainFigure& row : chainFigures()) {
        if (qstrcmp(row.name, name) == 0) {
            return row;
        }
    }
    qFatal("no figure %s", name);
}

Chain with(const char* name, double value)
{
    Chain chain;
    figure(name).store(chain, value);
    return chain;
}

} // namespace

class TestChainFigures : public QObject
{
    Q_OBJECT

private slots:
    void everyFigureReachesItsPlace();
    void figuresHaveBounds();
    void ripplesAreReadWithEitherSeparator();
};

void TestChainFigures::everyFigureReachesItsPlace()
{
    QCOMPARE(with("saturation", -3.5).device.saturationPower, -3.5);
    QCOMPARE(with("smoothness", 1.5).device.smoothness, 1.5);
    QCOMPARE(with("intercept", 7.0).device.thirdOrderIntercept, 7.0);
    QCOMPARE(with("bits", 8.0).device.bits, 8);
    QCOMPARE(*with("full-scale", -6.0).device.fullScale, -6.0);
    QCOMPARE(with("loading", 4.25).device.loadingFactor, 4.25);
    QCOMPARE(with("device-noise", -140.0).deviceNoise, -140.0);
    QCOMPARE(with("noise-floor", -150.0).noiseFloor, -150.0);
    QCOMPARE(with("source-notch", 50.0).sourceNotch, 50.0);
}

void TestChainFigures::figuresHaveBounds()
{
    QVERIFY(figure("bits").allows(1.0) && figure("bits").allows(24.0));
    QVERIFY(!figure("bits").allows(0.0) && !figure("bits").allows(25.0));
    QVERIFY(!figure("bits").allows(8.5));
    QVERIFY(!figure("loading").allows(0.0));
    QVERIFY(!figure("source-notch").allows(-1.0));
    QVERIFY(!figure("saturation").allows(std::numeric_limits<double>::quiet_NaN()));
    QVERIFY(!figure("intercept").allows(std::numeric_limits<double>::infinity()));
}

void TestChainFigures::ripplesAreReadWithEitherSeparator()
{
    const std::optional<Ripple> ripple = rippleOf("1.5,2e7", ',');
    QVERIFY(ripple && ripple->peakToPeak == 1.5 && ripple->period == 2e7);
    QVERIFY(rippleOf("1.5:2e7", ':'));
    for (const char* bad : {"", "1", "1,", ",5", "1,2,3", "0,5", "-1,5", "1,0", "1,-3", "1,inf",
                            "nan,4", "1:4", "301,4"}) {
        QVERIFY2(!rippleOf(bad, ','), bad);
    }
}

QTEST_APPLESS_MAIN(TestChainFigures)
#include "test_chain_figures.moc"
