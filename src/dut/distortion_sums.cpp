#include "dut/distortion_sums.h"

#include "transform/vector_clones.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int rowLength = SomeLines::rowLength;
constexpr int half = rowLength / 2;

// Of each sample of a row.
struct RowProducts
{
    double input[rowLength];
    double output[rowLength];
    double re[rowLength];
    double im[rowLength];
};

inline RowProducts productsOf(const double* xi, const double* xq, const double* yi,
                              const double* yq)
{
    RowProducts row;
    for (int l = 0; l < rowLength; ++l) {
        row.input[l] = xi[l] * xi[l] + xq[l] * xq[l];
        row.output[l] = yi[l] * yi[l] + yq[l] * yq[l];
        row.re[l] = xi[l] * yi[l] + xq[l] * yq[l];
        row.im[l] = xi[l] * yq[l] - xq[l] * yi[l];
    }
    return row;
}

inline double sumOf(const double* values)
{
    return (values[0] + values[1]) + (values[2] + values[3]);
}

// stretches: the products of the first row's, all of them in turns.
VECTOR_CLONES void addRows(const DistortionSums::Rows& rows, double* stretches,
                           int halvesPerStretch)
{
    for (int r = 0; r < rows.count; ++r) {
        const std::ptrdiff_t at = std::ptrdiff_t{r} * rowLength;
        const RowProducts row =
            productsOf(rows.inputI + at, rows.inputQ + at, rows.outputI + at, rows.outputQ + at);
        const std::ptrdiff_t place =
            2 * (std::ptrdiff_t{rows.first + r} * SomeLines::groupCount + rows.group);
        for (int h = 0; h < 2; ++h) {
            double* const stretch = stretches + (place + h) / halvesPerStretch * 4;
            stretch[0] += sumOf(row.input + h * half);
            stretch[1] += sumOf(row.output + h * half);
            stretch[2] += sumOf(row.re + h * half);
            stretch[3] += sumOf(row.im + h * half);
        }
    }
}

} // namespace

void DistortionSums::begin(int samples, int stretchLength)
{
    halvesPerStretch = stretchLength / half;
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
