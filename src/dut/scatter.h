// What makes a reading of the noise power ratio scatter over stimuli that differ in their seed
// only: how few moments the distortion comes from. Any thread.
#pragma once

#include "dut/envelope.h"

#include <complex>

// Energy of what a device added to its input, in stretches of some samples. Sums over several
// stimuli add up to those of one long stimulus.
struct DistortionEnergy
{
    double sum = 0.0;
    double squares = 0.0; // of the energies of the stretches

    DistortionEnergy& operator+=(const DistortionEnergy& other);

    // How much comes from few moments: near 1/(number of stretches) for even distortion, 1 when
    // all of it fell into one stretch, 0 without distortion.
    double concentration() const { return sum > 0.0 ? squares / (sum * sum) : 0.0; }
};

// The gain c that takes from output all that looks like input: <input, output> / <input, input>. 0
// for an input without power. Both envelopes are of the same length.
std::complex<double> correlatedGain(const Envelope& input, const Envelope& output);

// What the device added is output - gain input. stretchLength is 4 times the oversampling.
DistortionEnergy distortionEnergy(const Envelope& input, const Envelope& output,
                                  std::complex<double> gain, int stretchLength);

// The same with the correlated gain.
DistortionEnergy distortionEnergy(const Envelope& input, const Envelope& output, int stretchLength);
