#include "curves/plot_reading.h"

#include "chart/chart_texts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

double lengthOf(const QPointF& vector)
{
    return std::hypot(vector.x(), vector.y());
}

// From a position to the nearest place of a segment.
double distance(const QPointF& position, const QPointF& from, const QPointF& to)
{
    const QPointF along = to - from;
    const double square = QPointF::dotProduct(along, along);
    const double share =
        square > 0.0 ? std::clamp(QPointF::dotProduct(position - from, along) / square, 0.0, 1.0)
                     : 0.0;
    return lengthOf(position - (from + share * along));
}

struct Nearest
{
    PlotPlace place;
    double distance = std::numeric_limits<double>::infinity();
};

Nearest nearestOn(int index, const QPointF& position, const PlotContent& content,
                  const PlotFrame& frame)
{
    const QVector<PlotPoint>& points = content.lines.at(index).points;
    Nearest nearest;
    double nearestPoint = std::numeric_limits<double>::infinity();
    QPointF before = frame.positionOf(points.constFirst().value);
    for (int k = 0; k < points.size(); ++k) {
        const QPointF here = frame.positionOf(points.at(k).value);
        const double away = lengthOf(position - seenPosition(points.at(k).value, frame));
        nearest.distance = std::min({nearest.distance, distance(position, before, here), away});
        if (away < nearestPoint) {
            nearestPoint = away;
            nearest.place = {index, k};
        }
        before = here;
    }
    return nearest;
}

int nearestPointAt(double x, const QVector<PlotPoint>& points)
{
    const auto* const found =
        std::min_element(points.begin(), points.end(), [x](const PlotPoint& a, const PlotPoint& b) {
            return std::abs(a.value.x() - x) < std::abs(b.value.x() - x);
        });
    return static_cast<int>(found - points.begin());
}

QVector<int> shownLines(const PlotContent& content)
{
    QVector<int> shown;
    for (int k = 0; k < content.lines.size(); ++k) {
        if (content.lines.at(k).isShown) {
            shown << k;
        }
    }
    return shown;
}

} // namespace

PlotPlace placeNear(const QPointF& position, double reach, const PlotContent& content,
                    const PlotFrame& frame)
{
    constexpr double advantage = 3.0; // pixels, of chosen lines
    Nearest best;
    best.distance = reach;
    for (const int line : shownLines(content)) {
        Nearest nearest = nearestOn(line, position, content, frame);
        nearest.distance -= content.lines.at(line).isChosen ? advantage : 0.0;
        best = nearest.distance < best.distance ? nearest : best;
    }
    return best.place;
}

PlotPlace besidePlace(const PlotPlace& place, int steps, const PlotContent& content)
{
    if (!place.isSome()) {
        return otherLinePlace(place, 1, content);
    }
    const int last = content.lines.at(place.line).points.size() - 1;
    return {place.line, std::clamp(place.point + steps, 0, last)};
}

PlotPlace otherLinePlace(const PlotPlace& place, int steps, const PlotContent& content)
{
    const QVector<int> shown = shownLines(content);
    if (shown.isEmpty()) {
        return {};
    }
    if (!place.isSome()) {
        return {shown.constFirst(), 0};
    }
    const int count = shown.size();
    const int next = shown.at((shown.indexOf(place.line) + steps + count) % count);
    const double x = content.lines.at(place.line).points.at(place.point).value.x();
    return {next, nearestPointAt(x, content.lines.at(next).points)};
}

PlotPlace samePlace(const PlotPlace& place, const PlotContent& before, const PlotContent& after)
{
    if (!place.isSome()) {
        return {};
    }
    const PlotLine& line = before.lines.at(place.line);
    for (const int k : shownLines(after)) {
        const PlotLine& other = after.lines.at(k);
        if (other.kind == line.kind && other.result == line.result && other.notch == line.notch &&
            other.run == line.run) {
            return {k, std::min(place.point, other.points.size() - 1)};
        }
    }
    return {};
}

QStringList readingTexts(const PlotPlace& place, const PlotContent& content)
{
    const PlotLine& line = content.lines.at(place.line);
    const PlotPoint& point = line.points.at(place.point);
    NprPoint measured;
    measured.npr = point.value.y();
    QString ratio = "NPR " + printed(point.value.y(), 2) + " dB";
    if (point.sigma) {
        ratio += QStringLiteral(", sigma %1 dB").arg(printed(*point.sigma, 2));
    }
    return {line.name, line.detail, "level " + printed(point.level, 2) + ' ' + line.levelUnit,
            ratio, "EVM " + QString::number(*measured.evmPercent(), 'g', 3) + " %"};
}
