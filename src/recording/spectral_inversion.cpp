#include "recording/spectral_inversion.h"

#include "transform/pi.h"
#include "transform/transform.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 mostCompared = 8192; // samples; more would suffer from clocks that are apart

// The beginning of the recording with the carrier at 0, and zeros up to a period.
ComplexBuffer beginningOf(const SampleReader& reader, double sampleRate, qint64 first,
                          double center, int period)
{
    const qint64 count =
        std::min({mostCompared, qint64{period}, reader.recording().samples - first});
    ComplexBuffer beginning = reader.samples(first, count, period);
    for (qint64 k = 0; k < count; ++k) {
        const double turns = std::fmod(center / sampleRate * static_cast<double>(k), 1.0);
        auto& value = beginning[static_cast<quint64>(k)];
        value = plainProduct(value, {std::cos(2.0 * pi * turns), -std::sin(2.0 * pi * turns)});
    }
    return beginning;
}

// The largest square of the circular correlation over its mean square: near the logarithm of the
// length for signals that have nothing in common.
double likeness(ComplexBuffer one, const ComplexBuffer& spectrum)
{
    fft(one);
    for (quint64 k = 0; k < one.size(); ++k) {
        one[k] = plainProduct(one[k], std::conj(spectrum[k]));
    }
    fft(one);
    double largest = 0.0;
    double sum = 0.0;
    for (quint64 k = 0; k < one.size(); ++k) {
        largest = std::max(largest, std::norm(one[k]));
        sum += std::norm(one[k]);
    }
    return sum > 0.0 ? largest * static_cast<double>(one.size()) / sum : 0.0;
}

ComplexBuffer spectrumOf(const SignalPeriod& signal)
{
    ComplexBuffer spectrum(static_cast<quint64>(signal.i.size()));
    for (int k = 0; k < signal.i.size(); ++k) {
        spectrum[static_cast<quint64>(k)] = {signal.i.at(k), signal.q.at(k)};
    }
    fft(spectrum);
    return spectrum;
}

} // namespace

std::optional<bool> isInvertedSignal(const SampleReader& reader, double sampleRate, qint64 first,
                                     double center, const SignalPeriod& signal)
{
    constexpr double clearly = 60.0; // four times what chance brings in the longest period
    const ComplexBuffer spectrum = spectrumOf(signal);
    ComplexBuffer beginning = beginningOf(reader, sampleRate, first, center, signal.i.size());
    const double upright = likeness(beginning, spectrum);
    for (quint64 k = 0; k < beginning.size(); ++k) {
        beginning[k] = std::conj(beginning[k]);
    }
    const double inverted = likeness(std::move(beginning), spectrum);
    if (std::max(upright, inverted) < clearly) {
        return std::nullopt;
    }
    return inverted > upright;
}
