// Some lines of the spectrum of a long period, for a fraction of what all of them cost: the period
// is dealt out to 32 short ones, whose transforms run eight abreast in the cache, and only the
// lines that are asked for are put together from them.
//
// The result depends on the samples alone, not on the number of cores. Any number of threads may
// use one object at once.
#pragma once

#include <QVector>

#include <functional>
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

    // A period is worked off in groups: row r of group g has the eight neighbouring samples from
    // index 32 r + 8 g on.
    static constexpr int groupCount = 4;
    static constexpr int rowLength = 8;

    // Writes all rows of a group, one behind the other.
    using Fill = std::function<void(int group, double* re, double* im)>;

    // Buffers of one thread, which save later calls the allocation.
    struct Workspace;

    // period: number of samples, a power of two of at least shortestPeriod.
    SomeLines(int period, QVector<Range> ranges);

    // For each range the sum over its lines of the squared magnitude of
    // X[k] = 1/period times the sum over n of (re[n] + j im[n]) exp(-j 2 pi k n / period).
    // Both arrays hold a whole period.
    QVector<double> powers(const double* re, const double* im) const;

    // The same of samples that needn't exist all at once: fill is called once for each group, in
    // their order, and its group may be worked on in its place.
    QVector<double> powers(const Fill& fill, Workspace& workspace) const;

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
    void addLanes(int lane, const double* rowsRe, const double* rowsIm, Lines& sums) const;
    QVector<double> powersOf(const Lines& sums) const;

    int period;
    int shortPeriod;
    QVector<Range> ranges;
    std::vector<Run> runs;  // of all ranges, in their order
    int lineCount = 0;      // of all ranges
    Lines twiddles;         // exp(-j 2 pi t / shortPeriod)
    Lines steps;            // of the parts, from line to line
    std::vector<int> rowOf; // where the transform leaves a line of the short period
};

struct SomeLines::Workspace
{
    Lines rows;
    Lines sums;
};
