// The bench as a whole: level, frequencies, outputs, what is computed when.
#include "ready_bench.h"

#include <QtTest>

namespace {

constexpr int lineCount = 4096;
// As the program tunes to a notch of 200 Hz at 1000 Hz: 1.2 widths below it, channels of 0.75.
constexpr Band notch{900, 1099};

Bench notchBench(double depth, BenchWiring wiring = {})
{
    Bench bench = readyBench(std::move(wiring));
    bench.play(noiseWithNotch(lineCount, notch, depth));
    tune(bench, 1000.0 - 240.0, 150.0, 240.0);
    return bench;
}

bool isClose(double value, double expected, double tolerance = 1e-6)
{
    return std::abs(value - expected) < tolerance;
}

bool readsFloor(Bench& bench)
{
    const ChannelPowers powers = bench.channelPowers();
    return powers.reference == emptyChannelPower && powers.lower == emptyChannelPower &&
           powers.upper == emptyChannelPower;
}

} // namespace

class TestBench : public QObject
{
    Q_OBJECT

private slots:
    void aLinearDeviceShowsTheNotchAsDeepAsItWasMade_data();
    void aLinearDeviceShowsTheNotchAsDeepAsItWasMade();
    void theOtherSideReadsTheSignal();
    void aNotchBelowTheCarrierIsInTheLowerChannel();
    void theWholeBandHoldsTheLevel();
    void theScaleOfTheSamplesMeansNothing();
    void aWrongCenterReadsTheFloor();
    void anOutputThatIsOffReadsTheFloor();
    void withoutASignalTheFloorIsRead();
    void samplesThatAreNoNumbersReadTheFloor();
    void withoutModulationThereIsALoneCarrier();
    void noiseFillsEveryChannel();
    void noiseAddsToTheNotch();
    void aMicrowaveGeneratorAddsItsFrequency();
    void aMicrowaveGeneratorMustBeOnToo();
    void aMicrowaveGeneratorWithoutIfInputHasItsOwnLevel();
    void theLongComputationRunsOnce();
    void theLongComputationRunsAgainForWhatChangesIt();
    void theLongestSignalOfTheProgramIsPlayed();
    void channelsOutsideTheSpanAreEmpty();
    void aChannelAcrossTheEdgeOfTheSpanIsReadUpToIt();
    void distortionIsReadBesideTheSignalsRate();
    void anAnalyzerDrivenTooHardCompressesAndSaysSo();
    void attenuationAndReferenceLevelMoveTheLimit();
    void aLimitThatIsNotReachedCostsNoComputation();
};

void TestBench::aLinearDeviceShowsTheNotchAsDeepAsItWasMade_data()
{
    QTest::addColumn<double>("depth");
    QTest::newRow("30 dB") << -30.0;
    QTest::newRow("60 dB") << -60.0;
    QTest::newRow("105 dB") << -105.0;
}

void TestBench::aLinearDeviceShowsTheNotchAsDeepAsItWasMade()
{
    QFETCH(double, depth);
    Bench bench = notchBench(depth);
    const ChannelPowers powers = bench.channelPowers();
    QVERIFY(isClose(powers.upper - powers.reference, depth));
}

void TestBench::theOtherSideReadsTheSignal()
{
    Bench bench = notchBench(-60.0);
    const ChannelPowers powers = bench.channelPowers();
    QVERIFY(isClose(powers.lower, powers.reference));
}

void TestBench::aNotchBelowTheCarrierIsInTheLowerChannel()
{
    Bench bench = readyBench();
    bench.play(noiseWithNotch(lineCount, {-1100, -901}, -60.0));
    tune(bench, -1000.0 + 240.0, 150.0, 240.0);
    const ChannelPowers powers = bench.channelPowers();
    QVERIFY(isClose(powers.lower - powers.reference, -60.0));
    QVERIFY(isClose(powers.upper - powers.reference, 0.0));
}

void TestBench::theWholeBandHoldsTheLevel()
{
    Bench bench = notchBench(-60.0);
    bench.settings.generator.level = -12.5;
    tune(bench, 0.0, lineCount, lineCount);
    QVERIFY(isClose(bench.channelPowers().reference, -12.5));
}

void TestBench::theScaleOfTheSamplesMeansNothing()
{
    Bench bench = notchBench(-60.0);
    const double before = bench.channelPowers().reference;
    PlayedSignal signal = noiseWithNotch(lineCount, notch, -60.0);
    for (int k = 0; k < lineCount; ++k) {
        signal.iSamples[k] *= 1000.0;
        signal.qSamples[k] *= 1000.0;
    }
    bench.play(signal);
    QVERIFY(isClose(bench.channelPowers().reference, before));
}

