// The lines of a periodic signal from whole periods of it: no window, no leakage. What is the same
// in each period stands in the lines; what differs is noise, whose density follows from how the
// lines scatter from period to period.
#pragma once

#include "recording/bands.h"
#include "recording/segment_pass.h"

// Of the recording's own lines, in some bands.
class PeriodLines
{
public:
    // The lines within the bands are summed over as many periods as there are from sample first on.
    // period is their length in samples, a power of two. Throws what sumSegments throws.
    PeriodLines(const SampleReader& reader, double sampleRate, qint64 first, int period,
                const QVector<Bands>& bands, const ReadingProgress& progress);

    struct Density
    {
        double all = 0.0;            // full scale^2 / Hz, of lines and noise; 0 without a line
        std::optional<double> noise; // none with one period
        int lines = 0;

        double periodic() const { return all - noise.value_or(0.0); }
    };
    // Of bands that were given before.
    Density in(const Bands& wanted) const;

    qint64 periods() const { return count; }
    const LevelSums& levels() const { return pass.levels; }

private:
    struct Sums
    {
        double re, im, squares;
    };

    PassResult sumLines(const SampleReader& reader, qint64 first, int period,
                        const ReadingProgress& progress) const;

    const double spacing;   // Hz
    const double scale;     // of a squared line to a density
    std::vector<int> lines; // ascending, negative below 0 Hz
    qint64 count = 0;
    PassResult pass; // three sums a line: real part, imaginary part, square
};
