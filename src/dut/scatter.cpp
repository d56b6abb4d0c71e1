#include "dut/scatter.h"

#include "transform/vector_clones.h"

#include <algorithm>
#include <numeric>

namespace {

// The components of an envelope, for loops of which a compiler can take several turns at once.
struct Parts
{
    const double* i;
    const double* q;

    explicit Parts(const Envelope& envelope)
        : i(envelope.iSamples.constData()), q(envelope.qSamples.constData())
    {
    }
};

// Sums of what meets at the same sample, in eight rows that are added up at the end: the compiler
// may not change the order of a sum by itself.
struct Correlation
{
    static constexpr int rows = 8;

    double re[rows] = {};
    double im[rows] = {};
    double power[rows] = {};

    void add(int row, double xi, double xq, double yi, double yq)
    {
        re[row] += xi * yi + xq * yq;
        im[row] += xi * yq - xq * yi;
        power[row] += xi * xi + xq * xq;
    }
};

double total(const double* rows)
{
    return std::accumulate(rows, rows + Correlation::rows, 0.0);
}

} // namespace

DistortionEnergy& DistortionEnergy::operator+=(const DistortionEnergy& other)
{
    sum += other.sum;
    squares += other.squares;
    return *this;
}

VECTOR_CLONES std::complex<double> correlatedGain(const Envelope& input, const Envelope& output)
{
    const Parts x(input);
    const Parts y(output);
    const int count = input.size();
    Correlation sums;
    int k = 0;
    for (; k + Correlation::rows <= count; k += Correlation::rows) {
        for (int row = 0; row < Correlation::rows; ++row) {
            sums.add(row, x.i[k + row], x.q[k + row], y.i[k + row], y.q[k + row]);
        }
    }
    for (; k < count; ++k) {
        sums.add(0, x.i[k], x.q[k], y.i[k], y.q[k]);
    }
    const double power = total(sums.power);
    return power > 0.0 ? std::complex<double>(total(sums.re), total(sums.im)) / power : 0.0;
}

DistortionEnergy distortionEnergy(const Envelope& input, const Envelope& output,
                                  std::complex<double> gain, int stretchLength)
{
    const Parts x(input);
    const Parts y(output);
    const double re = gain.real();
    const double im = gain.imag();
    DistortionEnergy all;
    for (int first = 0; first < input.size(); first += stretchLength) {
        double energy = 0.0;
        for (int k = first; k < std::min(first + stretchLength, input.size()); ++k) {
            const double di = y.i[k] - (re * x.i[k] - im * x.q[k]);
            const double dq = y.q[k] - (re * x.q[k] + im * x.i[k]);
            energy += di * di + dq * dq;
        }
        all += {energy, energy * energy};
    }
    return all;
}

DistortionEnergy distortionEnergy(const Envelope& input, const Envelope& output, int stretchLength)
{
    return distortionEnergy(input, output, correlatedGain(input, output), stretchLength);
}
