// The devices against closed forms.
#include "multitone.h"

#include <QtTest>

namespace {

DeviceSettings device(const char* name)
{
    DeviceSettings settings;
    settings.name = name;
    return settings;
}

double meanPower(const PlayedSignal& signal)
{
    double sum = 0.0;
    for (int k = 0; k < signal.size(); ++k) {
        sum += signal.iSamples[k] * signal.iSamples[k] + signal.qSamples[k] * signal.qSamples[k];
    }
    return sum / signal.size();
}

// Power in dBm behind the device of one line of a power in dBm.
double powerOfTone(const DeviceSettings& settings, double dbm)
{
    PlayedSignal signal = tone(64, 5);
    const double amplitude = std::pow(10.0, dbm / 20.0);
    for (int k = 0; k < signal.size(); ++k) {
        signal.iSamples[k] *= amplitude;
        signal.qSamples[k] *= amplitude;
    }
    passThrough(settings, signal);
    return 10.0 * std::log10(meanPower(signal));
}

PlayedSignal ramp(QVector<double> values)
{
    const QVector<double> zeros(values.size(), 0.0);
    return {std::move(values), zeros, 1.0};
}

} // namespace

class TestDeviceUnderTest : public QObject
{
    Q_OBJECT

private slots:
    void aLinearDeviceChangesNothing();
    void anUnknownDeviceChangesNothing();
    void aSoftAmplifierIsLinearFarBelowSaturation();
    void aSoftAmplifierLosesThreeDecibelsOverItsSmoothnessAtSaturation();
    void aSoftAmplifierGivesItsSaturationPowerAtMost();
    void aSoftAmplifierKeepsThePhase();
    void twoTonesBringIntermodulationByTheIntercept();
    void aConverterRoundsToTheNearestStep();
    void aConverterClipsAtFullScaleOnBothSides();
    void aConverterLeavesSilenceAlone();
    void cubicNoiseIsThatOfTheClosedForm();
    void nprFallsTwoDecibelsForOneOfDriveOnACubicDevice();
};

void TestDeviceUnderTest::aLinearDeviceChangesNothing()
{
    PlayedSignal signal = tone(64, 5);
    const PlayedSignal before = signal;
    passThrough(device("linear"), signal);
    QCOMPARE(signal.iSamples, before.iSamples);
    QCOMPARE(signal.qSamples, before.qSamples);
}

void TestDeviceUnderTest::anUnknownDeviceChangesNothing()
{
    QVERIFY(std::abs(powerOfTone(device("tube"), 3.0) - 3.0) < 1e-9);
}

void TestDeviceUnderTest::aSoftAmplifierIsLinearFarBelowSaturation()
{
    DeviceSettings rapp = device("rapp");
    rapp.saturationPower = 17.0;
    QVERIFY(std::abs(powerOfTone(rapp, -23.0) + 23.0) < 1e-6);
}

// At an input of the saturation power the amplitude is divided by the 2p-th root of 2.
void TestDeviceUnderTest::aSoftAmplifierLosesThreeDecibelsOverItsSmoothnessAtSaturation()
{
    DeviceSettings rapp = device("rapp");
    rapp.saturationPower = 17.0;
    rapp.smoothness = 2.0;
    QVERIFY(std::abs(powerOfTone(rapp, 17.0) - (17.0 - 1.505149978)) < 1e-6);
    rapp.smoothness = 1.0;
    QVERIFY(std::abs(powerOfTone(rapp, 17.0) - (17.0 - 3.010299957)) < 1e-6);
}

void TestDeviceUnderTest::aSoftAmplifierGivesItsSaturationPowerAtMost()
{
    DeviceSettings rapp = device("rapp");
    rapp.saturationPower = 17.0;
    QVERIFY(std::abs(powerOfTone(rapp, 57.0) - 17.0) < 1e-6);
}

void TestDeviceUnderTest::aSoftAmplifierKeepsThePhase()
{
    PlayedSignal signal{{3.0}, {-4.0}, 1.0};
    passThrough(device("rapp"), signal);
    QVERIFY(signal.iSamples[0] < 3.0);
    QVERIFY(std::abs(signal.qSamples[0] / signal.iSamples[0] + 4.0 / 3.0) < 1e-12);
}

