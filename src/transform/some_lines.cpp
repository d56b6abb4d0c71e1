#include "transform/some_lines.h"

#include "transform/pi.h"
#include "transform/vector_clones.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

namespace {

constexpr int parts = SomeLines::shortestPeriod; // into which a period is dealt out
constexpr int lanes = SomeLines::rowLength;      // parts that are transformed side by side
constexpr int runLength = 512; // lines between two exact starts of the recurrence of twiddles

constexpr int cachedRows = 4096; // of lanes, half a MiB
constexpr int prefetched = 12;   // lines ahead

static_assert(SomeLines::groupCount * lanes == parts);

struct Turn
{
    double re;
    double im;
};

// exp(-j 2 pi numerator / denominator)
Turn turnOf(qint64 numerator, qint64 denominator)
{
    const double angle =
        -2.0 * pi * static_cast<double>(numerator % denominator) / static_cast<double>(denominator);
    return {std::cos(angle), std::sin(angle)};
}

// One butterfly of four rows of lanes; the outputs lie as two stages of two would leave them.
struct Butterfly
{
    double* re;
    double* im;
    std::ptrdiff_t quarter; // doubles from one input row to the next
    Turn w1;
    Turn w2;
    Turn w3;
};

inline void butterfly(const Butterfly& b)
{
    double* const re = b.re;
    double* const im = b.im;
    const std::ptrdiff_t q = b.quarter;
    IN_ANY_ORDER
    for (int l = 0; l < lanes; ++l) {
        const double sumAcRe = re[l] + re[l + 2 * q];
        const double sumAcIm = im[l] + im[l + 2 * q];
        const double difAcRe = re[l] - re[l + 2 * q];
        const double difAcIm = im[l] - im[l + 2 * q];
        const double sumBdRe = re[l + q] + re[l + 3 * q];
        const double sumBdIm = im[l + q] + im[l + 3 * q];
        const double difBdRe = re[l + q] - re[l + 3 * q];
        const double difBdIm = im[l + q] - im[l + 3 * q];
        const double twoRe = sumAcRe - sumBdRe;
        const double twoIm = sumAcIm - sumBdIm;
        const double oneRe = difAcRe + difBdIm;
        const double oneIm = difAcIm - difBdRe;
        const double threeRe = difAcRe - difBdIm;
        const double threeIm = difAcIm + difBdRe;
        re[l] = sumAcRe + sumBdRe;
        im[l] = sumAcIm + sumBdIm;
        re[l + q] = twoRe * b.w2.re - twoIm * b.w2.im;
        im[l + q] = twoRe * b.w2.im + twoIm * b.w2.re;
        re[l + 2 * q] = oneRe * b.w1.re - oneIm * b.w1.im;
        im[l + 2 * q] = oneRe * b.w1.im + oneIm * b.w1.re;
        re[l + 3 * q] = threeRe * b.w3.re - threeIm * b.w3.im;
        im[l + 3 * q] = threeRe * b.w3.im + threeIm * b.w3.re;
    }
}

inline void lastPairs(double* re, double* im, int rows)
{
    for (int row = 0; row < rows; row += 2) {
        double* const r = re + std::ptrdiff_t{row} * lanes;
        double* const i = im + std::ptrdiff_t{row} * lanes;
        IN_ANY_ORDER
        for (int l = 0; l < lanes; ++l) {
            const double dRe = r[l] - r[l + lanes];
            const double dIm = i[l] - i[l + lanes];
            r[l] += r[l + lanes];
            i[l] += i[l + lanes];
            r[l + lanes] = dRe;
            i[l + lanes] = dIm;
        }
    }
}

// Rows (time) of all lanes, side by side.
struct Rows
{
    double* re;
    double* im;
    int count;
};

struct Twiddles
{
    const double* re;
    const double* im;
    int count; // of a whole turn
};

// One stage of butterflies over blocks of size rows.
inline void stage(Rows rows, int size, Twiddles twiddles)
{
    const int quarter = size / 4;
    const int step = twiddles.count / size;
    for (int start = 0; start < rows.count; start += size) {
        for (int j = 0; j < quarter; ++j) {
            const std::ptrdiff_t at = std::ptrdiff_t{start + j} * lanes;
            const std::ptrdiff_t t = std::ptrdiff_t{j} * step;
            butterfly({rows.re + at,
                       rows.im + at,
                       std::ptrdiff_t{quarter} * lanes,
                       {twiddles.re[t], twiddles.im[t]},
                       {twiddles.re[2 * t], twiddles.im[2 * t]},
                       {twiddles.re[3 * t], twiddles.im[3 * t]}});
        }
    }
}

// Transforms in place; row f ends at the bit-reversed f. A block that fits the cache goes through
// all its stages before the next one.
VECTOR_CLONES void transformRows(Rows rows, Twiddles twiddles)
{
    int size = rows.count;
    for (; size > cachedRows; size /= 4) {
        stage(rows, size, twiddles);
    }
    for (int start = 0; start < rows.count; start += size) {
        const std::ptrdiff_t at = std::ptrdiff_t{start} * lanes;
        const Rows block{rows.re + at, rows.im + at, size};
        int within = size;
        for (; within >= 4; within /= 4) {
            stage(block, within, twiddles);
        }
        if (within == 2) {
            lastPairs(block.re, block.im, block.count);
        }
    }
}

// Twiddles of the lanes at a line, and their way to the next one.
struct LaneTurns
{
    double re[lanes];
    double im[lanes];
    double stepRe[lanes];
    double stepIm[lanes];
};

inline double total(const EightDoubles& v)
{
    return ((v[0] + v[4]) + (v[1] + v[5])) + ((v[2] + v[6]) + (v[3] + v[7]));
}

// Neighbouring lines of which the first stands at index of the short period.
struct Neighbours
{
    const int* rowOf;
    int index;
    int mask;
    int count;
};

// The sum over the lanes of row times twiddle, for each line.
VECTOR_CLONES void gatherRun(const LaneTurns& turns, const double* rowsRe, const double* rowsIm,
                             Neighbours run, double* re, double* im)
{
    EightDoubles turnRe;
    EightDoubles turnIm;
    EightDoubles stepRe;
    EightDoubles stepIm;
    load(turns.re, turnRe);
    load(turns.im, turnIm);
    load(turns.stepRe, stepRe);
    load(turns.stepIm, stepIm);
    for (int k = 0; k < run.count; ++k) {
        // Rows lie far apart: those that come next are on their way meanwhile.
        const std::ptrdiff_t coming =
            std::ptrdiff_t{run.rowOf[(run.index + k + prefetched) & run.mask]} * lanes;
        PREFETCH(rowsRe + coming);
        PREFETCH(rowsIm + coming);
        const std::ptrdiff_t row = std::ptrdiff_t{run.rowOf[(run.index + k) & run.mask]} * lanes;
        EightDoubles rowRe;
        EightDoubles rowIm;
        load(rowsRe + row, rowRe);
        load(rowsIm + row, rowIm);
        re[k] += total(rowRe * turnRe - rowIm * turnIm);
        im[k] += total(rowRe * turnIm + rowIm * turnRe);
        const EightDoubles next = turnRe * stepRe - turnIm * stepIm;
        turnIm = turnRe * stepIm + turnIm * stepRe;
        turnRe = next;
    }
}

int reversed(int value, int bits)
{
    int result = 0;
    for (int bit = 0; bit < bits; ++bit) {
        result = 2 * result + ((value >> bit) & 1);
    }
    return result;
}

VECTOR_CLONES void takeLanes(const double* samples, double* rows, int count)
{
    for (int row = 0; row < count; ++row) {
        for (int l = 0; l < lanes; ++l) {
            rows[std::ptrdiff_t{row} * lanes + l] = samples[std::ptrdiff_t{row} * parts + l];
        }
    }
}

// Room for rows that each lie in one line of the cache.
double* beginOfRows(std::vector<double>& buffer, std::size_t size)
{
    constexpr std::size_t row = lanes * sizeof(double);
    buffer.resize(size + lanes);
    void* begin = buffer.data();
    std::size_t room = buffer.size() * sizeof(double);
    return static_cast<double*>(std::align(row, size * sizeof(double), begin, room));
}

} // namespace

