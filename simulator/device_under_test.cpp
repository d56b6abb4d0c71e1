#include "simulator/device_under_test.h"

#include "simulator/power.h"

#include <algorithm>
#include <cmath>

namespace {

// Scales each sample by a gain that depends on its momentary power alone.
template <typename Gain> void scaleByPower(PlayedSignal& envelope, Gain gain)
{
    for (int k = 0; k < envelope.size(); ++k) {
        double& i = envelope.iSamples[k];
        double& q = envelope.qSamples[k];
        const double factor = gain(i * i + q * q);
        i *= factor;
        q *= factor;
    }
}

void passLinear(const DeviceSettings& /*device*/, PlayedSignal& /*envelope*/) {}

// Amplitude a becomes a / (1 + (a/A)^2p)^(1/2p) with the saturation amplitude A; the phase stays.
void passRapp(const DeviceSettings& device, PlayedSignal& envelope)
{
    const double saturation = milliwatts(device.saturationPower);
    const double p = device.smoothness;
    scaleByPower(envelope, [saturation, p](double power) {
        return std::pow(1.0 + std::pow(power / saturation, p), -0.5 / p);
    });
}

// Two tones of power P each bring an intermodulation line of power P (P / intercept)^2.
void passCubic(const DeviceSettings& device, PlayedSignal& envelope)
{
    const double intercept = milliwatts(device.thirdOrderIntercept);
    scaleByPower(envelope, [intercept](double power) { return 1.0 - power / intercept; });
}

// Two converters, one a component, set to the signal's own level. They clip at full scale on both
// sides alike, which takes one step more than 2^bits.
void passConverter(const DeviceSettings& device, PlayedSignal& envelope)
{
    const double fullScale = device.loadingFactor * std::sqrt(meanPower(envelope) / 2.0);
    const double topCode = std::ldexp(1.0, device.bits - 1);
    const double step = fullScale / topCode;
    if (!(step > 0.0)) {
        return; // silence stays silence
    }
    const auto convert = [topCode, step](double value) {
        return std::clamp(std::nearbyint(value / step), -topCode, topCode) * step;
    };
    std::transform(envelope.iSamples.cbegin(), envelope.iSamples.cend(), envelope.iSamples.begin(),
                   convert);
    std::transform(envelope.qSamples.cbegin(), envelope.qSamples.cend(), envelope.qSamples.begin(),
                   convert);
}

struct Device
{
    const char* name;
    void (*pass)(const DeviceSettings& device, PlayedSignal& envelope);
};

const Device devices[] = {
    {"linear", passLinear},
    {"rapp", passRapp},
    {"cubic", passCubic},
    {"adc", passConverter},
};

} // namespace

QStringList deviceNames()
{
    QStringList names;
    for (const Device& device : devices) {
        names << QLatin1String(device.name);
    }
    return names;
}

void passThrough(const DeviceSettings& device, PlayedSignal& envelope)
{
    for (const Device& known : devices) {
        if (device.name == QLatin1String(known.name)) {
            known.pass(device, envelope);
        }
    }
}
