// Doubles cut to whole numbers, toward zero, without undefined behaviour: what lies
// outside the range saturates, and not-a-number becomes 0.
#pragma once

#include <QtGlobal>

#include <cmath>
#include <limits>

template <typename Integer> Integer truncated(double value)
{
    static_assert(sizeof(Integer) <= 4, "the limits must be exact doubles");
    constexpr double lowest = std::numeric_limits<Integer>::lowest();
    constexpr double highest = std::numeric_limits<Integer>::max();
    if (std::isnan(value)) {
        return 0;
    }
    if (value <= lowest) {
        return std::numeric_limits<Integer>::lowest();
    }
    if (value >= highest) {
        return std::numeric_limits<Integer>::max();
    }
    return static_cast<Integer>(value);
}

inline qint32 truncatedToInt32(double value)
{
    return truncated<qint32>(value);
}

inline quint32 truncatedToUint32(double value)
{
    return truncated<quint32>(value);
}
