#include "campaign/subtraction.h"

#include "campaign/notch_rows.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double fullMargin = 3.0; // dB
constexpr double sameLevel = 1e-6; // dB, rounding of level steps

bool isSamePlace(const NprPoint& a, const NprPoint& b)
{
    return std::abs(a.level - b.level) < sameLevel &&
           isSameNotch(a.center, a.width, b.center, b.width);
}

const NprPoint* counterpart(const QVector<NprPoint>& points, const NprPoint& point)
{
    const auto found = std::find_if(points.begin(), points.end(), [&point](const NprPoint& other) {
        return isSamePlace(other, point);
    });
    return found == points.end() ? nullptr : &*found;
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
    point.npr = -10.0 * std::log10(left);
    if (point.sigma && bench.sigma) {
        // Both scatter; what is left of them is smaller than either.
        point.sigma = std::hypot(all * *point.sigma, ofBench * *bench.sigma) / left;
    }
}

} // namespace

QString subtractBench(const QVector<NprPoint>& without, QVector<NprPoint>& points)
{
    for (const NprPoint& point : qAsConst(points)) {
        if (counterpart(without, point) == nullptr) {
            return QStringLiteral("it has no point at %1 dBm for the notch at %2 Hz, %3 Hz wide")
                .arg(point.level)
                .arg(point.center)
                .arg(point.width);
        }
    }
    for (NprPoint& point : points) {
        subtract(*counterpart(without, point), point);
    }
    return {};
}
