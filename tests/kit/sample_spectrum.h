// The samples of a "GetSymbol" reply, and the amplitude of single bins in them.
#pragma once

#include <QByteArray>

#include <cmath>
#include <complex>
#include <cstring>
#include <vector>

inline std::vector<std::complex<double>> samplesOf(const QByteArray& block)
{
    std::vector<std::complex<double>> samples;
    for (int at = 4; at + 8 <= block.size(); at += 8) {
        float iq[2];
        std::memcpy(iq, block.constData() + at, sizeof(iq));
        samples.emplace_back(double(iq[0]), double(iq[1]));
    }
    return samples;
}

// The amplitude of one bin, counted from the carrier, by a direct sum over all samples.
inline double amplitudeAt(const std::vector<std::complex<double>>& samples, int bin)
{
    constexpr double pi = 3.141592653589793;
    const auto count = static_cast<double>(samples.size());
    std::complex<double> sum;
    const std::complex<double> step = std::polar(1.0, -2.0 * pi * bin / count);
    std::complex<double> phasor = 1.0;
    for (std::size_t k = 0; k < samples.size(); ++k) {
        if (k % 1024 == 0) { // no drift
            phasor = std::polar(1.0, -2.0 * pi * std::fmod(double(bin) * double(k), count) / count);
        }
        sum += samples[k] * phasor;
        phasor *= step;
    }
    return std::abs(sum) / std::sqrt(count);
}
