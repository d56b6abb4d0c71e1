#include "campaign/plan.h"

#include <algorithm>
#include <cmath>

double CampaignPlan::highestLevel() const
{
    return *std::max_element(levels.begin(), levels.end());
}

double CampaignPlan::lowestLevel() const
{
    return *std::min_element(levels.begin(), levels.end());
}

QVector<double> levelSteps(double from, double to, double step)
{
    constexpr double rounding = 1e-9; // of a step: 0.1 is no exact number
    const double size = std::abs(step);
    const double count = std::floor(std::abs(to - from) / size + rounding) + 1.0;
    if (!(size > 0.0) || !std::isfinite(from) || !(count <= mostLevels)) {
        return {};
    }
    QVector<double> levels;
    for (int k = 0; k < static_cast<int>(count); ++k) {
        levels << (to < from ? from - k * size : from + k * size);
    }
    return levels;
}
