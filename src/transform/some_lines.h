// Some lines of the spectrum of a long period, for a fraction of what all of them cost: the period
// is dealt out to 32 short ones, whose transforms run eight abreast in the cache, and only the
// lines that are asked for are put together from them.
//
// The result depends on the samples alone, not on the number of cores. Any number of threads may
// use one object at once.
#pragma once

#include <QVector>

#include <vector>

class SomeLines
{
public:
    // Neighbouring lines, counted from zero frequency; negative below it.
    struct Range
    {
        int first;
        int count;
    };

    static constexpr int shortestPeriod = 32;

    // period: number of samples, a power of two of at least shortestPeriod.
    SomeLines(int period, QVector<Range> ranges);

    // For each range the sum over its lines of the squared magnitude of
    // X[k] = 1/period times the sum over n of (re[n] + j im[n]) exp(-j 2 pi k n / period).
    // Both arrays hold a whole period.
    QVector<double> powers(const double* re, const double* im) const;

private:
    struct Lines
    {
        std::vector<double> re;
        std::vector<double> im;
    };

    // Neighbouring lines of a range, few enough for a recurrence, with the twiddles of all parts at
    // the first of them.
    struct Run
    {
        Range lines;
        Lines turns;
    };

    void addRuns(Range range);
    void addLanes(int lane, const Lines& rows, Lines& sums) const;

    int period;
    int shortPeriod;
    QVector<Range> ranges;
    std::vector<Run> runs;  // of all ranges, in their order
    int lineCount = 0;      // of all ranges
    Lines twiddles;         // exp(-j 2 pi t / shortPeriod)
    Lines steps;            // of the parts, from line to line
    std::vector<int> rowOf; // where the transform leaves a line of the short period
};
