// How a device's output looks like its input, and what it added, gathered while the output is made:
// neither of them needs to exist as a whole. The energy of what was added follows from sums of each
// stretch; relative to the output's it is exact to some 1e-15, and counts as none below that.
//
// A period is taken in the groups of SomeLines. One thread for one object.
#pragma once

#include "dut/scatter.h"
#include "transform/some_lines.h"

#include <complex>
#include <vector>

class DistortionSums
{
public:
    // Begins anew, for so many samples in stretches of 4, 8 or 16.
    void begin(int samples, int stretchLength);

    // Rows of a group, one behind the other, of the device's input and output.
    struct Rows
    {
        int group;
        int first;
        int count;
        const double* inputI;
        const double* inputQ;
        const double* outputI;
        const double* outputQ;
    };
    void add(const Rows& rows);

    // The gain c that takes from the output all that looks like the input.
    std::complex<double> gain() const;
    // Of output - gain input.
    DistortionEnergy energy() const;

private:
    // Of a stretch: powers, and input conjugate times output.
    struct Products
    {
        double input = 0.0;
        double output = 0.0;
        double re = 0.0;
        double im = 0.0;
    };

    std::vector<Products> stretches;
    int halvesPerStretch = 1; // of rows, 4 samples each
};
