#include "dut/envelope.h"

#include <algorithm>

double meanPower(const Envelope& envelope)
{
    double sum = 0.0;
    for (int k = 0; k < envelope.size(); ++k) {
        const double i = envelope.iSamples.at(k);
        const double q = envelope.qSamples.at(k);
        sum += i * i + q * q;
    }
    return sum / envelope.size();
}

double peakPower(const Envelope& envelope)
{
    double peak = 0.0;
    for (int k = 0; k < envelope.size(); ++k) {
        const double i = envelope.iSamples.at(k);
        const double q = envelope.qSamples.at(k);
        peak = std::max(peak, i * i + q * q);
    }
    return peak;
}

bool setMeanPower(Envelope& envelope, double milliwatt)
{
    const double power = meanPower(envelope);
    if (!std::isfinite(power) || !(power > 0.0)) {
        return false;
    }
    const double factor = std::sqrt(milliwatt / power);
    for (double& i : envelope.iSamples) {
        i *= factor;
    }
    for (double& q : envelope.qSamples) {
        q *= factor;
    }
    return true;
}
