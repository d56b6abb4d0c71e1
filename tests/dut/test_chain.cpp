// From a signal and a level to the powers behind a device: level, source, oversampling, noise.
#include "dut/chain.h"
#include "dut/multitone.h"
#include "kit/device_chains.h"

#include <QtTest>

namespace {

ChainOutput outputOf(const Chain& chain, const Envelope& signal, double level)
{
    Envelope samples = deviceInput(chain, signal, level);
    passThrough(chain.device, samples);
    return ChainOutput(chain, std::move(samples));
}

double dbm(double milliwatt)
{
    return 10.0 * std::log10(milliwatt);
}

bool isClose(double value, double expected, double tolerance = 1e-6)
{
    return std::abs(value - expected) < tolerance;
}

Envelope twoTones(int count, int first, int second)
{
    Envelope both = tone(count, first);
    const Envelope other = tone(count, second);
    for (int k = 0; k < count; ++k) {
        both.iSamples[k] += other.iSamples[k];
        both.qSamples[k] += other.qSamples[k];
    }
    return both;
}

} // namespace

class TestChain : public QObject
{
    Q_OBJECT

private slots:
    void theLevelIsTheMeanPowerAtTheDevice();
    void aSignalWithoutPowerIsNone();
    void distortionBeyondTheRateDoesNotFoldBack();
    void aConverterSeesTheSamplesThemselves();
    void veryLongSignalsAreInterpolatedLess();
    void aLoneCarrierPassesEveryDevice();
    void aSourceFillsNotchesToItsDepth();
    void aSourceLeavesTheSignalItsLevel();
    void rippleHasItsHeightAndPeriod();
    void noiseOfDeviceAndAnalyzerAdds();
    void anEmptyChannelHoldsNoNoise();
    void theSameSignalGivesTheSameBytes();
    void compressionCutsPeaksOnly();
};

void TestChain::theLevelIsTheMeanPowerAtTheDevice()
{
    const Envelope noise = noiseWithNotch(4096, {900, 1099}, -60.0);
    for (const char* device : {"linear", "rapp", "adc"}) {
        const Envelope input = deviceInput(chainOf(device), noise, -12.5);
        QVERIFY(isClose(dbm(meanPower(input)), -12.5));
    }
}

void TestChain::aSignalWithoutPowerIsNone()
{
    const Chain chain = chainOf("rapp");
    QCOMPARE(deviceInput(chain, silence(64), 0.0).size(), 0);
    QCOMPARE(deviceInput(chain, Envelope(), 0.0).size(), 0);
    Envelope broken = tone(64, 1);
    broken.qSamples[5] = std::numeric_limits<double>::quiet_NaN();
    QCOMPARE(deviceInput(chain, broken, 0.0).size(), 0);
    QCOMPARE(ChainOutput(chain, Envelope()).channelPower(-1e9, 1e9), 0.0);
}

// Lines at 20 and 30 of a rate of 64 make one at 40, which would fold back to -24.
void TestChain::distortionBeyondTheRateDoesNotFoldBack()
{
    const Chain chain = chainOf("cubic", {10.0, 20.0});
    // Each line has -10 dBm, so intermodulation stands 60 dB below it.
    const ChainOutput output = outputOf(chain, twoTones(64, 20, 30), -10.0 + 3.010299957);
    QVERIFY(isClose(dbm(output.channelPower(39.5, 40.5)), -70.0));
    QVERIFY(isClose(dbm(output.channelPower(9.5, 10.5)), -70.0));
    QVERIFY(output.channelPower(-32.5, 9.5) < 1e-20);
}

void TestChain::aConverterSeesTheSamplesThemselves()
{
    const Chain chain = chainOf("adc");
    const Envelope input = deviceInput(chain, tone(64, 3), 0.0);
    QCOMPARE(input.size(), 64);
    QCOMPARE(input.sampleRate, 64.0);
    QCOMPARE(deviceInput(chainOf("saleh"), tone(64, 3), 0.0).size(), 256);
}

void TestChain::veryLongSignalsAreInterpolatedLess()
{
    const Chain chain = chainOf("soft");
    QCOMPARE(deviceInput(chain, silence(1 << 23), 0.0).size(), 0);
    Envelope step = silence(1 << 23);
    step.iSamples[0] = 1.0;
    const Envelope input = deviceInput(chain, step, 0.0);
    QCOMPARE(input.size(), 1 << 24);
    QCOMPARE(input.sampleRate, double(1 << 24));
}

