#include "dut/spectrum.h"

#include "transform/transform.h"

#include <cmath>
#include <numeric>

namespace {

constexpr int blockSize = 1024;

} // namespace

Spectrum::Spectrum(Envelope envelope)
    : power(envelope.size()), spacing(envelope.sampleRate / envelope.size())
{
    const int count = envelope.size();
    QVector<double>& re = envelope.iSamples;
    QVector<double>& im = envelope.qSamples;
    // Quadrature first: that turns the exponent's sign, so that a line above the carrier lands on
    // a positive index.
    forwardTransform(im, re, static_cast<quint32>(count));
    const int half = count / 2;
    for (int k = 0; k < count; ++k) {
        const int line = k < count - half ? k + half : k - (count - half);
        const double x = re.at(k);
        const double y = im.at(k);
        power[line] = (x * x + y * y) / count;
    }
    for (int start = 0; start + blockSize <= count; start += blockSize) {
        blockPower << linesBetween(start, start + blockSize);
    }
}

// Adds, never subtracts: a running total would drown a notch in the rounding of the whole band.
double Spectrum::powerBetween(double low, double high) const
{
    const int first = lineAtOrAbove(low);
    const int end = lineAtOrAbove(high);
    const int firstBlock = (first + blockSize - 1) / blockSize;
    const int endBlock = end / blockSize;
    if (firstBlock >= endBlock) {
        return linesBetween(first, end);
    }
    return linesBetween(first, firstBlock * blockSize) +
           std::accumulate(blockPower.begin() + firstBlock, blockPower.begin() + endBlock, 0.0) +
           linesBetween(endBlock * blockSize, end);
}

// The first line that isn't below the offset; the number of lines when all are.
int Spectrum::lineAtOrAbove(double offset) const
{
    const int carrier = power.size() / 2;
    const double line = std::ceil(offset / spacing - edgeTolerance) + carrier;
    if (!(line > 0.0)) {
        return 0;
    }
    return line < power.size() ? static_cast<int>(line) : power.size();
}

double Spectrum::linesBetween(int first, int end) const
{
    return first < end ? std::accumulate(power.begin() + first, power.begin() + end, 0.0) : 0.0;
}
