#include "signal/stimulus_statistics.h"

#include "setup/signal_data.h"
#include "signal/between_samples.h"
#include "transform/decibels.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr double perNeper = 4.342944819032518; // 10 lg e: dB of a power

using Powers = std::vector<float>; // 24 bits are 1e-6 dB

void appendPowers(const SignalData& signal, Powers& powers)
{
    for (int i = 0; i < signal.length; ++i) {
        const double re = signal.iSamples.at(i);
        const double im = signal.qSamples.at(i);
        powers.push_back(static_cast<float>(re * re + im * im));
    }
}

Powers powersBetweenSamples(const SignalData& signal)
{
    Powers powers;
    powers.reserve(std::size_t(envelopeInterpolation) * std::size_t(signal.length));
    appendPowers(signal, powers);
    SignalData between;
    for (int part = 1; part < envelopeInterpolation; ++part) {
        shiftSamples(between, signal, double(part) / envelopeInterpolation);
        appendPowers(between, powers);
    }
    return powers;
}

double meanOf(const Powers& powers)
{
    double sum = 0.0;
    for (const float power : powers) {
        sum += double(power);
    }
    return sum / double(powers.size());
}

// What is exceeded for a share of the time. Changes the order of the powers.
double levelExceeded(Powers& powers, double share)
{
    const auto above = static_cast<std::ptrdiff_t>(std::lround(share * double(powers.size())));
    const auto place = powers.begin() + above;
    std::nth_element(powers.begin(), place, powers.end(), std::greater<>());
    return double(*place);
}

// Of equal lines their count; lines far below the others hardly count.
double effectiveLines(const SignalData& signal)
{
    const LineSums sums = lineSumsOf(signal);
    return sums.power * sums.power / sums.square;
}

// The level of noise exceeded for a share of the time, and its scatter over n independent samples:
// their count above it is binomial.
double noiseLevel(double share)
{
    return decibels(-std::log(share));
}

double scatterOfNoiseLevel(double share, double n)
{
    return perNeper / -std::log(share) * std::sqrt((1.0 - share) / (share * n));
}

bool hasLevelsOfNoise(Powers& powers, double mean, double lines)
{
    constexpr double systematic = 0.8;   // dB, see the header
    constexpr double fewestAbove = 10.0; // independent samples
    for (const double share : {0.5, 0.3, 0.1, 0.01, 0.001}) {
        const double level = decibels(levelExceeded(powers, share) / mean);
        const double tolerance = systematic + 4.0 * scatterOfNoiseLevel(share, lines);
        const bool isAsked = lines * share >= fewestAbove;
        if (isAsked && !(std::abs(level - noiseLevel(share)) <= tolerance)) {
            return false;
        }
    }
    return true;
}

// The peak of n samples of noise lies between these all but surely.
bool hasPeaksOfNoise(double peak, double lines)
{
    constexpr double usefulPeak = 7.9; // dB; a trim to 8 dB ends just below
    const double low = decibels(std::log(lines) - 2.0);
    const double high = decibels(std::log(lines) + 12.0);
    return peak >= std::min(usefulPeak, low) && peak <= high;
}

} // namespace

LineSums lineSumsOf(const SignalData& signal)
{
    LineSums sums;
    for (const double magnitude : signal.magnitude) {
        const double line = magnitude * magnitude;
        sums.power += line;
        sums.square += line * line;
    }
    return sums;
}

StimulusStatistics statisticsOf(const SignalData& signal)
{
    constexpr double fewestLines = 100.0;
    StimulusStatistics statistics;
    statistics.crestFactor = signal.crestFactor();
    Powers powers = powersBetweenSamples(signal);
    const double mean = meanOf(powers);
    statistics.peak = decibels(double(*std::max_element(powers.begin(), powers.end())) / mean);
    for (std::size_t i = 0; i < ccdfShares.size(); ++i) {
        statistics.ccdf[i] = decibels(levelExceeded(powers, ccdfShares[i]) / mean);
    }
    statistics.lines = effectiveLines(signal);
    statistics.isNoiseLike = statistics.lines >= fewestLines &&
                             hasLevelsOfNoise(powers, mean, statistics.lines) &&
                             hasPeaksOfNoise(statistics.peak, statistics.lines);
    return statistics;
}
