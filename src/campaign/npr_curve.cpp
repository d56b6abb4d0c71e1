#include "campaign/npr_curve.h"

#include <algorithm>

namespace {

struct Sample
{
    double level;
    std::optional<double> npr;
};

using Samples = QVector<Sample>; // by rising level

struct Vertex
{
    double level;
    double npr;
};

// Through three points of rising level of which the middle one is the highest.
Vertex vertexOf(Vertex low, Vertex middle, Vertex high)
{
    const double left = (middle.npr - low.npr) / (middle.level - low.level);
    const double right = (high.npr - middle.npr) / (high.level - middle.level);
    const double curvature = (right - left) / (high.level - low.level);
    if (!(curvature < 0.0)) {
        return middle; // three of the same height
    }
    // Newton's form around low: npr = low + left (x - low) + curvature (x - low) (x - middle).
    const double level = 0.5 * (low.level + middle.level) - 0.5 * left / curvature;
    return {level, low.npr + (level - low.level) * (left + curvature * (level - middle.level))};
}

// Index of the highest point; -1 when none has a ratio.
int highestOf(const Samples& samples)
{
    int highest = -1;
    for (int k = 0; k < samples.size(); ++k) {
        if (samples[k].npr && (highest < 0 || *samples[k].npr > *samples[highest].npr)) {
            highest = k;
        }
    }
    return highest;
}

// Through points of which two lie close together, or at one level, a parabola swings out far above
// all of them.
bool areEven(double step, double otherStep)
{
    constexpr double mostUneven = 4.0;
    const auto [least, most] = std::minmax(step, otherStep);
    return least > 0.0 && most <= mostUneven * least;
}

Vertex peakOf(const Samples& samples, int highest)
{
    const auto vertex = [&samples](int k) { return Vertex{samples[k].level, *samples[k].npr}; };
    const auto step = [&samples](int k) { return samples[k + 1].level - samples[k].level; };
    const bool hasNeighbours = highest > 0 && highest + 1 < samples.size() &&
                               samples[highest - 1].npr && samples[highest + 1].npr &&
                               areEven(step(highest - 1), step(highest));
    return hasNeighbours ? vertexOf(vertex(highest - 1), vertex(highest), vertex(highest + 1))
                         : vertex(highest);
}

// Where the curve falls through the threshold on its way from the highest point in steps of +-1.
std::optional<double> crossing(const Samples& samples, int highest, int step, double threshold)
{
    for (int k = highest + step; k >= 0 && k < samples.size() && samples[k].npr; k += step) {
        const Sample& above = samples[k - step];
        const Sample& below = samples[k];
        if (*below.npr < threshold) {
            const double share = (*above.npr - threshold) / (*above.npr - *below.npr);
            return above.level + share * (below.level - above.level);
        }
    }
    return std::nullopt;
}

NprRange rangeOf(const Samples& samples, int highest, double threshold)
{
    NprRange range{threshold, {}, {}};
    if (highest >= 0 && *samples[highest].npr >= threshold) {
        range.from = crossing(samples, highest, -1, threshold);
        range.to = crossing(samples, highest, +1, threshold);
    }
    return range;
}

NprCurve curveOf(int notch, Samples samples, const QVector<double>& thresholds)
{
    std::stable_sort(samples.begin(), samples.end(),
                     [](const Sample& a, const Sample& b) { return a.level < b.level; });
    NprCurve curve;
    curve.notch = notch;
    const int highest = highestOf(samples);
    if (highest >= 0) {
        const Vertex peak = peakOf(samples, highest);
        curve.peakNpr = peak.npr;
        curve.peakLevel = peak.level;
    }
    for (const double threshold : thresholds) {
        curve.ranges << rangeOf(samples, highest, threshold);
    }
    return curve;
}

} // namespace

QVector<NprCurve> curvesOf(const QVector<NprPoint>& points, const QVector<double>& thresholds)
{
    QMap<int, Samples> byNotch;
    for (const NprPoint& point : points) {
        byNotch[point.notch] << Sample{point.level, point.npr};
    }
    QVector<NprCurve> curves;
    for (auto notch = byNotch.cbegin(); notch != byNotch.cend(); ++notch) {
        curves << curveOf(notch.key(), notch.value(), thresholds);
    }
    return curves;
}

void addThresholds(const NprResult& result, QVector<double>& thresholds)
{
    for (const NprCurve& curve : result.curves) {
        for (const NprRange& range : curve.ranges) {
            if (!thresholds.contains(range.threshold)) {
                thresholds << range.threshold;
            }
        }
    }
}

void applyLimit(QVector<NprPoint>& points, double limit)
{
    for (NprPoint& point : points) {
        point.passed = point.npr && *point.npr >= limit;
    }
}

bool hasMissedLimit(const QVector<NprPoint>& points)
{
    return std::any_of(points.begin(), points.end(),
                       [](const NprPoint& point) { return point.passed && !*point.passed; });
}
