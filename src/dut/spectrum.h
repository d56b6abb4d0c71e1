// The power of every line of a periodic signal. A periodic signal has power at multiples of
// sample rate / length and nowhere else, so a channel's power is a plain sum: no window, no
// resolution filter, no averaging.
//
// Frequencies are offsets from the carrier in Hz, powers are in milliwatts. Any thread.
#pragma once

#include "dut/envelope.h"

class Spectrum
{
public:
    // In line spacings. A line as near as this to a channel's edge counts as on it, so that
    // rounding of frequencies in the gigahertz moves no line into the next channel.
    static constexpr double edgeTolerance = 1e-5;

    Spectrum() = default; // no line at all

    // The lines of an envelope whose length is a power of two.
    explicit Spectrum(Envelope envelope);

    // Sum of the lines from low (inclusive) to high (exclusive); 0 where there are none.
    double powerBetween(double low, double high) const;

private:
    int lineAtOrAbove(double offset) const;
    double linesBetween(int first, int end) const;

    QVector<double> power;      // index size/2 is the carrier, ascending in frequency
    QVector<double> blockPower; // sums of whole blocks of lines, for wide channels
    double spacing = 1.0;       // Hz from line to line
};
