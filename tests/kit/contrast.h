// The contrast of two colours, as web accessibility rules define it: 1 to 21. They ask for 4.5 with
// small text.
#pragma once

#include <QColor>

#include <cmath>

inline double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

inline double contrast(const QColor& light, const QColor& dark)
{
    return (luminance(light) + 0.05) / (luminance(dark) + 0.05);
}
