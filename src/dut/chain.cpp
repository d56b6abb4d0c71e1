#include "dut/chain.h"

#include "transform/interpolation.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int mostOversampling = 4;
constexpr int mostSamples = 1 << 24; // after interpolation

int oversampling(int count)
{
    return std::clamp(mostSamples / std::max(count, 1), 1, mostOversampling);
}

void oversample(Envelope& envelope)
{
    const int factor = oversampling(envelope.size());
    interpolate(envelope.iSamples, envelope.qSamples, factor);
    envelope.sampleRate *= factor;
}

} // namespace

Envelope deviceInput(const Chain& chain, Envelope signal, double level)
{
    if (!setMeanPower(signal, milliwatts(level))) {
        return {};
    }
    if (chain.sourceNotch < noLimit) {
        fillNotches(signal, chain.sourceNotch);
        setMeanPower(signal, milliwatts(level));
    }
    if (chain.ripple.peakToPeak > 0.0) {
        applyRipple(signal, chain.ripple);
    }
    if (actsBetweenSamples(chain.device)) {
        oversample(signal);
    }
    return signal;
}

bool compressAbove(double level, const Chain& chain, Envelope& samples)
{
    if (!(peakPower(samples) > milliwatts(level))) {
        return false;
    }
    DeviceSettings limiter;
    limiter.name = QStringLiteral("soft");
    limiter.saturationPower = level;
    if (!actsBetweenSamples(chain.device)) {
        oversample(samples);
    }
    passThrough(limiter, samples);
    return true;
}

ChainOutput::ChainOutput(const Chain& chain, Envelope samples)
    : noiseDensity(milliwatts(chain.deviceNoise) + milliwatts(chain.noiseFloor))
{
    if (samples.size() > 0) {
        spectrum = Spectrum(std::move(samples));
    }
}

double ChainOutput::channelPower(double low, double high) const
{
    return low < high ? spectrum.powerBetween(low, high) + noiseDensity * (high - low) : 0.0;
}
