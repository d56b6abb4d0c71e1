// The power of the lines of short signals, worked by hand.
#include "dut/multitone.h"

#include "dut/spectrum.h"

#include <QtTest>

class TestSpectrum : public QObject
{
    Q_OBJECT

private slots:
    void anEmptySpectrumHoldsNoPower();
    void aToneAboveTheCarrierStandsAboveIt();
    void theLowestLineStandsAtMinusHalfTheRate();
    void aConstantIsTheCarrier();
    void allLinesTogetherAreTheMeanPower();
    void theLowerEdgeBelongsToAChannelAndTheUpperOneDoesNot();
    void wideChannelsHoldEveryLineOnce();
    void anEdgeThatMissesItsLineByRoundingStillMeetsIt();
    void absurdEdgesAreHarmless();
};

void TestSpectrum::anEmptySpectrumHoldsNoPower()
{
    QCOMPARE(Spectrum().powerBetween(-1e12, 1e12), 0.0);
}

void TestSpectrum::aToneAboveTheCarrierStandsAboveIt()
{
    const Spectrum spectrum(tone(64, 3));
    QVERIFY(std::abs(spectrum.powerBetween(2.5, 3.5) - 1.0) < 1e-12);
    QVERIFY(spectrum.powerBetween(-32.0, 2.5) < 1e-24);
    QVERIFY(spectrum.powerBetween(3.5, 32.0) < 1e-24);
}

void TestSpectrum::theLowestLineStandsAtMinusHalfTheRate()
{
    const Spectrum spectrum(tone(64, -32));
    QVERIFY(std::abs(spectrum.powerBetween(-32.5, -31.5) - 1.0) < 1e-12);
    QVERIFY(spectrum.powerBetween(31.5, 32.5) < 1e-24);
}

void TestSpectrum::aConstantIsTheCarrier()
{
    const Spectrum spectrum(Envelope{{3.0}, {4.0}, 1.0});
    QCOMPARE(spectrum.powerBetween(-0.5, 0.5), 25.0);
}

void TestSpectrum::allLinesTogetherAreTheMeanPower()
{
    Envelope signal = silence(128);
    for (int k = 0; k < 128; ++k) {
        signal.iSamples[k] = k;
    }
    // The mean of the squares 0 to 127^2 is 127 * 255 / 6.
    QVERIFY(std::abs(Spectrum(signal).powerBetween(-64.0, 64.0) - 5397.5) < 1e-8);
}

void TestSpectrum::theLowerEdgeBelongsToAChannelAndTheUpperOneDoesNot()
{
    Envelope impulse = silence(64); // every line has the power 1/64
    impulse.iSamples[0] = 8.0;
    const Spectrum spectrum(impulse);
    QVERIFY(std::abs(spectrum.powerBetween(-5.0, 5.0) - 10.0 / 64.0) < 1e-13);
    QVERIFY(std::abs(spectrum.powerBetween(4.0, 5.0) - 1.0 / 64.0) < 1e-13);
    QCOMPARE(spectrum.powerBetween(4.1, 4.9), 0.0);
}

// Every line of an impulse has the same power, so a channel's power counts its lines.
void TestSpectrum::wideChannelsHoldEveryLineOnce()
{
    constexpr int count = 8192;
    Envelope impulse = silence(count);
    impulse.iSamples[0] = count;
    const Spectrum spectrum(impulse);
    const Band bands[] = {{-4096, 4095}, {-4095, 4094}, {-1024, 1023}, {-1, 1024},
                          {5, 2100},     {100, 101},    {-3000, -900}, {1000, 1030}};
    for (const Band band : bands) {
        const double lines = spectrum.powerBetween(band.first, band.last + 1);
        QVERIFY(std::abs(lines - (band.last + 1 - band.first)) < 1e-8);
    }
}

void TestSpectrum::anEdgeThatMissesItsLineByRoundingStillMeetsIt()
{
    const Spectrum spectrum(tone(64, 3));
    QVERIFY(spectrum.powerBetween(3.000001, 4.0) > 0.99);
    QVERIFY(spectrum.powerBetween(2.0, 3.000001) < 1e-24);
}

void TestSpectrum::absurdEdgesAreHarmless()
{
    const Spectrum spectrum(tone(64, 3));
    const double infinity = std::numeric_limits<double>::infinity();
    QVERIFY(std::abs(spectrum.powerBetween(-infinity, infinity) - 1.0) < 1e-12);
    QCOMPARE(spectrum.powerBetween(10.0, -10.0), 0.0);
    QCOMPARE(spectrum.powerBetween(1e300, 2e300), 0.0);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QVERIFY(std::isfinite(spectrum.powerBetween(nan, nan)));
}

QTEST_APPLESS_MAIN(TestSpectrum)
#include "test_spectrum.moc"
