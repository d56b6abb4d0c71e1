// Noise that a device clips far above its mean: peaks so rare that a stimulus may have a handful of
// them or none, although they make a part of the distortion on the average over stimuli. What one
// stimulus shows then tells little of how far readings scatter; this is what is to be expected.
// Powers in milliwatts. Any thread.
#pragma once

#include "dut/device.h"

struct RarePeaks
{
    double count = 0.0;     // to be expected in one stimulus; 0 for a device that doesn't clip
    double power = 0.0;     // of the distortion that they make, its mean over all stimuli
    double evenPower = 0.0; // of the distortion that is always there: rounding
    // A peak's energy grows with its height over the limit to this power, and the height is
    // distributed exponentially: 2 for lone samples, 2.5 where the time above the limit counts.
    double growth = 2.0;
};

// For a stimulus of noise of a mean power at the device's input, so many samples long, that fills
// the share bandwidthRatio of the sample rate. Rice's rate of upcrossings for the limiter, as long
// as its saturation lies above half the power; the normal distribution's tail for converters.
RarePeaks rarePeaksOf(const DeviceSettings& device, double power, double samples,
                      double bandwidthRatio);

// Variance of ln(power of the notch) that the peaks bring, of all stimuli together: count times as
// many, power and evenPower those in the notch's channel, where evenPower is all that isn't theirs.
// Its root is within a half of what compound Poisson sums show.
double scatterOf(const RarePeaks& peaks);
