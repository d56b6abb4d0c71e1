// Where the channels of a reading lie for a notch: the reference channel beside it, towards the
// middle of the signal, and one adjacent channel on each side, of which one falls into the notch.
#pragma once

#include "setup/notch.h"

struct ReadingChannels
{
    double reference;  // middle, offset from the carrier in Hz
    double bandwidth;  // of each channel, Hz
    double spacing;    // from the reference channel's middle to the adjacent ones, Hz
    bool notchIsUpper; // the upper adjacent channel is the one in the notch, else the lower one
    double notch() const { return notchIsUpper ? reference + spacing : reference - spacing; }
};

// A notch at the carrier has its reference channel below.
inline ReadingChannels channelsOf(const Notch& notch)
{
    const double spacing = 1.2 * notch.width;
    const bool isUpper = notch.center >= 0;
    return {isUpper ? notch.center - spacing : notch.center + spacing, 0.75 * notch.width, spacing,
            isUpper};
}