void TestBench::aWrongCenterReadsTheFloor()
{
    Bench bench = notchBench(-60.0);
    bench.settings.analyzer.centerFrequency += 1e6;
    QVERIFY(readsFloor(bench));
}

void TestBench::anOutputThatIsOffReadsTheFloor()
{
    Bench bench = notchBench(-60.0);
    bench.settings.generator.output = false;
    QVERIFY(readsFloor(bench));
}

void TestBench::withoutASignalTheFloorIsRead()
{
    Bench bench = readyBench();
    QVERIFY(readsFloor(bench));
    bench.play(silence(64));
    QVERIFY(readsFloor(bench));
    bench.play(tone(64, 1));
    tune(bench, 0.0, 8.0, 8.0);
    QVERIFY(!readsFloor(bench));
    bench.play({});
    QVERIFY(readsFloor(bench));
}

void TestBench::samplesThatAreNoNumbersReadTheFloor()
{
    Bench bench = readyBench();
    PlayedSignal signal = tone(64, 1);
    signal.iSamples[7] = std::numeric_limits<double>::quiet_NaN();
    bench.play(signal);
    QVERIFY(readsFloor(bench));
}

void TestBench::withoutModulationThereIsALoneCarrier()
{
    Bench bench = notchBench(-60.0);
    bench.settings.generator.iqModulation = false;
    tune(bench, 0.0, 10.0, 10.0);
    const ChannelPowers powers = bench.channelPowers();
    QVERIFY(isClose(powers.reference, -30.0));
    QCOMPARE(powers.upper, emptyChannelPower);
}

// -150 dBm/Hz in 1 kHz are -120 dBm.
void TestBench::noiseFillsEveryChannel()
{
    BenchWiring wiring;
    wiring.chain.noiseFloor = -150.0;
    Bench bench = readyBench(wiring);
    bench.settings.generator.output = false;
    tune(bench, 0.0, 1000.0, 2000.0);
    const ChannelPowers powers = bench.channelPowers();
    QVERIFY(isClose(powers.reference, -120.0));
    QVERIFY(isClose(powers.lower, -120.0));
    QVERIFY(isClose(powers.upper, -120.0));
}

// Noise as strong as what the notch left: 3.01 dB more.
void TestBench::noiseAddsToTheNotch()
{
    Bench quiet = notchBench(-60.0);
    BenchWiring wiring;
    wiring.chain.noiseFloor = quiet.channelPowers().upper - 10.0 * std::log10(150.0);
    Bench noisy = notchBench(-60.0, wiring);
    QVERIFY(isClose(noisy.channelPowers().upper - quiet.channelPowers().upper, 3.010299957));
}

void TestBench::aMicrowaveGeneratorAddsItsFrequency()
{
    BenchWiring wiring;
    wiring.hasMicrowave = true;
    Bench bench = notchBench(-60.0, wiring);
    bench.settings.microwave.frequency = 2e10;
    bench.settings.microwave.output = true;
    QVERIFY(readsFloor(bench));
    bench.settings.analyzer.centerFrequency += 2e10;
    QVERIFY(isClose(upperNpr(bench), 60.0));
}

void TestBench::aMicrowaveGeneratorMustBeOnToo()
{
    BenchWiring wiring;
    wiring.hasMicrowave = true;
    Bench bench = notchBench(-60.0, wiring);
    bench.settings.microwave.frequency = 0.0;
    QVERIFY(readsFloor(bench));
    bench.settings.microwave.output = true;
    QVERIFY(isClose(upperNpr(bench), 60.0));
}

void TestBench::aMicrowaveGeneratorWithoutIfInputHasItsOwnLevel()
{
    BenchWiring wiring;
    wiring.hasMicrowave = true;
    Bench bench = notchBench(-60.0, wiring);
    bench.settings.microwave = {0.0, -5.0, 10.0, true, true};
    tune(bench, 0.0, lineCount, lineCount);
    QVERIFY(isClose(bench.channelPowers().reference, -40.0));
    bench.settings.microwave.ifInput = false;
    QVERIFY(isClose(bench.channelPowers().reference, -15.0));
}

void TestBench::theLongComputationRunsOnce()
{
    Bench bench = notchBench(-60.0);
    for (int k = 0; k < 10; ++k) {
        bench.channelPowers();
        bench.settings.analyzer.centerFrequency += 1.0;
        bench.settings.generator.frequency += 1.0;
    }
    QCOMPARE(bench.computations(), 1);
}

