// Periodic test signals with lines one hertz apart: the sample rate in Hz is the number of lines.
#pragma once

#include "dut/envelope.h"
#include "transform/transform.h"

#include <cmath>
#include <random>

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

inline Envelope silence(int count)
{
    return {QVector<double>(count, 0.0), QVector<double>(count, 0.0), double(count)};
}

// Spectrum in transform order to samples and back; the carrier's line is index 0.
inline void toSamples(Envelope& spectrum)
{
    inverseTransform(spectrum.qSamples, spectrum.iSamples, quint32(spectrum.size()));
}

inline void toSpectrum(Envelope& signal)
{
    forwardTransform(signal.qSamples, signal.iSamples, quint32(signal.size()));
}

// Lines of one amplitude and random phases over the whole band, with a notch of a depth in dB.
inline Envelope noiseWithNotch(int count, Band notch, double depth, unsigned seed = 1)
{
    Envelope signal = silence(count);
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
inline Envelope tone(int count, int line)
{
    Envelope signal = silence(count);
    for (int n = 0; n < count; ++n) {
        signal.iSamples[n] = std::cos(2.0 * pi * line * n / count);
        signal.qSamples[n] = std::sin(2.0 * pi * line * n / count);
    }
    return signal;
}
