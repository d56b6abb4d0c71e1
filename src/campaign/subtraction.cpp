#include "campaign/subtraction.h"

#include "campaign/notch_rows.h"
#include "transform/decibels.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double fullMargin = 3.0; // dB
constexpr double sameLevel = 1e-6; // dB, rounding of level steps

bool isSamePlace(const NprPoint& a, const NprPoint& b)
{
    return std::abs(a.level - b.level) < sameLevel &&
           isSameNotch(a.center, a.width, b.center, b.width);
}

// Levels that are the same lie in one cell or in two neighbours.
double cellOf(double level)
{
    return std::floor(level / (2.0 * sameLevel));
}

std::pair<double, double> orderOf(const NprPoint& point)
{
    return {cellOf(point.level), point.center};
}

// Power in the notch over the signal's.
double share(double npr)
{
    return std::pow(10.0, -npr / 10.0);
}

void subtract(const NprPoint& bench, NprPoint& point)
{
    if (!point.npr) {
        return;
    }
    const double all = share(*point.npr);
    const double ofBench = bench.npr ? share(*bench.npr) : all;
    if (!bench.npr || *bench.npr - *point.npr < fullMargin) {
        point.addMark(PointMark::margin);
    }
    const double left = all - ofBench;
    if (!(left > 0.0)) {
        return;
    }
    point.npr = -decibels(left);
    if (point.sigma && bench.sigma) {
        // Both scatter; what is left of them is smaller than either.
        point.sigma = std::hypot(all * *point.sigma, ofBench * *bench.sigma) / left;
    }
}

// Empty where all points have one.
QString missingCounterpart(const BenchPoints& without, const QVector<NprPoint>& points)
{
    for (const NprPoint& point : points) {
        if (without.at(point) == nullptr) {
            return QStringLiteral("it has no point at %1 dBm for the notch at %2 Hz, %3 Hz wide")
                .arg(point.level)
                .arg(point.center)
                .arg(point.width);
        }
    }
    return {};
}

QVector<NprPoint> placesOf(const CampaignPlan& plan)
{
    QVector<NprPoint> places;
    for (const double level : plan.levels) {
        for (const NumberedNotch& notch : plan.notches) {
            NprPoint place;
            place.level = level;
            place.center = notch.notch.center;
            place.width = notch.notch.width;
            places << place;
        }
    }
    return places;
}

// Hz; 0 where the settings don't tell it.
double noiseBandwidth(const NprResult& result)
{
    const QMap<QString, QString> settings = result.config.value(QStringLiteral("NPR"));
    return settings.value(QStringLiteral("SRate")).toDouble() *
           settings.value(QStringLiteral("NBW/SRate")).toDouble();
}

} // namespace

QString objectionToSubtracting(const NprResult& without, const NprResult& wanted,
                               const CampaignPlan& plan)
{
    constexpr double rounding = 1e-5; // a file keeps six digits
    if (without.levelUnit != wanted.levelUnit) {
        return "its levels are in " + nameOf(without.levelUnit) + " and not in " +
               nameOf(wanted.levelUnit);
    }
    const double its = noiseBandwidth(without);
    const double ours = noiseBandwidth(wanted);
    if (!(std::abs(its - ours) <= rounding * ours)) {
        return QStringLiteral("its noise is %1 Hz wide and not %2 Hz").arg(its).arg(ours);
    }
    return missingCounterpart(BenchPoints(without.points), placesOf(plan));
}

BenchPoints::BenchPoints(const QVector<NprPoint>& measured) : points(measured)
{
    std::stable_sort(points.begin(), points.end(),
                     [](const NprPoint& a, const NprPoint& b) { return orderOf(a) < orderOf(b); });
}

const NprPoint* BenchPoints::at(const NprPoint& place) const
{
    const double reach = 1e-5 * std::abs(place.width); // more than centres of one notch differ by
    const double middle = cellOf(place.level);
    for (const double cell : {middle - 1.0, middle, middle + 1.0}) {
        const std::pair<double, double> low(cell, place.center - reach);
        const std::pair<double, double> high(cell, place.center + reach);
        const auto* candidate = std::lower_bound(
            points.begin(), points.end(), low,
            [](const NprPoint& point, const auto& bound) { return orderOf(point) < bound; });
        for (; candidate != points.end() && orderOf(*candidate) <= high; ++candidate) {
            if (isSamePlace(*candidate, place)) {
                return candidate;
            }
        }
    }
    return nullptr;
}

QString subtractBench(const BenchPoints& without, QVector<NprPoint>& points)
{
    QString missing = missingCounterpart(without, points);
    if (!missing.isEmpty()) {
        return missing;
    }
    for (NprPoint& point : points) {
        subtract(*without.at(point), point);
    }
    return {};
}

QString subtractBench(const QVector<NprPoint>& without, QVector<NprPoint>& points)
{
    return subtractBench(BenchPoints(without), points);
}
