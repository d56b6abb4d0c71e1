// Sets of frequencies: pieces in Hz, apart from each other and ascending.
#pragma once

#include <QVector>

struct FrequencyBand
{
    double low;
    double high;

    double width() const { return high - low; }
};

// Lines of a transform, by number: their frequency over their spacing. None where last < first.
struct LineRange
{
    int first;
    int last;
};

// Those within a band, its ends included. Their numbers have to fit into an int.
LineRange linesIn(FrequencyBand band, double spacing);

using Bands = QVector<FrequencyBand>;

// What of some bands lies within a band, or outside of it.
Bands within(const Bands& bands, FrequencyBand limits);
Bands without(const Bands& bands, FrequencyBand gap);

double widthOf(const Bands& bands);
