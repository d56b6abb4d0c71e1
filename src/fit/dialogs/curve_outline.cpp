#include "fit/dialogs/curve_outline.h"

#include <algorithm>
#include <array>

namespace {

bool liesLeft(const QPointF& a, const QPointF& b)
{
    return a.x() < b.x();
}

bool liesBelow(const QPointF& a, const QPointF& b)
{
    return a.y() < b.y();
}

} // namespace

QVector<QPointF> curveOutline(const QVector<QPointF>& points, int mostPoints)
{
    if (points.size() <= mostPoints) {
        return points;
    }
    const int groups = mostPoints / 4;
    const int groupSize = (points.size() + groups - 1) / groups;
    QVector<QPointF> outline;
    outline.reserve(mostPoints);
    for (int begin = 0; begin < points.size(); begin += groupSize) {
        const auto* first = points.constData() + begin;
        const auto* last = first + std::min(groupSize, points.size() - begin);
        const auto horizontal = std::minmax_element(first, last, liesLeft);
        const auto vertical = std::minmax_element(first, last, liesBelow);
        std::array<const QPointF*, 4> extremes = {horizontal.first, horizontal.second,
                                                  vertical.first, vertical.second};
        std::sort(extremes.begin(), extremes.end());
        for (const QPointF* point : extremes) {
            outline.append(*point);
        }
    }
    return outline;
}
