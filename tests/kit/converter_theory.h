// The noise of a pair of ideal converters that Gaussian noise over the whole rate drives, in closed
// form: nothing here uses a line of the converters that it is held against. loading is the full
// scale over the rms of a component.
//
// Gray and Zeoli, "Quantization and saturation noise due to analog-to-digital conversion", IEEE
// Trans. Aerospace, January 1971.
#pragma once

#include <cmath>

// Of the normal distribution.
inline double upperTail(double x)
{
    return 0.5 * std::erfc(x / std::sqrt(2.0));
}

inline double normalDensity(double x)
{
    return std::exp(-0.5 * x * x) / std::sqrt(2.0 * 3.141592653589793);
}

// Shares of the signal's power.
struct ConverterNoise
{
    double rounding;
    double clipping;

    double npr() const { return -10.0 * std::log10(rounding + clipping); } // dB
};

// Steps of 2 k / 2^bits are rounded by a variance of a twelfth of their square; what lies beyond k
// is twice the integral of (x - k)^2 normalDensity(x) from k on.
inline ConverterNoise converterNoise(int bits, double loading)
{
    const double k = loading;
    return {k * k / (3.0 * std::pow(4.0, bits)),
            2.0 * ((1.0 + k * k) * upperTail(k) - k * normalDensity(k))};
}

// Standard deviation in dB that the few clipped ones of so many samples (two components each) leave
// in a reading. The excess of a clipped component is about exponential, so that the noise of n of
// them scatters by the root of 6/n of itself.
inline double scatterOfClipping(int bits, double loading, double samples)
{
    const ConverterNoise noise = converterNoise(bits, loading);
    const double clipped = 4.0 * samples * upperTail(loading);
    const double share = noise.clipping / (noise.rounding + noise.clipping);
    return 10.0 / std::log(10.0) * share * std::sqrt(6.0 / clipped);
}