void TestChain::aLoneCarrierPassesEveryDevice()
{
    for (const QString& name : QStringList{"linear", "rapp", "soft", "saleh", "cubic", "adc"}) {
        Chain chain = chainOf(name, {10.0, 20.0});
        chain.device.bits = 24;
        const ChainOutput output = outputOf(chain, {{1.0}, {0.0}, 1.0}, -60.0);
        const double gain = name == "saleh" ? 20.0 * std::log10(2.1587) : 0.0;
        QVERIFY2(isClose(dbm(output.channelPower(-0.5, 0.5)), -60.0 + gain, 1e-3),
                 qPrintable(name));
    }
}

// Deep notch, 45 dB of source: what fills it is 45 dB below the signal's lines, which have all
// power but for the share of the notch.
void TestChain::aSourceFillsNotchesToItsDepth()
{
    Chain chain = chainOf("linear");
    chain.sourceNotch = 45.0;
    const ChainOutput output = outputOf(chain, noiseWithNotch(4096, {900, 1099}, -200.0), 0.0);
    const double notch = output.channelPower(924.5, 1074.5);
    const double beside = output.channelPower(684.5, 834.5);
    QVERIFY(isClose(dbm(beside / notch), 45.0, 0.01));
}

void TestChain::aSourceLeavesTheSignalItsLevel()
{
    Chain chain = chainOf("linear");
    chain.sourceNotch = 10.0;
    const ChainOutput output = outputOf(chain, tone(1024, 100), -7.0);
    QVERIFY(isClose(dbm(output.channelPower(-600, 600)), -7.0));
    QVERIFY(output.channelPower(-300, -200) > 0.0);
}

// 3 dB from peak to peak over 32 lines: + 1.5 dB at the carrier, 0 at a quarter of the period,
// - 1.5 dB at half of it.
void TestChain::rippleHasItsHeightAndPeriod()
{
    Chain chain = chainOf("linear");
    chain.ripple = {3.0, 32.0};
    const struct
    {
        int line;
        double gain;
    } rows[] = {{0, 1.5}, {8, 0.0}, {16, -1.5}, {-16, -1.5}, {32, 1.5}, {-64, 1.5}};
    for (const auto& row : rows) {
        const ChainOutput output = outputOf(chain, tone(128, row.line), -20.0);
        QVERIFY(
            isClose(dbm(output.channelPower(row.line - 0.5, row.line + 0.5)), -20.0 + row.gain));
        QCOMPARE(chain.ripple.gain(row.line) < 0.0, row.gain < -0.1);
    }
}

// -150 and -153.0103 dBm/Hz in 1 kHz: -120 dBm and half as much again.
void TestChain::noiseOfDeviceAndAnalyzerAdds()
{
    Chain chain = chainOf("linear");
    chain.noiseFloor = -150.0;
    QVERIFY(isClose(dbm(ChainOutput(chain, {}).channelPower(0.0, 1000.0)), -120.0));
    chain.deviceNoise = -153.0103;
    QVERIFY(isClose(ChainOutput(chain, {}).channelPower(0.0, 1000.0), 1.5e-12, 1e-17));
}

void TestChain::anEmptyChannelHoldsNoNoise()
{
    Chain chain = chainOf("linear");
    chain.noiseFloor = -100.0;
    QCOMPARE(ChainOutput(chain, {}).channelPower(5.0, 5.0), 0.0);
    QCOMPARE(ChainOutput(chain, {}).channelPower(5.0, 4.0), 0.0);
}

void TestChain::theSameSignalGivesTheSameBytes()
{
    Chain chain = chainOf("saleh", {10.0, 20.0});
    chain.sourceNotch = 40.0;
    chain.ripple = {1.0, 500.0};
    const Envelope noise = noiseWithNotch(65536, {900, 1099}, -60.0);
    Envelope first = deviceInput(chain, noise, 3.0);
    Envelope second = deviceInput(chain, noise, 3.0);
    passThrough(chain.device, first);
    passThrough(chain.device, second);
    QVERIFY(first.iSamples == second.iSamples && first.qSamples == second.qSamples);
}

void TestChain::compressionCutsPeaksOnly()
{
    const Chain chain = chainOf("linear");
    Envelope samples = deviceInput(chain, twoTones(64, 2, 5), 0.0); // peaks of 3.01 dBm
    const Envelope before = samples;
    QVERIFY(!compressAbove(3.02, chain, samples));
    QVERIFY(samples.iSamples == before.iSamples);
    QVERIFY(compressAbove(1.0, chain, samples));
    QVERIFY(isClose(dbm(peakPower(samples)), 1.0));
    QCOMPARE(samples.iSamples[32 * 4], before.iSamples[32]); // a weak moment stays
}

QTEST_APPLESS_MAIN(TestChain)
#include "test_chain.moc"
