#include "dut/distortion_sums.h"

#include "transform/vector_clones.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int rowLength = SomeLines::rowLength;
constexpr int halfLength = rowLength / 2;

inline double sumOfHalf(const EightDoubles& row, int half)
{
    const int first = half * halfLength;
    return (row[first] + row[first + 1]) + (row[first + 2] + row[first + 3]);
}

// stretches: the products of the first row's, all of them in turns.
VECTOR_CLONES void addRows(const DistortionSums::Rows& rows, double* stretches,
                           int halvesPerStretch)
{
    for (int r = 0; r < rows.count; ++r) {
        const std::ptrdiff_t at = std::ptrdiff_t{r} * rowLength;
        EightDoubles xi;
        EightDoubles xq;
        EightDoubles yi;
        EightDoubles yq;
        load(rows.inputI + at, xi);
        load(rows.inputQ + at, xq);
        load(rows.outputI + at, yi);
        load(rows.outputQ + at, yq);
        const EightDoubles input = xi * xi + xq * xq;
        const EightDoubles output = yi * yi + yq * yq;
        const EightDoubles re = xi * yi + xq * yq;
        const EightDoubles im = xi * yq - xq * yi;
        const std::ptrdiff_t place =
            2 * (std::ptrdiff_t{rows.first + r} * SomeLines::groupCount + rows.group);
        for (int half = 0; half < 2; ++half) {
            double* const stretch = stretches + (place + half) / halvesPerStretch * 4;
            stretch[0] += sumOfHalf(input, half);
            stretch[1] += sumOfHalf(output, half);
            stretch[2] += sumOfHalf(re, half);
            stretch[3] += sumOfHalf(im, half);
        }
    }
}

} // namespace

void DistortionSums::begin(int samples, int stretchLength)
{
    halvesPerStretch = stretchLength / halfLength;
    stretches.assign(static_cast<std::size_t>(samples / stretchLength), Products());
}

void DistortionSums::add(const Rows& rows)
{
    static_assert(sizeof(Products) == 4 * sizeof(double));
    addRows(rows, &stretches.data()->input, halvesPerStretch);
}

std::complex<double> DistortionSums::gain() const
{
    Products all;
    for (const Products& stretch : stretches) {
        all.input += stretch.input;
        all.re += stretch.re;
        all.im += stretch.im;
    }
    return all.input > 0.0 ? std::complex<double>(all.re, all.im) / all.input : 0.0;
}

DistortionEnergy DistortionSums::energy() const
{
    constexpr double rounding = 4e-15; // what is left of a device that adds nothing
    const std::complex<double> c = gain();
    DistortionEnergy all;
    for (const Products& stretch : stretches) {
        const double alike = 2.0 * (c.real() * stretch.re + c.imag() * stretch.im);
        const double energy = stretch.output - alike + std::norm(c) * stretch.input;
        if (energy > rounding * stretch.output) {
            all += {energy, energy * energy};
        }
    }
    return all;
}
