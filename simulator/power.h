// Powers in milliwatts and dBm.
#pragma once

#include "simulator/played_signal.h"

#include <cmath>

inline double milliwatts(double dbm)
{
    return std::pow(10.0, dbm / 10.0);
}

// Mean square of the samples' magnitudes; not-a-number for an empty signal.
inline double meanPower(const PlayedSignal& signal)
{
    double sum = 0.0;
    for (int k = 0; k < signal.size(); ++k) {
        const double i = signal.iSamples.at(k);
        const double q = signal.qSamples.at(k);
        sum += i * i + q * q;
    }
    return sum / signal.size();
}
