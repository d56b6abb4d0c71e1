#include "dut/level_sweep.h"

#include "transform/vector_clones.h"

#include <algorithm>
#include <complex>
#include <cstddef>
#include <utility>

namespace {

constexpr int tileRows = 128; // 16 KiB of a level's samples

VECTOR_CLONES void scale(const double* from, double factor, double* to, int count)
{
    IN_ANY_ORDER
    for (int k = 0; k < count; ++k) {
        to[k] = factor * from[k];
    }
}

// The groups of SomeLines one behind the other, so that each is read in one stream.
QVector<double> dealtOut(const QVector<double>& samples)
{
    QVector<double> dealt;
    dealt.reserve(samples.size());
    for (int group = 0; group < SomeLines::groupCount; ++group) {
        for (int first = group * SomeLines::rowLength; first < samples.size();
             first += SomeLines::shortestPeriod) {
            for (int k = first; k < first + SomeLines::rowLength; ++k) {
                dealt << samples.at(k);
            }
        }
    }
    return dealt;
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
        inputPower = meanPower(input);
        lines = std::make_shared<const SomeLines>(input.size(), ranges);
        inputLines = lines->powers(input.iSamples.constData(), input.qSamples.constData());
        input.iSamples = dealtOut(input.iSamples);
        input.qSamples = dealtOut(input.qSamples);
    }
}

LevelResponse LevelSweep::at(double level, Scratch& scratch) const
{
    LevelResponse response;
    for (const double power : noise) {
        response.channels << ChannelContent{0.0, 0.0, power};
    }
    if (input.size() == 0) {
        return response;
    }
    DistortionSums& sums = scratch.distortion;
    sums.begin(input.size(), stretch);
    const QVector<double> powers = lines->powers(
        [&](int group, double* i, double* q) { drive(level, group, i, q, sums); }, scratch.lines);
    // The gain is that of the input at 0 dBm, so it holds the level.
    const std::complex<double> gain = sums.gain();
    response.distortion = sums.energy();
    for (int channel = 0; channel < powers.size(); ++channel) {
        response.channels[channel].lines = powers.at(channel);
        response.channels[channel].stimulus = std::norm(gain) * inputLines.at(channel);
    }
    return response;
}

// What leaves the device of a group of samples.
void LevelSweep::drive(double level, int group, double* i, double* q, DistortionSums& sums) const
{
    const double power = milliwatts(level);
    const double amplitude = std::sqrt(power);
    const DeviceInUse device(chain.device, power * inputPower);
    const int rows = input.size() / SomeLines::shortestPeriod;
    for (int first = 0; first < rows; first += tileRows) {
        const int rowCount = std::min(tileRows, rows - first);
        const int count = rowCount * SomeLines::rowLength;
        const std::ptrdiff_t to = std::ptrdiff_t{first} * SomeLines::rowLength;
        const std::ptrdiff_t from = std::ptrdiff_t{group} * rows * SomeLines::rowLength + to;
        const double* const inputI = input.iSamples.constData() + from;
        const double* const inputQ = input.qSamples.constData() + from;
        scale(inputI, amplitude, i + to, count);
        scale(inputQ, amplitude, q + to, count);
        device.pass(i + to, q + to, static_cast<quint64>(count));
        sums.add({group, first, rowCount, inputI, inputQ, i + to, q + to});
    }
}
