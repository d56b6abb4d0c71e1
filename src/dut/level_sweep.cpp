#include "dut/level_sweep.h"

#include <algorithm>
#include <complex>
#include <utility>

namespace {

void scale(const QVector<double>& from, double factor, QVector<double>& to)
{
    to.resize(from.size());
    std::transform(from.cbegin(), from.cend(), to.begin(),
                   [factor](double value) { return factor * value; });
}

} // namespace

SomeLines::Range linesWithin(ChannelBand band, double spacing, int count)
{
    const auto lineAtOrAbove = [=](double offset) {
        const double line = std::ceil(offset / spacing - Spectrum::edgeTolerance);
        return static_cast<int>(std::clamp(line, -0.5 * count, 0.5 * count));
    };
    const int first = lineAtOrAbove(band.low);
    return {first, std::max(0, lineAtOrAbove(band.high) - first)};
}

LevelSweep::LevelSweep(Chain itsChain, Envelope signal, const QVector<ChannelBand>& channels)
    : chain(std::move(itsChain))
{
    const int period = signal.size();
    const double spacing = signal.sampleRate / period;
    input = deviceInput(chain, std::move(signal), 0.0);
    if (input.size() > 0) {
        stretch = 4 * (input.size() / period);
    }
    const double density = milliwatts(chain.deviceNoise) + milliwatts(chain.noiseFloor);
    for (const ChannelBand& band : channels) {
        ranges << linesWithin(band, spacing, std::max(input.size(), period));
        noise << density * std::max(0.0, band.high - band.low);
    }
    if (input.size() > 0) {
        lines = std::make_shared<const SomeLines>(input.size(), ranges);
        inputLines = lines->powers(input.iSamples.constData(), input.qSamples.constData());
    }
}

LevelResponse LevelSweep::at(double level, Envelope& scratch) const
{
    LevelResponse response;
    for (const double power : noise) {
        response.channels << ChannelContent{0.0, 0.0, power};
    }
    if (input.size() == 0) {
        return response;
    }
    const double amplitude = std::sqrt(milliwatts(level));
    scale(input.iSamples, amplitude, scratch.iSamples);
    scale(input.qSamples, amplitude, scratch.qSamples);
    scratch.sampleRate = input.sampleRate;
    passThrough(chain.device, scratch);
    // The gain is that of the input at 0 dBm, so it holds the level.
    const std::complex<double> gain = correlatedGain(input, scratch);
    response.distortion = distortionEnergy(input, scratch, gain, stretch);
    const QVector<double> powers =
        lines->powers(scratch.iSamples.constData(), scratch.qSamples.constData());
    for (int channel = 0; channel < powers.size(); ++channel) {
        response.channels[channel].lines = powers.at(channel);
        response.channels[channel].stimulus = std::norm(gain) * inputLines.at(channel);
    }
    return response;
}
