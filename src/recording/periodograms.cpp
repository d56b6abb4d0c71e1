#include "recording/periodograms.h"

#include "recording/kaiser_window.h"
#include "transform/transform.h"
#include "transform/vector_clones.h"

#include <algorithm>
#include <utility>

namespace {

VECTOR_CLONES
void weigh(double* values, const double* window, quint64 length)
{
    IN_ANY_ORDER
    for (quint64 k = 0; k < length; ++k) {
        values[k] *= window[k];
    }
}

VECTOR_CLONES
void addSquares(const double* re, const double* im, double* sums, quint64 length)
{
    IN_ANY_ORDER
    for (quint64 k = 0; k < length; ++k) {
        sums[k] += re[k] * re[k] + im[k] * im[k];
    }
}

double powerOf(const std::vector<double>& window)
{
    double sum = 0.0;
    for (const double value : window) {
        sum += value * value;
    }
    return sum / static_cast<double>(window.size());
}

} // namespace

PowerDensity powerDensity(const SampleReader& reader, double sampleRate, qint64 first, int length,
                          const ReadingProgress& progress)
{
    const std::vector<double> window = kaiserWindow(length);
    const Segments segments =
        segmentsBetween(first, reader.recording().samples, length, length / hopDivisor);
    const auto points = static_cast<quint64>(length);
    const PreparedTransform transform(points, threadsWithin(length));
    PassResult pass = sumSegments(
        reader, segments, points,
        [&](Split segment, double* sums) {
            weigh(segment.re, window.data(), points);
            weigh(segment.im, window.data(), points);
            transform.run(segment);
            addSquares(segment.re, segment.im, sums, points);
        },
        progress);
    // The transform has a positive exponent, so the value of frequency k stands at -k.
    std::reverse(pass.sums.begin() + 1, pass.sums.end());
    // A real signal's envelope has 4 times the power of its positive half.
    const double scale = (reader.recording().type->isComplex ? 1.0 : 4.0) /
                         (powerOf(window) * sampleRate * static_cast<double>(segments.count));
    for (double& bin : pass.sums) {
        bin *= scale;
    }
    return {std::move(pass.sums), sampleRate / length, segments.count, std::move(pass.levels)};
}

BandDensity densityIn(const Bands& bands, const PowerDensity& density)
{
    BandDensity result;
    const auto length = static_cast<qint64>(density.bins.size());
    for (const FrequencyBand& band : bands) {
        const LineRange range = linesIn(band, density.spacing);
        for (int k = range.first; k <= range.last; ++k) {
            result.density += density.bins[static_cast<std::size_t>((k + length) % length)];
            ++result.bins;
        }
    }
    if (result.bins > 0) {
        result.density /= result.bins;
        result.cells =
            independentCells(result.bins, static_cast<double>(density.segments), hopDivisor);
    }
    return result;
}
