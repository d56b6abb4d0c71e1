// Periodic test signals with lines one hertz apart: the sample rate in Hz is the number of lines.
#pragma once

#include "simulator/bench.h"
#include "transform/transform.h"

#include <cmath>
#include <random>
#include <utility>

constexpr double pi = 3.141592653589793;

// Lines from first to last, in hertz from the carrier, both inclusive.
struct Band
{
    int first;
    int last;
};

// Calls visit(index) for the place of each line of the band in transform order.
template <typename Visit> void forLines(int count, Band band, Visit visit)
{
    for (int line = band.first; line <= band.last; ++line) {
        visit((line + count) % count);
    }
}

inline PlayedSignal silence(int count)
{
    return {QVector<double>(count, 0.0), QVector<double>(count, 0.0), double(count)};
}

// Spectrum in transform order to samples and back; the carrier's line is index 0.
inline void toSamples(PlayedSignal& spectrum)
{
    inverseTransform(spectrum.qSamples, spectrum.iSamples, quint32(spectrum.size()));
}

inline void toSpectrum(PlayedSignal& signal)
{
    forwardTransform(signal.qSamples, signal.iSamples, quint32(signal.size()));
}

// Lines of one amplitude and random phases over the whole band, with a notch of a depth in dB.
inline PlayedSignal noiseWithNotch(int count, Band notch, double depth, unsigned seed = 1)
{
    PlayedSignal signal = silence(count);
    std::mt19937 random(seed);
    const double turn = 2.0 * pi / 4294967296.0;
    for (int k = 0; k < count; ++k) {
        const double phase = double(random()) * turn;
        signal.iSamples[k] = std::cos(phase);
        signal.qSamples[k] = std::sin(phase);
    }
    const double factor = std::pow(10.0, depth / 20.0);
    forLines(count, notch, [&](int k) {
        signal.iSamples[k] *= factor;
        signal.qSamples[k] *= factor;
    });
    toSamples(signal);
    return signal;
}

// One line of the given frequency.
inline PlayedSignal tone(int count, int line)
{
    PlayedSignal signal = silence(count);
    for (int n = 0; n < count; ++n) {
        signal.iSamples[n] = std::cos(2.0 * pi * line * n / count);
        signal.qSamples[n] = std::sin(2.0 * pi * line * n / count);
    }
    return signal;
}

// A bench whose generator and analyzer stand at 1 GHz, with the output on.
inline Bench readyBench(BenchWiring wiring = {}, double level = -30.0)
{
    Bench bench(std::move(wiring));
    bench.settings.generator = {1e9, level, true, true};
    return bench;
}

// Tunes the reference channel to center, in hertz from 1 GHz.
inline void tune(Bench& bench, double center, double bandwidth, double spacing)
{
    SimulatedAnalyzer& analyzer = bench.settings.analyzer;
    analyzer.centerFrequency = 1e9 + center;
    analyzer.channelBandwidth = bandwidth;
    analyzer.adjacentBandwidth = bandwidth;
    analyzer.channelSpacing = spacing;
}

// Reference over upper adjacent channel in dB.
inline double upperNpr(Bench& bench)
{
    const ChannelPowers powers = bench.channelPowers();
    return powers.reference - powers.upper;
}
