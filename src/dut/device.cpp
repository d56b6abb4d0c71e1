#include "dut/device.h"

#include "base/parallel.h"
#include "transform/vector_clones.h"

#include <algorithm>
#include <complex>

namespace {

void scale(double& i, double& q, double gain)
{
    i *= gain;
    q *= gain;
}

void scale(double& i, double& q, std::complex<double> gain)
{
    const double before = i;
    i = before * gain.real() - q * gain.imag();
    q = before * gain.imag() + q * gain.real();
}

// So many neighbouring samples, in place.
struct Samples
{
    double* i;
    double* q;
    quint64 count;
};

// Multiplies each sample by a gain, real or complex, that depends on its momentary power alone.
template <typename Gain> void scaleByPower(Samples samples, Gain gain)
{
    double* const iSamples = samples.i;
    double* const qSamples = samples.q;
    IN_ANY_ORDER
    for (quint64 k = 0; k < samples.count; ++k) {
        scale(iSamples[k], qSamples[k],
              gain(iSamples[k] * iSamples[k] + qSamples[k] * qSamples[k]));
    }
}

void passLinear(const DeviceSettings& /*device*/, double /*fullScale*/, Samples /*samples*/) {}

// The gains of the usual smoothnesses, several samples at once.
VECTOR_CLONES void bendOnce(double* i, double* q, quint64 count, double saturation)
{
    const double perPower = 1.0 / saturation;
    IN_ANY_ORDER
    for (quint64 k = 0; k < count; ++k) {
        const double gain = 1.0 / std::sqrt(1.0 + (i[k] * i[k] + q[k] * q[k]) * perPower);
        i[k] *= gain;
        q[k] *= gain;
    }
}

VECTOR_CLONES void bendTwice(double* i, double* q, quint64 count, double saturation)
{
    const double perPower = 1.0 / saturation;
    IN_ANY_ORDER
    for (quint64 k = 0; k < count; ++k) {
        const double over = (i[k] * i[k] + q[k] * q[k]) * perPower;
        const double gain = 1.0 / std::sqrt(std::sqrt(1.0 + over * over));
        i[k] *= gain;
        q[k] *= gain;
    }
}

// Amplitude a becomes a / (1 + (a/A)^2p)^(1/2p) with the saturation amplitude A; the phase stays.
// The usual smoothnesses go without powers, which take ten times as long.
void passRapp(const DeviceSettings& device, double /*fullScale*/, Samples samples)
{
    const double saturation = milliwatts(device.saturationPower);
    const double p = device.smoothness;
    if (p == 1.0 || p == 2.0) {
        const auto bend = p == 1.0 ? bendOnce : bendTwice;
        bend(samples.i, samples.q, samples.count, saturation);
        return;
    }
    scaleByPower(samples, [saturation, p](double power) {
        return std::pow(1.0 + std::pow(power / saturation, p), -0.5 / p);
    });
}

// Linear up to the saturation amplitude, constant above.
void passSoftLimiter(const DeviceSettings& device, double /*fullScale*/, Samples samples)
{
    const double saturation = milliwatts(device.saturationPower);
    scaleByPower(samples, [saturation](double power) {
        return power > saturation ? std::sqrt(saturation / power) : 1.0;
    });
}

// A. A. M. Saleh's model of a travelling-wave tube (IEEE Trans. Communications, November 1981) with
// the figures of its first tube: gain and turn of the phase, both by power over saturation.
void passSaleh(const DeviceSettings& device, double /*fullScale*/, Samples samples)
{
    const double saturation = milliwatts(device.saturationPower);
    scaleByPower(samples, [saturation](double power) {
        const double q = power / saturation;
        return std::polar(2.1587 / (1.0 + 1.1517 * q), 4.0033 * q / (1.0 + 9.1040 * q));
    });
}

// Two tones of power P each bring an intermodulation line of power P (P / intercept)^2.
void passCubic(const DeviceSettings& device, double /*fullScale*/, Samples samples)
{
    const double intercept = milliwatts(device.thirdOrderIntercept);
    scaleByPower(samples, [intercept](double power) { return 1.0 - power / intercept; });
}

VECTOR_CLONES void convert(double* values, quint64 count, double step, double topCode)
{
    IN_ANY_ORDER
    for (quint64 k = 0; k < count; ++k) {
        values[k] = std::clamp(std::nearbyint(values[k] / step), -topCode, topCode) * step;
    }
}

// Two converters, one a component. They are of the mid-tread kind (zero is a level) and clip at
// full scale on both sides alike, which takes one step more than 2^bits.
void passConverter(const DeviceSettings& device, double fullScale, Samples samples)
{
    const double topCode = std::ldexp(1.0, device.bits - 1);
    const double step = fullScale / topCode;
    if (!(step > 0.0)) {
        return; // silence stays silence
    }
    convert(samples.i, samples.count, step, topCode);
    convert(samples.q, samples.count, step, topCode);
}

struct Device
{
    const char* name;
    bool betweenSamples;
    void (*pass)(const DeviceSettings& device, double fullScale, Samples samples);
};

const Device devices[] = {
    {"linear", false, passLinear}, {"rapp", true, passRapp},   {"soft", true, passSoftLimiter},
    {"saleh", true, passSaleh},    {"cubic", true, passCubic}, {"adc", false, passConverter},
};

const Device& deviceOf(const DeviceSettings& settings)
{
    const auto* known =
        std::find_if(std::begin(devices), std::end(devices), [&settings](const Device& row) {
            return settings.name == QLatin1String(row.name);
        });
    return known == std::end(devices) ? devices[0] : *known;
}

} // namespace

QStringList deviceNames()
{
    QStringList names;
    for (const Device& device : devices) {
        names << QLatin1String(device.name);
    }
    return names;
}

bool actsBetweenSamples(const DeviceSettings& device)
{
    return deviceOf(device).betweenSamples;
}

DeviceInUse::DeviceInUse(const DeviceSettings& settings, double power)
    : device(settings),
      fullScale(settings.fullScale ? std::sqrt(milliwatts(*settings.fullScale))
                                   : settings.loadingFactor * std::sqrt(power / 2.0))
{
}

void DeviceInUse::pass(double* i, double* q, quint64 count) const
{
    deviceOf(device).pass(device, fullScale, {i, q, count});
}

void passThrough(const DeviceSettings& device, Envelope& envelope)
{
    const DeviceInUse inUse(device, envelope.size() > 0 ? meanPower(envelope) : 0.0);
    double* const i = envelope.iSamples.data();
    double* const q = envelope.qSamples.data();
    inRuns(static_cast<quint64>(envelope.size()), [&inUse, i, q](quint64 first, quint64 last) {
        inUse.pass(i + first, q + first, last - first);
    });
}
