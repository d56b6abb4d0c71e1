// What makes a reading of the noise power ratio scatter over stimuli that differ in their seed
// only: how few moments the distortion comes from. Any thread.
#pragma once

// Energy of what a device added to its input, in stretches of 4 samples, or of as many as these
// become by oversampling (see distortion_sums.h). Sums over several stimuli add up to those of one
// long stimulus.
struct DistortionEnergy
{
    double sum = 0.0;
    double squares = 0.0; // of the energies of the stretches

    DistortionEnergy& operator+=(const DistortionEnergy& other)
    {
        sum += other.sum;
        squares += other.squares;
        return *this;
    }

    // How much comes from few moments: near 1/(number of stretches) for even distortion, 1 when
    // all of it fell into one stretch, 0 without distortion.
    double concentration() const { return sum > 0.0 ? squares / (sum * sum) : 0.0; }
};
