#include "fit/trace_correction.h"

#include "base/parallel.h"
#include "fit/polyfit.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr quint32 degree = 20;

// The points that the fit sees, and the frequency that scales them.
struct Overlap
{
    QVector<double> frequencies;
    QVector<double> levels;
    double norm = 1.0;
};

struct Polynomial
{
    QVector<double> coefficients;
    double norm;
    double top; // the correction is the distance below it
};

// Both ends start at 0: a trace that ends below the last line leaves last there, and then one
// point is left, whose fit gives no numbers, or none, which ends the job. Deliberate: nothing is
// extrapolated beyond the trace.
Overlap overlapWith(const QVector<double>& lines, const AnalyzerTrace& trace)
{
    int first = 0;
    int last = 0;
    bool firstFound = false;
    for (int k = 0; k < trace.pointCount(); ++k) {
        const double frequency = trace.frequencies.at(k);
        if (frequency < lines.first()) {
            continue;
        }
        if (frequency >= lines.last()) {
            last = k;
            break;
        }
        if (!firstFound) {
            first = k;
            firstFound = true;
        }
    }
    const int count = last - first + 1;
    if (count < 1) {
        return {};
    }
    // Deliberate: the norm is element count - 1 of the whole trace, not of the part that
    // overlaps. Corrections that operators have stored signals with rely on these bits.
    return {trace.frequencies.mid(first, count), trace.levels.mid(first, count),
            trace.frequencies.at(count - 1)};
}

double valueAscending(const QVector<double>& coefficients, double x)
{
    double value = 0.0;
    double power = 1.0;
    for (const double coefficient : coefficients) {
        value += coefficient * power;
        power *= x;
    }
    return value;
}

// The power of 2 by multiplication, the others by pow: this fixes the bits of the correction.
double valueDescending(const QVector<double>& coefficients, double x)
{
    double value = 0.0;
    for (int k = coefficients.size() - 1; k >= 0; --k) {
        value += coefficients.at(k) * (k == 2 ? x * x : std::pow(x, double(k)));
    }
    return value;
}

Polynomial fitTo(const Overlap& points, const std::atomic<bool>* abandoned)
{
    QVector<double> scaled = points.frequencies;
    for (double& frequency : scaled) {
        frequency /= points.norm;
    }
    Polynomial fit{polyfit(scaled, points.levels, degree, abandoned), points.norm, 0.0};
    for (const double x : qAsConst(scaled)) {
        const double value = valueAscending(fit.coefficients, x);
        if (value > fit.top) {
            fit.top = value;
        }
    }
    return fit;
}

} // namespace

QVector<double> lineFrequencies(int lineCount, double sampleRate, double lineSpacing)
{
    QVector<double> lines(lineCount);
    for (int i = 0; i < lineCount; ++i) {
        lines[i] = i * lineSpacing - sampleRate * 0.5;
    }
    return lines;
}

QVector<double> directCorrection(const AnalyzerTrace& trace, int lineCount)
{
    // Deliberate: never below 0. Operators rely on the correction of a trace that lies below 0 dBm
    // as a whole to carry its absolute level.
    double top = 0.0;
    for (const double level : trace.levels) {
        if (level > top) {
            top = level;
        }
    }
    QVector<double> correction(lineCount, 0.0);
    // Deliberate: by index and not by frequency. Traces stored with one point a line rely on it.
    for (int i = 0; i < trace.pointCount(); ++i) {
        correction[i] = top - trace.levels.at(i);
    }
    return correction;
}

QVector<double> polynomialCorrection(const AnalyzerTrace& trace, const QVector<double>& lines,
                                     const std::atomic<bool>* abandoned)
{
    const auto isAbandoned = [abandoned] { return abandoned != nullptr && *abandoned; };
    const Polynomial fit = fitTo(overlapWith(lines, trace), abandoned);
    QVector<double> correction(lines.size());
    double* values = correction.data(); // detached here, on one thread
    inRuns(static_cast<quint64>(lines.size()), [&](quint64 first, quint64 end) {
        if (isAbandoned()) {
            return;
        }
        for (auto i = static_cast<int>(first); i < static_cast<int>(end); ++i) {
            values[i] = fit.top - valueDescending(fit.coefficients, lines.at(i) / fit.norm);
        }
    });
    return isAbandoned() ? QVector<double>() : correction;
}
