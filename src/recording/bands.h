// Sets of frequencies: pieces in Hz, apart from each other and ascending.
#pragma once

#include <QVector>

struct FrequencyBand
{
    double low;
    double high;

    double width() const { return high - low; }
};

using Bands = QVector<FrequencyBand>;

// What of some bands lies within a band, or outside of it.
Bands within(const Bands& bands, FrequencyBand limits);
Bands without(const Bands& bands, FrequencyBand gap);

double widthOf(const Bands& bands);