SomeLines::SomeLines(int periodLength, QVector<Range> wanted)
    : period(periodLength), shortPeriod(periodLength / parts), ranges(std::move(wanted))
{
    const int bits = static_cast<int>(std::lround(std::log2(shortPeriod)));
    for (int t = 0; t < shortPeriod; ++t) {
        const Turn turn = turnOf(t, shortPeriod);
        twiddles.re.push_back(turn.re);
        twiddles.im.push_back(turn.im);
        rowOf.push_back(reversed(t, bits));
    }
    for (int part = 0; part < parts; ++part) {
        const Turn step = turnOf(part, period);
        steps.re.push_back(step.re);
        steps.im.push_back(step.im);
    }
    for (const Range& range : qAsConst(ranges)) {
        addRuns(range);
    }
}

void SomeLines::addRuns(Range range)
{
    for (int done = 0; done < range.count; done += runLength) {
        Run run{{range.first + done, std::min(runLength, range.count - done)}, {}};
        for (int part = 0; part < parts; ++part) {
            const Turn start = turnOf(qint64{run.lines.first} * part, period);
            run.turns.re.push_back(start.re);
            run.turns.im.push_back(start.im);
        }
        lineCount += run.lines.count;
        runs.push_back(std::move(run));
    }
}

QVector<double> SomeLines::powers(const double* re, const double* im) const
{
    Workspace workspace;
    const auto deal = [=](int group, double* rowsRe, double* rowsIm) {
        const std::ptrdiff_t first = std::ptrdiff_t{group} * lanes;
        takeLanes(re + first, rowsRe, shortPeriod);
        takeLanes(im + first, rowsIm, shortPeriod);
    };
    return powers(deal, workspace);
}

