// The devices against closed forms.
#include "dut/device.h"
#include "dut/multitone.h"
#include "dut/spectrum.h"

#include <QtTest>

namespace {

DeviceSettings device(const QString& name)
{
    DeviceSettings settings;
    settings.name = name;
    return settings;
}

// Power in dBm behind the device of one line of a power in dBm.
double powerOfTone(const DeviceSettings& settings, double dbm)
{
    Envelope signal = tone(64, 5);
    const double amplitude = std::pow(10.0, dbm / 20.0);
    for (int k = 0; k < signal.size(); ++k) {
        signal.iSamples[k] *= amplitude;
        signal.qSamples[k] *= amplitude;
    }
    passThrough(settings, signal);
    return 10.0 * std::log10(meanPower(signal));
}

Envelope ramp(QVector<double> values)
{
    const QVector<double> zeros(values.size(), 0.0);
    return {std::move(values), zeros, 1.0};
}

} // namespace

class TestDevice : public QObject
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
    void aFullScaleIsTheAmplitudeOfACarrier();
    void aSoftLimiterIsLinearUpToItsSaturation();
    void aTravellingWaveTubeBendsAmplitudeAndPhase();
    void onlyConvertersAndCablesLiveFromSampleToSample();
};

void TestDevice::aLinearDeviceChangesNothing()
{
    Envelope signal = tone(64, 5);
    const Envelope before = signal;
    passThrough(device("linear"), signal);
    QCOMPARE(signal.iSamples, before.iSamples);
    QCOMPARE(signal.qSamples, before.qSamples);
}

void TestDevice::anUnknownDeviceChangesNothing()
{
    QVERIFY(std::abs(powerOfTone(device("tube"), 3.0) - 3.0) < 1e-9);
}

void TestDevice::aSoftAmplifierIsLinearFarBelowSaturation()
{
    DeviceSettings rapp = device("rapp");
    rapp.saturationPower = 17.0;
    QVERIFY(std::abs(powerOfTone(rapp, -23.0) + 23.0) < 1e-6);
}

// At an input of the saturation power the amplitude is divided by the 2p-th root of 2.
void TestDevice::aSoftAmplifierLosesThreeDecibelsOverItsSmoothnessAtSaturation()
{
    DeviceSettings rapp = device("rapp");
    rapp.saturationPower = 17.0;
    rapp.smoothness = 2.0;
    QVERIFY(std::abs(powerOfTone(rapp, 17.0) - (17.0 - 1.505149978)) < 1e-6);
    rapp.smoothness = 1.0;
    QVERIFY(std::abs(powerOfTone(rapp, 17.0) - (17.0 - 3.010299957)) < 1e-6);
}

void TestDevice::aSoftAmplifierGivesItsSaturationPowerAtMost()
{
    DeviceSettings rapp = device("rapp");
    rapp.saturationPower = 17.0;
    QVERIFY(std::abs(powerOfTone(rapp, 57.0) - 17.0) < 1e-6);
}

void TestDevice::aSoftAmplifierKeepsThePhase()
{
    Envelope signal{{3.0}, {-4.0}, 1.0};
    passThrough(device("rapp"), signal);
    QVERIFY(signal.iSamples[0] < 3.0);
    QVERIFY(std::abs(signal.qSamples[0] / signal.iSamples[0] + 4.0 / 3.0) < 1e-12);
}

