#include "dut/rare_peaks.h"

#include "transform/pi.h"

#include <algorithm>
#include <cmath>

namespace {

RarePeaks clippedSamples(const DeviceSettings& device, double power, double samples)
{
    const double component = std::sqrt(power / 2.0);
    const double k = device.fullScale ? std::sqrt(milliwatts(*device.fullScale)) / component
                                      : device.loadingFactor;
    const double above = std::erfc(k / std::sqrt(2.0)); // on both sides
    const double density = std::exp(-k * k / 2.0) / std::sqrt(2.0 * pi);
    RarePeaks peaks;
    peaks.count = 2.0 * samples * above; // two components
    peaks.power = power * ((1.0 + k * k) * above - 2.0 * k * density);
    peaks.evenPower = power * k * k / (3.0 * std::pow(4.0, device.bits));
    return peaks;
}

RarePeaks limitedPeaks(const DeviceSettings& device, double power, double samples,
                       double bandwidthRatio)
{
    // From here downwards the envelope crosses the limit less often because it seldom falls below:
    // what was peaks has become the signal.
    const double lowest = std::sqrt(0.5);
    const double limit = std::sqrt(milliwatts(device.saturationPower) / power);
    const double above = std::exp(-limit * limit);
    RarePeaks peaks;
    if (limit < lowest) {
        return peaks;
    }
    peaks.count = samples * bandwidthRatio * std::sqrt(pi / 3.0) * limit * above;
    peaks.power = power * (above - limit * std::sqrt(pi) * std::erfc(limit));
    peaks.growth = 2.5;
    return peaks;
}

// The mean over exponentially distributed heights h of the square of ln(1 + scale h^growth).
double meanSquaredRise(double scale, double growth)
{
    constexpr int steps = 4000;
    constexpr double highest = 40.0; // beyond it there is nothing left
    constexpr double step = highest / steps;
    double sum = 0.0;
    for (int n = 0; n < steps; ++n) {
        const double height = (n + 0.5) * step;
        const double rise = std::log1p(scale * std::pow(height, growth));
        sum += std::exp(-height) * rise * rise;
    }
    return sum * step;
}

} // namespace

RarePeaks rarePeaksOf(const DeviceSettings& device, double power, double samples,
                      double bandwidthRatio)
{
    RarePeaks none;
    if (!(power > 0.0)) {
        return none;
    }
    return device.name == QLatin1String("adc") ? clippedSamples(device, power, samples)
           : device.name == QLatin1String("soft")
               ? limitedPeaks(device, power, samples, bandwidthRatio)
               : none;
}

// Many peaks: the relative variance of a compound Poisson sum. Few: each lifts what is there
// without them. Both are too large where the other one holds.
double scatterOf(const RarePeaks& peaks)
{
    if (!(peaks.count > 0.0) || !(peaks.power > 0.0)) {
        return 0.0;
    }
    const double meanEnergy = std::tgamma(peaks.growth + 1.0);
    const double share = peaks.power / (peaks.power + peaks.evenPower);
    const double many = share * share * std::tgamma(2.0 * peaks.growth + 1.0) /
                        (meanEnergy * meanEnergy * peaks.count);
    const double lift = peaks.power / (peaks.evenPower * peaks.count * meanEnergy);
    const double few =
        std::isfinite(lift) ? peaks.count * meanSquaredRise(lift, peaks.growth) : many;
    return std::min(many, few);
}
