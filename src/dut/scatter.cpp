#include "dut/scatter.h"

#include <algorithm>
#include <complex>

namespace {

using Complex = std::complex<double>;

Complex sample(const Envelope& envelope, int k)
{
    return {envelope.iSamples.at(k), envelope.qSamples.at(k)};
}

// The gain that takes from output all that looks like input.
Complex correlatedGain(const Envelope& input, const Envelope& output)
{
    Complex common = 0.0;
    double power = 0.0;
    for (int k = 0; k < input.size(); ++k) {
        common += std::conj(sample(input, k)) * sample(output, k);
        power += std::norm(sample(input, k));
    }
    return power > 0.0 ? common / power : Complex(0.0);
}

} // namespace

DistortionEnergy& DistortionEnergy::operator+=(const DistortionEnergy& other)
{
    sum += other.sum;
    squares += other.squares;
    return *this;
}

DistortionEnergy distortionEnergy(const Envelope& input, const Envelope& output, int stretchLength)
{
    const Complex gain = correlatedGain(input, output);
    DistortionEnergy total;
    for (int first = 0; first < input.size(); first += stretchLength) {
        double energy = 0.0;
        for (int k = first; k < std::min(first + stretchLength, input.size()); ++k) {
            energy += std::norm(sample(output, k) - gain * sample(input, k));
        }
        total += {energy, energy * energy};
    }
    return total;
}

double readingSigma(int lines, double concentration)
{
    const double relative = std::sqrt(1.0 / lines + concentration);
    return 10.0 / std::log(10.0) * relative;
}
