#include "recording/whole_periods.h"

#include "transform/transform.h"

#include <algorithm>
#include <set>

namespace {

constexpr int sumsPerLine = 3;

std::vector<int> linesWithin(const QVector<Bands>& sets, double spacing)
{
    std::set<int> lines;
    for (const Bands& bands : sets) {
        for (const FrequencyBand& band : bands) {
            const LineRange range = linesIn(band, spacing);
            for (int line = range.first; line <= range.last; ++line) {
                lines.insert(lines.end(), line);
            }
        }
    }
    return {lines.begin(), lines.end()};
}

// The transform has a positive exponent, so the value of a line stands at its negative.
void addLines(Split spectrum, int length, const std::vector<int>& lines, double* sums)
{
    for (const int line : lines) {
        const int at = (length - line) % length;
        const double re = spectrum.re[at];
        const double im = spectrum.im[at];
        *sums++ += re;
        *sums++ += im;
        *sums++ += re * re + im * im;
    }
}

} // namespace

PeriodLines::PeriodLines(const SampleReader& reader, double sampleRate, qint64 first, int period,
                         const QVector<Bands>& bands, const ReadingProgress& progress)
    : spacing(sampleRate / period),
      // A real signal's envelope has 4 times the power of its positive half.
      scale((reader.recording().type->isComplex ? 1.0 : 4.0) / sampleRate),
      lines(linesWithin(bands, spacing)),
      count((reader.recording().samples - first) / period),
      pass(sumLines(reader, first, period, progress))
{
}

PassResult PeriodLines::sumLines(const SampleReader& reader, qint64 first, int period,
                                 const ReadingProgress& progress) const
{
    const PreparedTransform transform(static_cast<quint64>(period), threadsWithin(period));
    return sumSegments(
        reader, segmentsBetween(first, reader.recording().samples, period, period),
        lines.size() * sumsPerLine,
        [this, &transform, period](Split segment, double* sums) {
            transform.run(segment);
            addLines(segment, period, lines, sums);
        },
        progress);
}

PeriodLines::Density PeriodLines::in(const Bands& wanted) const
{
    Density density;
    double noise = 0.0;
    const auto periodCount = static_cast<double>(count);
    for (const FrequencyBand& band : wanted) {
        const LineRange range = linesIn(band, spacing);
        const auto begin = std::lower_bound(lines.begin(), lines.end(), range.first);
        for (auto line = begin; line != lines.end() && *line <= range.last; ++line) {
            const double* const sums =
                pass.sums.data() + (line - lines.begin()) * std::ptrdiff_t{sumsPerLine};
            density.all += sums[2] / periodCount;
            noise += sums[2] - (sums[0] * sums[0] + sums[1] * sums[1]) / periodCount;
            ++density.lines;
        }
    }
    if (density.lines > 0) {
        density.all *= scale / density.lines;
    }
    if (density.lines > 0 && count > 1) {
        density.noise = std::max(0.0, noise) * scale / (density.lines * (periodCount - 1.0));
    }
    return density;
}
