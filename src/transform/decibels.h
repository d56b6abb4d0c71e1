// A ratio of powers in decibels: 10 lg. Ratio 0 is minus infinity, a negative one not-a-number.
#pragma once

#include <cmath>

inline double decibels(double powerRatio)
{
    return 10.0 * std::log10(powerRatio);
}
