#include "chart/chart_scale.h"

#include <algorithm>
#include <cmath>

namespace {

double roundStep(double least)
{
    const double decade = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * decade >= least * (1.0 - 1e-9)) {
            return factor * decade;
        }
    }
    return 10.0 * decade;
}

} // namespace

ChartScale scaleWithin(const QVector<double>& values, int ticks)
{
    ChartScale scale;
    if (!values.isEmpty()) {
        scale.low = *std::min_element(values.begin(), values.end());
        scale.high = *std::max_element(values.begin(), values.end());
    }
    constexpr double least = 1.0;
    if (scale.high - scale.low < least) {
        const double middle = (scale.low + scale.high) / 2.0;
        scale.low = middle - least / 2.0;
        scale.high = middle + least / 2.0;
    }
    scale.step = roundStep((scale.high - scale.low) / ticks);
    scale.decimals = std::max(0, static_cast<int>(-std::floor(std::log10(scale.step) + 1e-9)));
    return scale;
}

ChartScale scaleAround(const QVector<double>& values, int ticks)
{
    ChartScale scale = scaleWithin(values, ticks);
    scale.low = scale.step * std::floor(scale.low / scale.step);
    scale.high = scale.step * std::ceil(scale.high / scale.step);
    return scale;
}
