#include "dut/experiment.h"

#include "dut/plain_distortion.h"
#include "transform/transform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <random>

namespace {

// Cosines of 65536 phases; the sine is a quarter turn behind.
const std::array<double, 65536>& cosines()
{
    static const auto table = [] {
        std::array<double, 65536> values{};
        for (std::size_t k = 0; k < values.size(); ++k) {
            values[k] = std::cos(2.0 * 3.141592653589793 * static_cast<double>(k) / 65536.0);
        }
        return values;
    }();
    return table;
}

// Standard deviation in dB of a reading whose notch channel holds this many lines. Exact for small
// values: where few peaks decide (a concentration of a tenth and more) it is a floor.
double readingSigma(int lines, double concentration)
{
    const double relative = std::sqrt(1.0 / lines + concentration);
    return 10.0 / std::log(10.0) * relative;
}

// Sums over all stimuli so far, from which the reading and its sigma follow.
struct Sums
{
    double reference = 0.0;
    double notch = 0.0;
    DistortionEnergy distortion;
    int seeds = 0;

    double reading() const { return 10.0 * std::log10(reference / notch); }

    // The stimuli together are as one long one.
    double sigma(int lines, double rareScatter) const
    {
        const double unseen = std::hypot(readingSigma(lines * seeds, 0.0),
                                         rareScatter / std::sqrt(static_cast<double>(seeds)));
        return std::max(unseen, readingSigma(lines * seeds, distortion.concentration()));
    }
};

double powerIn(const ChainOutput& output, ChannelLines channel)
{
    return output.channelPower(channel.first - 0.5, channel.first + channel.count - 0.5);
}

void measureOnce(const Chain& chain, double level, const Stimulus& stimulus, unsigned seed,
                 Sums& sums)
{
    const Envelope input = deviceInput(chain, stimulusOf(stimulus, seed), level);
    Envelope samples = input;
    passThrough(chain.device, samples);
    const int oversampling = samples.size() / stimulus.count;
    sums.distortion += plainDistortion(input, samples, 4 * oversampling);
    const ChainOutput output(chain, std::move(samples));
    sums.reference += powerIn(output, stimulus.referenceChannel());
    sums.notch += powerIn(output, stimulus.notchChannel());
    ++sums.seeds;
}

} // namespace

LinePowers Stimulus::lines() const
{
    LinePowers powers(count, 0.0);
    const int half = static_cast<int>(beta * count / 2.0);
    std::fill(powers.begin() + count / 2 - half, powers.begin() + count / 2 + half, 1.0);
    const ChannelLines gap = notch();
    const auto first = powers.begin() + count / 2 + gap.first;
    std::fill(first, first + gap.count, 0.0);
    return powers;
}

ChannelLines Stimulus::notch() const
{
    const int width = static_cast<int>(notchShare * beta * count);
    const int middle = atEdge ? static_cast<int>(beta * count / 2.0 - 1.5 * width) : 0;
    return {middle - width / 2, width};
}

ChannelLines Stimulus::notchChannel() const
{
    const ChannelLines gap = notch();
    const int width = gap.count * 3 / 4;
    return {gap.first + (gap.count - width) / 2, width};
}

ChannelLines Stimulus::referenceChannel() const
{
    const ChannelLines channel = notchChannel();
    return {channel.first - notch().count * 6 / 5, channel.count};
}

Envelope stimulusOf(const Stimulus& stimulus, unsigned seed)
{
    const LinePowers lines = stimulus.lines();
    const int count = stimulus.count;
    Envelope signal{QVector<double>(count, 0.0), QVector<double>(count, 0.0), double(count)};
    std::mt19937 random(seed);
    const auto& cosine = cosines();
    for (int k = 0; k < count; ++k) {
        const auto phase = static_cast<unsigned>(random() >> 16);
        const int index = (k + count / 2) % count;
        signal.iSamples[index] = lines[k] * cosine[phase];
        signal.qSamples[index] = lines[k] * cosine[(phase + 49152) % 65536];
    }
    inverseTransform(signal.qSamples, signal.iSamples, static_cast<quint32>(count));
    return signal;
}

Averaged measureSeed(const Chain& chain, double level, const Stimulus& stimulus, unsigned seed)
{
    Sums sums;
    measureOnce(chain, level, stimulus, seed, sums);
    return {sums.reading(), sums.sigma(stimulus.notchChannel().count, 0.0), 1};
}

double theoryOf(const Stimulus& stimulus, const QVector<double>& orders)
{
    return deviceReading(stimulus.lines(), orders, stimulus.referenceChannel(),
                         stimulus.notchChannel());
}

double theoryOf(const Stimulus& stimulus, int bits, double loading)
{
    return converterReading(stimulus.lines(), bits, loading, stimulus.referenceChannel(),
                            stimulus.notchChannel());
}

Averaged measureOverSeeds(const Chain& chain, double level, const Stimulus& stimulus,
                          const Averaging& averaging)
{
    Sums sums;
    const int lines = stimulus.notchChannel().count;
    const auto sigma = [&] { return sums.sigma(lines, averaging.rareScatter); };
    do {
        measureOnce(chain, level, stimulus, static_cast<unsigned>(sums.seeds + 1), sums);
    } while (sums.seeds < averaging.mostSeeds && sigma() > averaging.sigma);
    return {sums.reading(), sigma(), sums.seeds};
}
