// What a real source and the cables behind it do to a signal before it reaches a device, line by
// line of its spectrum. In place on an envelope whose length is a power of two. No randomness but
// that of a fixed table: the same samples give the same bits. Any thread.
#pragma once

#include "dut/envelope.h"

#include <limits>

// A gain that goes up and down with the frequency: half of peakToPeak (dB) times the cosine of
// 2 pi offset / period, so largest at the carrier. Without a peakToPeak there is none.
struct Ripple
{
    double peakToPeak = 0.0; // dB
    double period = 1.0;     // Hz

    // dB at an offset from the carrier in Hz.
    double gain(double offset) const;
};

constexpr double noLimit = std::numeric_limits<double>::infinity();

// Adds to every line one that is weaker than the signal's lines by depth in dB, with a phase of its
// own: no notch reads deeper, and the gaps beyond the band are filled alike. The signal's lines
// are those within 40 dB of the strongest; their mean power is what depth counts from.
void fillNotches(Envelope& envelope, double depth);

void applyRipple(Envelope& envelope, const Ripple& ripple);