QVector<double> SomeLines::powers(const Fill& fill, Workspace& workspace) const
{
    const auto size = static_cast<std::size_t>(shortPeriod) * lanes;
    double* const re = beginOfRows(workspace.rows.re, size);
    double* const im = beginOfRows(workspace.rows.im, size);
    Lines& sums = workspace.sums;
    sums.re.assign(static_cast<std::size_t>(lineCount), 0.0);
    sums.im.assign(static_cast<std::size_t>(lineCount), 0.0);
    for (int group = 0; group < groupCount; ++group) {
        fill(group, re, im);
        transformRows({re, im, shortPeriod}, {twiddles.re.data(), twiddles.im.data(), shortPeriod});
        addLanes(group * lanes, re, im, sums);
    }
    return powersOf(sums);
}

QVector<double> SomeLines::powersOf(const Lines& sums) const
{
    QVector<double> result;
    std::size_t at = 0;
    const double scale = 1.0 / (static_cast<double>(period) * period);
    for (const Range& range : ranges) {
        double sum = 0.0;
        for (int k = 0; k < range.count; ++k, ++at) {
            sum += sums.re[at] * sums.re[at] + sums.im[at] * sums.im[at];
        }
        result << sum * scale;
    }
    return result;
}

void SomeLines::addLanes(int lane, const double* rowsRe, const double* rowsIm, Lines& sums) const
{
    const int mask = shortPeriod - 1;
    std::size_t at = 0;
    for (const Run& run : runs) {
        LaneTurns w{};
        std::copy_n(run.turns.re.data() + lane, lanes, w.re);
        std::copy_n(run.turns.im.data() + lane, lanes, w.im);
        std::copy_n(steps.re.data() + lane, lanes, w.stepRe);
        std::copy_n(steps.im.data() + lane, lanes, w.stepIm);
        gatherRun(w, rowsRe, rowsIm, {rowOf.data(), run.lines.first & mask, mask, run.lines.count},
                  sums.re.data() + at, sums.im.data() + at);
        at += static_cast<std::size_t>(run.lines.count);
    }
}
