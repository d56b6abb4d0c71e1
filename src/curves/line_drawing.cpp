#include "curves/line_drawing.h"

#include "chart/chart_ratios.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double thin = 1.0; // wider ones take several times as long to draw
constexpr double strong = 2.0;
constexpr double dot = 3.0;
constexpr double arrow = 8.0;
constexpr int stripWidth = 32; // narrow: a strip of a steep line is mostly empty

bool hasBand(const PlotLine& line)
{
    return line.isChosen && line.kind == PlotLine::Kind::Measured;
}

QPen penOf(const PlotLine& line, double density)
{
    const bool isTheory = line.kind == PlotLine::Kind::Theory;
    return {line.colour, line.isChosen && !isTheory ? strong * density : thin,
            isTheory ? Qt::DashLine : Qt::SolidLine};
}

// Of the line moved by so many sigmas.
QPolygonF courseOf(const PlotLine& line, const PlotFrame& frame, double sigmas)
{
    QPolygonF course;
    course.reserve(line.points.size());
    for (const PlotPoint& point : line.points) {
        const double away = sigmas * point.sigma.value_or(0.0);
        course << frame.positionOf(point.value + QPointF(0.0, away));
    }
    return course;
}

// Of the tips of arrows.
QVector<QPointF> tipsOf(const PlotLine& line, const PlotFrame& frame)
{
    QVector<QPointF> tips;
    for (const PlotPoint& point : line.points) {
        if (line.kind == PlotLine::Kind::Measured && isAtEdge(point.value, frame.span)) {
            tips << seenPosition(point.value, frame);
        }
    }
    return tips;
}

QPainterPath arrowAt(const QPointF& tip, const PlotFrame& frame, double density)
{
    return edgeArrow(tip, tip.y() < frame.area.center().y(), arrow * density);
}

struct Extent
{
    void include(double y)
    {
        low = std::min(low, y);
        high = std::max(high, y);
    }

    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
};

double heightAt(double x, const QPointF& from, const QPointF& to)
{
    const double width = to.x() - from.x();
    return width > 0.0 ? from.y() + (x - from.x()) / width * (to.y() - from.y()) : to.y();
}

// Of the part of a course, with so much around it, that lies over each strip from the left.
void include(const QPolygonF& course, double left, double around, QVector<Extent>& strips)
{
    const double right = left + strips.size() * stripWidth;
    for (int k = 0; k < course.size(); ++k) {
        const QPointF from = course.at(std::max(k - 1, 0));
        const QPointF to = course.at(k);
        const double low = std::max(from.x() - around, left);
        const double high = std::min(to.x() + around, right);
        if (!(low <= high)) {
            continue;
        }
        const int first = static_cast<int>((low - left) / stripWidth);
        const int last = std::min(static_cast<int>((high - left) / stripWidth), strips.size() - 1);
        for (int strip = first; strip <= last; ++strip) {
            const double begin = left + strip * stripWidth - around;
            const double end = begin + stripWidth + 2.0 * around;
            strips[strip].include(heightAt(std::clamp(begin, from.x(), to.x()), from, to));
            strips[strip].include(heightAt(std::clamp(end, from.x(), to.x()), from, to));
        }
    }
}

} // namespace

void drawLine(QPainter& painter, const PlotLine& line, const PlotFrame& frame, double density)
{
    if (hasBand(line)) {
        constexpr int seeThrough = 48;
        QColor ground = line.colour;
        ground.setAlpha(seeThrough);
        QPolygonF band = courseOf(line, frame, 1.0);
        const QPolygonF lower = courseOf(line, frame, -1.0);
        std::copy(lower.rbegin(), lower.rend(), std::back_inserter(band));
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        painter.drawPolygon(band);
        painter.setBrush(Qt::NoBrush);
    }
    const QPolygonF course = courseOf(line, frame, 0.0);
    painter.setPen(penOf(line, density));
    painter.drawPolyline(course);
    if (course.size() == 1) { // a line of no length would not be seen
        painter.setBrush(line.colour);
        painter.drawEllipse(course.constFirst(), dot * density, dot * density);
        painter.setBrush(Qt::NoBrush);
    }
    for (const QPointF& tip : tipsOf(line, frame)) {
        painter.fillPath(arrowAt(tip, frame, density), line.colour);
    }
}

QVector<QRect> stripsOf(const PlotLine& line, const PlotFrame& frame, double density)
{
    const QRect area = frame.area.toAlignedRect();
    const double around = std::ceil(dot * density) + 2.0; // of dots, pens and smooth edges
    QVector<Extent> extents((area.width() + stripWidth - 1) / stripWidth);
    for (const double sigmas : hasBand(line) ? QVector<double>{1.0, -1.0} : QVector<double>{0.0}) {
        include(courseOf(line, frame, sigmas), area.left(), around, extents);
    }
    for (const QPointF& tip : tipsOf(line, frame)) {
        const QRectF box = arrowAt(tip, frame, density).boundingRect();
        for (const double x : {box.left(), box.right()}) {
            include(QVector<QPointF>{{x, box.top()}, {x, box.bottom()}}, area.left(), around,
                    extents);
        }
    }
    QVector<QRect> strips;
    for (int k = 0; k < extents.size(); ++k) {
        const double top = std::max<double>(extents.at(k).low - around, area.top());
        const double bottom = std::min<double>(extents.at(k).high + around, area.bottom() + 1);
        if (top < bottom) {
            const QRectF strip(area.left() + k * stripWidth, top, stripWidth, bottom - top);
            strips << (strip.toAlignedRect() & area);
        }
    }
    return strips;
}
