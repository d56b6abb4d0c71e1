// The readings of one point, and what they make together. Powers of notch and reference are
// averaged apart, in milliwatts, and the reading 10 lg(1 + NPR) is turned back: the signal is what
// the reference has more than the notch.
#pragma once

#include "campaign/bench.h"

class PointSums
{
public:
    // isNewStimulus: unlike all readings before in its seed.
    void add(const BenchReading& reading, bool isNewStimulus);

    bool isEmpty() const { return count == 0; }
    NprPoint point(double level, const NumberedNotch& notch) const;

private:
    struct Scatter
    {
        double lines;    // relative variance of the notch's power from its lines
        double peaks;    // from the peaks that make the distortion, seen or to be expected
        double readings; // as the readings themselves scatter
    };

    Scatter scatter(int lines) const;
    double ownScatter() const;
    double expectedPeakScatter() const;

    int count = 0;
    int stimuli = 0;
    double reference = 0.0; // sums, mW
    double notch = 0.0;
    double notchSquares = 0.0; // mW^2
    double stimulus = 0.0;
    double noise = 0.0;
    DistortionEnergy distortion; // of the new stimuli
    RarePeaks rarePeaks;         // of one of them
    bool isKnown = true;         // by origin
    bool isOverloaded = false;
};
