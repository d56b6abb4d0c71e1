#include "campaign/point_sums.h"

#include "transform/decibels.h"

#include <algorithm>
#include <cmath>

namespace {

// Fewer tell too little of how they scatter.
constexpr int fewestForScatter = 4;

} // namespace

void PointSums::add(const BenchReading& reading, bool isNewStimulus)
{
    ++count;
    reference += reading.reference;
    notch += reading.notch;
    notchSquares += reading.notch * reading.notch;
    isOverloaded = isOverloaded || reading.isOverloaded;
    isKnown = isKnown && reading.content.has_value();
    if (isKnown) {
        stimulus += reading.content->stimulus;
        noise += reading.content->noise;
        rarePeaks = reading.content->rarePeaks;
    }
    if (isNewStimulus) {
        ++stimuli;
        distortion += isKnown ? reading.content->distortion : DistortionEnergy();
    }
}

// Of the mean, from the spread of the single readings.
double PointSums::ownScatter() const
{
    if (count < fewestForScatter) {
        return 0.0;
    }
    const double mean = notch / count;
    const double variance = (notchSquares - notch * mean) / (count - 1);
    return std::max(0.0, variance) / (mean * mean) / count;
}

// A line of distortion of mean power d beside a line of the stimulus of power s has the variance
// d^2 + 2 s d; noise has none, for its density is what an analyzer shows that takes its time.
PointSums::Scatter PointSums::scatter(int lines) const
{
    const double all = static_cast<double>(lines) * stimuli;
    if (!isKnown) {
        return {1.0 / all, 0.0, ownScatter()};
    }
    const double passed = std::min(stimulus, notch) / notch;
    const double added = std::max(0.0, notch - stimulus - noise) / notch;
    const double seenPeaks = added * added * distortion.concentration();
    return {(added * added + 2.0 * added * passed) / all,
            std::max(seenPeaks, expectedPeakScatter()), ownScatter()};
}

// Of the mean over all stimuli, which are as one long one.
double PointSums::expectedPeakScatter() const
{
    RarePeaks all = rarePeaks;
    all.count *= stimuli;
    all.evenPower += (stimulus + noise) / count;
    return scatterOf(all);
}

NprPoint PointSums::point(double level, const NumberedNotch& where) const
{
    NprPoint point;
    point.level = level;
    point.notch = where.number;
    point.center = where.notch.center;
    point.width = where.notch.width;
    point.power = decibels(reference / count);
    if (isOverloaded) {
        point.addMark(PointMark::overload);
    }
    const double signal = reference - notch;
    if (!(signal > 0.0) || !(notch > 0.0)) {
        point.addMark(PointMark::belowZero);
        return point;
    }
    point.npr = decibels(signal / notch);
    const Scatter parts = scatter(where.lines);
    const double relative = std::sqrt(std::max(parts.lines + parts.peaks, parts.readings));
    // Turning the reading back widens it where the notch is near the signal.
    const double sigma = decibels(std::exp(1.0)) * relative * reference / signal;
    if (std::isfinite(sigma)) {
        point.sigma = sigma;
    }
    if (parts.peaks > parts.lines) {
        point.addMark(PointMark::fewPeaks);
    }
    return point;
}
