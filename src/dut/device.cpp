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

// Multiplies each sample by a gain, real or complex, that depends on its momentary power alone.
template <typename Gain> void scaleByPower(Envelope& envelope, Gain gain)
{
    double* const iSamples = envelope.iSamples.data();
    double* const qSamples = envelope.qSamples.data();
    inRuns(static_cast<quint64>(envelope.size()), [=](quint64 first, quint64 last) {
        IN_ANY_ORDER
        for (quint64 k = first; k < last; ++k) {
            scale(iSamples[k], qSamples[k],
                  gain(iSamples[k] * iSamples[k] + qSamples[k] * qSamples[k]));
        }
    });
}

void passLinear(const DeviceSettings& /*device*/, Envelope& /*envelope*/) {}

// The gains of the usual smoothnesses, several samples at once.
VECTOR_CLONES void bendOnce(double* i, double* q, quint64 count, double saturation)
{
    IN_ANY_ORDER
    for (quint64 k = 0; k < count; ++k) {
        const double gain = 1.0 / std::sqrt(1.0 + (i[k] * i[k] + q[k] * q[k]) / saturation);
        i[k] *= gain;
        q[k] *= gain;
    }
}

VECTOR_CLONES void bendTwice(double* i, double* q, quint64 count, double saturation)
{
    IN_ANY_ORDER
    for (quint64 k = 0; k < count; ++k) {
        const double over = (i[k] * i[k] + q[k] * q[k]) / saturation;
        const double gain = 1.0 / std::sqrt(std::sqrt(1.0 + over * over));
        i[k] *= gain;
        q[k] *= gain;
    }
}

// Amplitude a becomes a / (1 + (a/A)^2p)^(1/2p) with the saturation amplitude A; the phase stays.
// The usual smoothnesses go without powers, which take ten times as long.
void passRapp(const DeviceSettings& device, Envelope& envelope)
{
    const double saturation = milliwatts(device.saturationPower);
    const double p = device.smoothness;
    if (p == 1.0 || p == 2.0) {
        double* const iSamples = envelope.iSamples.data();
        double* const qSamples = envelope.qSamples.data();
        const auto bend = p == 1.0 ? bendOnce : bendTwice;
        inRuns(static_cast<quint64>(envelope.size()), [=](quint64 first, quint64 last) {
            bend(iSamples + first, qSamples + first, last - first, saturation);
        });
        return;
    }
    scaleByPower(envelope, [saturation, p](double power) {
        return std::pow(1.0 + std::pow(power / saturation, p), -0.5 / p);
    });
}

// Linear up to the saturation amplitude, constant above.
void passSoftLimiter(const DeviceSettings& device, Envelope& envelope)
{
    const double saturation = milliwatts(device.saturationPower);
    scaleByPower(envelope, [saturation](double power) {
        return power > saturation ? std::sqrt(saturation / power) : 1.0;
    });
}

// A. A. M. Saleh's model of a travelling-wave tube (IEEE Trans. Communications, November 1981) with
// the figures of its first tube: gain and turn of the phase, both by power over saturation.
void passSaleh(const DeviceSettings& device, Envelope& envelope)
{
    const double saturation = milliwatts(device.saturationPower);
    scaleByPower(envelope, [saturation](double power) {
        const double q = power / saturation;
        return std::polar(2.1587 / (1.0 + 1.1517 * q), 4.0033 * q / (1.0 + 9.1040 * q));
    });
}

// Two tones of power P each bring an intermodulation line of power P (P / intercept)^2.
void passCubic(const DeviceSettings& device, Envelope& envelope)
{
    const double intercept = milliwatts(device.thirdOrderIntercept);
    scaleByPower(envelope, [intercept](double power) { return 1.0 - power / intercept; });
}

double fullScaleAmplitude(const DeviceSettings& device, const Envelope& envelope)
{
    return device.fullScale ? std::sqrt(milliwatts(*device.fullScale))
                            : device.loadingFactor * std::sqrt(meanPower(envelope) / 2.0);
}

// Two converters, one a component. They are of the mid-tread kind (zero is a level) and clip at
// full scale on both sides alike, which takes one step more than 2^bits.
void passConverter(const DeviceSettings& device, Envelope& envelope)
{
    const double topCode = std::ldexp(1.0, device.bits - 1);
    const double step = fullScaleAmplitude(device, envelope) / topCode;
    if (!(step > 0.0)) {
        return; // silence stays silence
    }
    const auto convert = [topCode, step](double value) {
        return std::clamp(std::nearbyint(value / step), -topCode, topCode) * step;
    };
    for (QVector<double>* component : {&envelope.iSamples, &envelope.qSamples}) {
        std::transform(component->cbegin(), component->cend(), component->begin(), convert);
    }
}

struct Device
{
    const char* name;
    bool betweenSamples;
    void (*pass)(const DeviceSettings& device, Envelope& envelope);
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

void passThrough(const DeviceSettings& device, Envelope& envelope)
{
    deviceOf(device).pass(device, envelope);
}