void TestBench::theLongComputationRunsAgainForWhatChangesIt()
{
    Bench bench = notchBench(-60.0);
    bench.channelPowers();
    bench.settings.generator.level -= 1.0;
    bench.channelPowers();
    QCOMPARE(bench.computations(), 2);
    bench.settings.generator.iqModulation = false;
    bench.channelPowers();
    QCOMPARE(bench.computations(), 3);
    bench.play(tone(64, 1));
    bench.settings.generator.iqModulation = true;
    bench.channelPowers();
    QCOMPARE(bench.computations(), 4);
}

void TestBench::theLongestSignalOfTheProgramIsPlayed()
{
    constexpr int longest = 4194304;
    Bench bench = readyBench();
    bench.play(noiseWithNotch(longest, {1000000, 1199999}, -80.0));
    tune(bench, 1100000.0 - 240000.0, 150000.0, 240000.0);
    QVERIFY(isClose(upperNpr(bench), 80.0, 1e-4));
    for (int poll = 0; poll < 10000; ++poll) {
        bench.channelPowers();
    }
    QCOMPARE(bench.computations(), 1);
}

void TestBench::channelsOutsideTheSpanAreEmpty()
{
    BenchWiring wiring;
    wiring.chain.noiseFloor = -150.0;
    Bench bench = notchBench(-60.0, wiring);
    bench.settings.analyzer.span = 150.0;
    const ChannelPowers powers = bench.channelPowers();
    QVERIFY(powers.reference > -60.0);
    QCOMPARE(powers.lower, emptyChannelPower);
    QCOMPARE(powers.upper, emptyChannelPower);
}

// Half of the 150 lines of the reference channel.
void TestBench::aChannelAcrossTheEdgeOfTheSpanIsReadUpToIt()
{
    Bench bench = notchBench(-60.0);
    const double whole = bench.channelPowers().reference;
    bench.settings.analyzer.span = 75.0;
    QVERIFY(isClose(bench.channelPowers().reference, whole - 3.0, 0.1));
}

// Third-order distortion of a signal that fills its rate reaches beyond it.
void TestBench::distortionIsReadBesideTheSignalsRate()
{
    BenchWiring wiring;
    wiring.chain.device.name = "cubic";
    Bench bench = notchBench(-60.0, wiring);
    tune(bench, lineCount * 0.75, 100.0, 200.0);
    const double distortion = bench.channelPowers().reference;
    QVERIFY(distortion > -150.0 && distortion < -100.0);
    tune(bench, lineCount * 2.5, 100.0, 200.0);
    QVERIFY(readsFloor(bench));
}

// Without attenuation the mixer takes 10 dBm; peaks of noise stand some 10 dB above the mean.
void TestBench::anAnalyzerDrivenTooHardCompressesAndSaysSo()
{
    Bench bench = notchBench(-80.0);
    bench.settings.analyzer.attenuation = {0.0, false};
    bench.settings.generator.level = -5.0;
    QVERIFY(isClose(upperNpr(bench), 80.0));
    QVERIFY(!bench.isOverloaded());
    bench.settings.generator.level = 10.0;
    QVERIFY(upperNpr(bench) < 20.0);
    QVERIFY(bench.isOverloaded());
    bench.settings.generator.output = false;
    QVERIFY(!bench.isOverloaded());
}

void TestBench::attenuationAndReferenceLevelMoveTheLimit()
{
    SimulatedAnalyzer analyzer;
    analyzer.referenceLevel = -20.0;
    QCOMPARE(usedAttenuation(analyzer), 10.0);
    QCOMPARE(inputLimit(analyzer), 15.0);
    analyzer.referenceLevel = 15.0;
    QCOMPARE(usedAttenuation(analyzer), 40.0);
    QCOMPARE(inputLimit(analyzer), 50.0);
    analyzer.attenuation = {5.0, false};
    QCOMPARE(inputLimit(analyzer), 15.0);
    Bench bench = notchBench(-80.0);
    bench.settings.generator.level = 10.0;
    bench.settings.analyzer.referenceLevel = 10.0;
    QVERIFY(isClose(upperNpr(bench), 80.0));
    bench.settings.analyzer.referenceLevel = -40.0;
    QVERIFY(upperNpr(bench) < 30.0 && bench.isOverloaded());
    bench.settings.analyzer.referenceLevel = 10.0;
    QVERIFY(isClose(upperNpr(bench), 80.0));
    QVERIFY(!bench.isOverloaded());
}

void TestBench::aLimitThatIsNotReachedCostsNoComputation()
{
    Bench bench = notchBench(-80.0);
    bench.channelPowers();
    bench.settings.analyzer.referenceLevel = 10.0;
    bench.channelPowers();
    QCOMPARE(bench.computations(), 1);
}

QTEST_APPLESS_MAIN(TestBench)
#include "test_bench.moc"
