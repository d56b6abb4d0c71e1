// A calculation in the literal order of its steps, one loop after the other in one thread: what
// the program computes for the internal source with phase mode 0. Tests compare the samples bit
// for bit, benchmarks measure against it. Not to be improved.
#pragma once

#include "setup/measurement_setup.h"
#include "signal/runtime_random.h"
#include "transform/reference_transform.h"

namespace reference {

inline void seededSpectrum(SignalData& data, quint32 n, quint32 seed)
{
    data = SignalData();
    data.iSamples = QVector<double>(static_cast<int>(n), 0.0);
    data.qSamples = QVector<double>(static_cast<int>(n), 0.0);
    data.magnitude = QVector<double>(static_cast<int>(n), 0.0);
    data.phase = QVector<double>(static_cast<int>(n), 0.0);
    data.length = static_cast<qint32>(n);
    RuntimeRandom random(seed);
    for (int i = 0; i < data.length; ++i) {
        data.phase[i] = random.next() * 3.0517578125e-05 * 6.283185307179586 - 3.141592653589793;
    }
    for (int i = 0; i < data.length; ++i) {
        data.magnitude[i] = 1.0;
    }
}

inline void attenuate(SignalData& data, double first, double last, double factor)
{
    for (auto i = static_cast<int>(first); i <= last && i < data.length; ++i) {
        data.magnitude[i] *= factor;
    }
}

inline void shape(SignalData& data, const MeasurementSetup& setup)
{
    const double half = data.length >> 1;
    if (setup.nbwSrate < 1.0) {
        const double factor = std::pow(10.0, -5.25);
        attenuate(data, 0, half - half * setup.nbwSrate, factor);
        attenuate(data, half * setup.nbwSrate + half, data.length, factor);
    }
    for (const Notch& notch : setup.notches->items) {
        attenuate(data, half + notch.startIndex, half + notch.stopIndex,
                  std::pow(10.0, notch.depth * 0.05));
    }
}

// Bins to samples, in four passes and the textbook transform.
inline void makeSamples(SignalData& data)
{
    const int n = data.length;
    const int half = n >> 1;
    for (int i = half; i < n; ++i) {
        data.iSamples[i - half] = std::cos(data.phase[i]) * (double(n) * data.magnitude[i]);
    }
    for (int i = half - 1; i >= 0; --i) {
        data.iSamples[half + i] = std::cos(data.phase[i]) * (double(n) * data.magnitude[i]);
    }
    for (int i = half; i < n; ++i) {
        data.qSamples[i - half] = std::sin(data.phase[i]) * (double(n) * data.magnitude[i]);
    }
    for (int i = half - 1; i >= 0; --i) {
        data.qSamples[half + i] = std::sin(data.phase[i]) * (double(n) * data.magnitude[i]);
    }
    inverseTransform(data.qSamples, data.iSamples);
}

inline double crestFactor(const SignalData& data)
{
    QVector<double> envelope(data.length);
    for (int i = 0; i < data.length; ++i) {
        envelope[i] =
            std::sqrt(data.qSamples[i] * data.qSamples[i] + data.iSamples[i] * data.iSamples[i]);
    }
    double peak = 0.0;
    for (int i = 0; i < data.length; ++i) {
        if (envelope[i] > peak) {
            peak = envelope[i];
        }
    }
    double sum = 0.0;
    for (int i = 0; i < data.length; ++i) {
        sum += envelope[i] * envelope[i];
    }
    return 20.0 * std::log10(peak / std::sqrt(sum / double(data.length)));
}

// Phase mode 0, flat magnitudes, notch mode. Returns the crest factor.
inline double calculate(const MeasurementSetup& setup, SignalData& data)
{
    seededSpectrum(data, setup.fftLength(), setup.seed);
    shape(data, setup);
    makeSamples(data);
    return crestFactor(data);
}

} // namespace reference
