// What a device added to its input, by plain sums over both envelopes as a whole.
#pragma once

#include "dut/envelope.h"
#include "dut/scatter.h"

#include <algorithm>
#include <complex>

inline std::complex<double> sampleOf(const Envelope& envelope, int k)
{
    return {envelope.iSamples.at(k), envelope.qSamples.at(k)};
}

// Of output - c input, with the c that takes from the output all that looks like the input:
// <input, output> / <input, input>.
inline DistortionEnergy plainDistortion(const Envelope& input, const Envelope& output,
                                        int stretchLength)
{
    std::complex<double> alike = 0.0;
    double power = 0.0;
    for (int k = 0; k < input.size(); ++k) {
        alike += std::conj(sampleOf(input, k)) * sampleOf(output, k);
        power += std::norm(sampleOf(input, k));
    }
    const std::complex<double> gain = power > 0.0 ? alike / power : 0.0;
    DistortionEnergy all;
    for (int first = 0; first < input.size(); first += stretchLength) {
        double energy = 0.0;
        for (int k = first; k < std::min(first + stretchLength, input.size()); ++k) {
            energy += std::norm(sampleOf(output, k) - gain * sampleOf(input, k));
        }
        all += {energy, energy * energy};
    }
    return all;
}
