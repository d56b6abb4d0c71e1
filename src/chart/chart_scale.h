// The span of an axis and the distance of its ticks.
#pragma once

#include <QVector>

struct ChartScale
{
    double low = 0.0;
    double high = 1.0;
    double step = 1.0; // 1, 2 or 5 times a power of ten
    int decimals = 0;  // that a multiple of the step needs
};

// Around all values, from tick to tick and with about so many of them; 1 wide at least. From 0 to 1
// for none.
ChartScale scaleAround(const QVector<double>& values, int ticks);

// From the lowest to the highest value itself.
ChartScale scaleWithin(const QVector<double>& values, int ticks);