// Two lines of -10 dBm and an intercept of 20 dBm: 60 dB down, at twice one less the other.
void TestDevice::twoTonesBringIntermodulationByTheIntercept()
{
    DeviceSettings cubic = device("cubic");
    cubic.thirdOrderIntercept = 20.0;
    Envelope both = tone(64, 2);
    const Envelope other = tone(64, 5);
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
void TestDevice::aConverterRoundsToTheNearestStep()
{
    DeviceSettings adc = device("adc");
    adc.bits = 3; // steps of 1
    Envelope signal = ramp({2.6, -2.6, 1.4, -1.4, 0.4, -0.4});
    adc.loadingFactor = 4.0 / std::sqrt(meanPower(signal) / 2.0);
    passThrough(adc, signal);
    const double expected[] = {3.0, -3.0, 1.0, -1.0, 0.0, 0.0};
    for (int k = 0; k < 6; ++k) {
        QVERIFY(std::abs(signal.iSamples[k] - expected[k]) < 1e-12);
        QCOMPARE(signal.qSamples[k], 0.0);
    }
}

void TestDevice::aConverterClipsAtFullScaleOnBothSides()
{
    DeviceSettings adc = device("adc");
    adc.bits = 3;
    Envelope signal = ramp({9.0, -9.0, 4.2, -4.2});
    adc.loadingFactor = 4.0 / std::sqrt(meanPower(signal) / 2.0);
    passThrough(adc, signal);
    for (int k = 0; k < 4; ++k) {
        QVERIFY(std::abs(signal.iSamples[k] - (k % 2 == 0 ? 4.0 : -4.0)) < 1e-12);
    }
}

void TestDevice::aConverterLeavesSilenceAlone()
{
    Envelope signal = silence(8);
    passThrough(device("adc"), signal);
    QCOMPARE(signal.iSamples, QVector<double>(8, 0.0));
}

// Full scale of 0 dBm is an amplitude of 1: 3 bits have steps of a quarter.
void TestDevice::aFullScaleIsTheAmplitudeOfACarrier()
{
    DeviceSettings adc = device("adc");
    adc.bits = 3;
    adc.fullScale = 0.0;
    Envelope signal = ramp({0.9, 1.2, -7.0, 0.3, 0.1});
    passThrough(adc, signal);
    const double expected[] = {1.0, 1.0, -1.0, 0.25, 0.0};
    for (int k = 0; k < 5; ++k) {
        QVERIFY(std::abs(signal.iSamples[k] - expected[k]) < 1e-12);
    }
}

void TestDevice::aSoftLimiterIsLinearUpToItsSaturation()
{
    DeviceSettings soft = device("soft");
    soft.saturationPower = 17.0;
    QVERIFY(std::abs(powerOfTone(soft, 16.999) - 16.999) < 1e-9);
    QVERIFY(std::abs(powerOfTone(soft, 17.001) - 17.0) < 1e-9);
    QVERIFY(std::abs(powerOfTone(soft, 40.0) - 17.0) < 1e-9);
}

// At q = 1: gain 2.1587 / 2.1517 and a turn of 4.0033 / 10.1040 radian; both by hand. At q = 4 the
// gain is 2.1587 / 5.6068 and the turn 16.0132 / 37.416.
void TestDevice::aTravellingWaveTubeBendsAmplitudeAndPhase()
{
    DeviceSettings saleh = device("saleh");
    saleh.saturationPower = 20.0; // an amplitude of 10
    Envelope signal{{10.0, 0.0}, {0.0, 20.0}, 1.0};
    passThrough(saleh, signal);
    const double first = 10.0 * 1.003253;
    QVERIFY(std::abs(signal.iSamples[0] - first * std::cos(0.396209)) < 1e-4);
    QVERIFY(std::abs(signal.qSamples[0] - first * std::sin(0.396209)) < 1e-4);
    const double second = 20.0 * 0.385015;
    QVERIFY(std::abs(signal.iSamples[1] + second * std::sin(0.427977)) < 1e-4);
    QVERIFY(std::abs(signal.qSamples[1] - second * std::cos(0.427977)) < 1e-4);
}

void TestDevice::onlyConvertersAndCablesLiveFromSampleToSample()
{
    QCOMPARE(deviceNames(), QStringList({"linear", "rapp", "soft", "saleh", "cubic", "adc"}));
    for (const QString& name : deviceNames()) {
        const bool sampled = name == "adc" || name == "linear";
        QCOMPARE(actsBetweenSamples(device(name)), !sampled);
    }
}

QTEST_APPLESS_MAIN(TestDevice)
#include "test_device.moc"
