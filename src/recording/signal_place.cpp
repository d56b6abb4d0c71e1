#include "recording/signal_place.h"

#include "transform/pi.h"
#include "transform/transform.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 mostCompared = 8192; // samples; more would suffer from clocks that are apart

// The place at which a circular correlation is largest, and how clearly.
struct Likeness
{
    int place = 0;
    double clearness = 0.0; // square over the mean square: near the logarithm of the length for
                            // signals that have nothing in common
};

Likeness likeness(ComplexBuffer one, const ComplexBuffer& spectrum)
{
    fft(one);
    for (quint64 k = 0; k < one.size(); ++k) {
        one[k] = plainProduct(one[k], std::conj(spectrum[k]));
    }
    fft(one);
    Likeness found;
    double largest = 0.0;
    double sum = 0.0;
    for (quint64 k = 0; k < one.size(); ++k) {
        const double here = std::norm(one[k]);
        sum += here;
        if (here > largest) {
            largest = here;
            found.place = static_cast<int>(k);
        }
    }
    found.clearness = sum > 0.0 ? largest * static_cast<double>(one.size()) / sum : 0.0;
    return found;
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

ComplexBuffer aroundCarrier(const SampleReader& reader, double turnsPerSample, qint64 first,
                            qint64 count, qint64 length)
{
    ComplexBuffer samples = reader.samples(first, count, length);
    for (qint64 k = 0; k < count; ++k) {
        const double turns = std::fmod(turnsPerSample * static_cast<double>(k), 1.0);
        auto& value = samples[static_cast<quint64>(k)];
        value = plainProduct(value, {std::cos(2.0 * pi * turns), -std::sin(2.0 * pi * turns)});
    }
    return samples;
}

std::optional<SignalPlace> placeOfSignal(const SampleReader& reader, double sampleRate,
                                         qint64 first, double center, const SignalPeriod& signal)
{
    constexpr double clearly = 60.0; // four times what chance brings in the longest period
    const ComplexBuffer spectrum = spectrumOf(signal);
    const qint64 period = signal.i.size();
    const qint64 count = std::min({mostCompared, period, reader.recording().samples - first});
    ComplexBuffer beginning = aroundCarrier(reader, center / sampleRate, first, count, period);
    const Likeness upright = likeness(beginning, spectrum);
    for (quint64 k = 0; k < beginning.size(); ++k) {
        beginning[k] = std::conj(beginning[k]);
    }
    const Likeness inverted = likeness(std::move(beginning), spectrum);
    if (std::max(upright.clearness, inverted.clearness) < clearly) {
        return std::nullopt;
    }
    return inverted.clearness > upright.clearness ? SignalPlace{inverted.place, true}
                                                  : SignalPlace{upright.place, false};
}