// Two lines of -10 dBm and an intercept of 20 dBm: 60 dB down, at twice one less the other.
void TestDeviceUnderTest::twoTonesBringIntermodulationByTheIntercept()
{
    DeviceSettings cubic = device("cubic");
    cubic.thirdOrderIntercept = 20.0;
    PlayedSignal both = tone(64, 2);
    const PlayedSignal other = tone(64, 5);
    const double amplitude = std::pow(10.0, -10.0 / 20.0);
    for (int k = 0; k < both.size(); ++k) {
        both.iSamples[k] = amplitude * (both.iSamples[k] + other.iSamples[k]);
        both.qSamples[k] = amplitude * (both.qSamples[k] + other.qSamples[k]);
    }
    passThrough(cubic, both);
    const Spectrum spectrum(both);
    QVERIFY(std::abs(10.0 * std::log10(spectrum.powerBetween(7.5, 8.5)) + 70.0) < 1e-6);
    QVERIFY(std::abs(10.0 * std::log10(spectrum.powerBetween(-1.5, -0.5)) + 70.0) < 1e-6);
}

// The rms of one component is that of the samples over the root of 2; the loading puts full scale
// at 4.
void TestDeviceUnderTest::aConverterRoundsToTheNearestStep()
{
    DeviceSettings adc = device("adc");
    adc.bits = 3; // steps of 1
    PlayedSignal signal = ramp({2.6, -2.6, 1.4, -1.4, 0.4, -0.4});
    adc.loadingFactor = 4.0 / std::sqrt(meanPower(signal) / 2.0);
    passThrough(adc, signal);
    const double expected[] = {3.0, -3.0, 1.0, -1.0, 0.0, 0.0};
    for (int k = 0; k < 6; ++k) {
        QVERIFY(std::abs(signal.iSamples[k] - expected[k]) < 1e-12);
        QCOMPARE(signal.qSamples[k], 0.0);
    }
}

void TestDeviceUnderTest::aConverterClipsAtFullScaleOnBothSides()
{
    DeviceSettings adc = device("adc");
    adc.bits = 3;
    PlayedSignal signal = ramp({9.0, -9.0, 4.2, -4.2});
    adc.loadingFactor = 4.0 / std::sqrt(meanPower(signal) / 2.0);
    passThrough(adc, signal);
    for (int k = 0; k < 4; ++k) {
        QVERIFY(std::abs(signal.iSamples[k] - (k % 2 == 0 ? 4.0 : -4.0)) < 1e-12);
    }
}

void TestDeviceUnderTest::aConverterLeavesSilenceAlone()
{
    PlayedSignal signal = silence(8);
    passThrough(device("adc"), signal);
    QCOMPARE(signal.iSamples, QVector<double>(8, 0.0));
}

// For complex Gaussian noise of power P the part of a |a|^2 that is not correlated with a has the
// power 2 P^3. Here it is white, so NPR = 2 (intercept - P) - 10 log10(2) dB. The notch holds 768
// lines read, whose sum spreads by 1/sqrt(768) or 0.16 dB; 0.6 dB is nearly four times that.
void TestDeviceUnderTest::cubicNoiseIsThatOfTheClosedForm()
{
    BenchWiring wiring;
    wiring.device = device("cubic");
    wiring.device.thirdOrderIntercept = 5.0;
    Bench bench = readyBench(wiring, -30.0);
    bench.play(noiseWithNotch(65536, {10000, 11023}, -200.0));
    tune(bench, 10512 - 1228, 768, 1228);
    QVERIFY2(std::abs(upperNpr(bench) - 66.99) < 0.6, qPrintable(QString::number(upperNpr(bench))));
}

void TestDeviceUnderTest::nprFallsTwoDecibelsForOneOfDriveOnACubicDevice()
{
    BenchWiring wiring;
    wiring.device = device("cubic");
    wiring.device.thirdOrderIntercept = 5.0;
    Bench bench = readyBench(wiring);
    bench.play(noiseWithNotch(65536, {10000, 11023}, -200.0));
    tune(bench, 10512 - 1228, 768, 1228);
    bench.settings.generator.level = -40.0;
    const double start = upperNpr(bench);
    for (int drive = 1; drive <= 20; ++drive) {
        bench.settings.generator.level = -40.0 + drive;
        const double fallen = start - upperNpr(bench);
        QVERIFY2(std::abs(fallen - 2.0 * drive) < 0.2, qPrintable(QString::number(fallen)));
    }
}

QTEST_APPLESS_MAIN(TestDeviceUnderTest)
#include "test_device_under_test.moc"
