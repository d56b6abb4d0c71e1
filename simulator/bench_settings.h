// What SCPI sets on the simulated instruments; the values after a reset. Base units: Hz, dB, dBm,
// seconds.
#pragma once

#include <algorithm>
#include <cmath>

struct SimulatedGenerator
{
    double frequency = 1e9;
    double level = -30.0;
    bool output = false;
    // On after a reset: some dialects have no word for it.
    bool iqModulation = true;
};

struct SimulatedMicrowaveGenerator
{
    double frequency = 1e10;
    double level = -30.0; // counts only without the IF input
    double attenuation = 0.0;
    bool output = false;
    bool ifInput = true; // the signal generator's level passes through
};

// A setting that the instrument can also choose itself.
struct AutomaticNumber
{
    double value = 0.0;
    bool automatic = true;
};

struct SimulatedAnalyzer
{
    double centerFrequency = 1e9;
    double span = 1e8;
    double referenceLevel = 0.0;
    AutomaticNumber attenuation;
    AutomaticNumber resolutionBandwidth;
    AutomaticNumber videoBandwidth;
    AutomaticNumber sweepTime;
    bool continuousSweep = true;
    double channelBandwidth = 1e6;
    double adjacentBandwidth = 1e6;
    double channelSpacing = 2e6;
    bool channelWidthSet = false;      // since the last reset
    bool channelSpacingSet = false;    // since the last reset
    bool channelPowerSelected = false; // as the measurement, since the last reset
    bool relativeChannels = true;      // adjacent channels in dB of the reference, else in dBm
};

// The attenuation in use, dB: the instrument's choice follows the reference level in steps of 10.
inline double usedAttenuation(const SimulatedAnalyzer& analyzer)
{
    return analyzer.attenuation.automatic
               ? std::clamp(10.0 * std::ceil((analyzer.referenceLevel + 20.0) / 10.0), 10.0, 70.0)
               : analyzer.attenuation.value;
}

// Time of a sweep in seconds. Chosen by the instrument it follows the filters, which need a time of
// 1/bandwidth for a step of bandwidth; a resolution filter that it chooses too is a fiftieth of
// the span.
inline double usedSweepTime(const SimulatedAnalyzer& analyzer)
{
    if (!analyzer.sweepTime.automatic) {
        return analyzer.sweepTime.value;
    }
    const double resolution = analyzer.resolutionBandwidth.automatic
                                  ? analyzer.span / 50.0
                                  : analyzer.resolutionBandwidth.value;
    const double video =
        analyzer.videoBandwidth.automatic ? resolution : analyzer.videoBandwidth.value;
    const double needed = analyzer.span / (resolution * std::min(resolution, video));
    constexpr double shortest = 0.001;
    constexpr double longest = 16000.0;
    return needed > shortest ? std::min(needed, longest) : shortest; // 0/0 too
}

// Peak level in dBm above which the analyzer compresses. Its mixer takes 10 dBm behind the
// attenuator, and what follows the mixer 35 dB more than the reference level: noise is so much
// wider than the resolution filter.
inline double inputLimit(const SimulatedAnalyzer& analyzer)
{
    return std::min(10.0 + usedAttenuation(analyzer), 35.0 + analyzer.referenceLevel);
}

struct BenchSettings
{
    SimulatedGenerator generator;
    SimulatedMicrowaveGenerator microwave;
    SimulatedAnalyzer analyzer;
};
