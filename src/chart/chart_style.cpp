#include "chart/chart_style.h"

#include <array>

namespace {

// The palette of Okabe and Ito without its yellow, which paper hardly shows.
const std::array<QColor, 7> palette = {
    QColor(0, 114, 178), QColor(213, 94, 0),   QColor(0, 158, 115), QColor(204, 121, 167),
    QColor(230, 159, 0), QColor(86, 180, 233), QColor(0, 0, 0)};

QPainterPath polygon(const QVector<QPointF>& corners)
{
    QPainterPath path;
    path.addPolygon(corners);
    path.closeSubpath();
    return path;
}

QPen pen(const QColor& colour, double width, Qt::PenStyle style = Qt::SolidLine)
{
    QPen result(colour, width, style);
    result.setCosmetic(true);
    result.setJoinStyle(Qt::RoundJoin);
    return result;
}

} // namespace

namespace ChartStyle {

QColor lineColour(int line)
{
    return palette[static_cast<std::size_t>(line) % palette.size()];
}

QPainterPath markShape(int line, double size)
{
    constexpr int shapes = 5;
    const double r = size / 2.0;
    QPainterPath path;
    switch (line % shapes) {
    case 0:
        path.addEllipse(QPointF(0, 0), r, r);
        break;
    case 1:
        path.addRect(-0.9 * r, -0.9 * r, 1.8 * r, 1.8 * r);
        break;
    case 2:
        return polygon({{0, -1.2 * r}, {1.1 * r, 0.8 * r}, {-1.1 * r, 0.8 * r}});
    case 3:
        return polygon({{0, -1.3 * r}, {1.1 * r, 0}, {0, 1.3 * r}, {-1.1 * r, 0}});
    default:
        return polygon({{0, 1.2 * r}, {1.1 * r, -0.8 * r}, {-1.1 * r, -0.8 * r}});
    }
    return path;
}

QColor bandColour(int line)
{
    constexpr int alpha = 56;
    QColor colour = lineColour(line);
    colour.setAlpha(alpha);
    return colour;
}

QColor limitColour()
{
    return {170, 0, 60};
}

QColor thresholdColour()
{
    return {90, 90, 90};
}

QColor textColour()
{
    return {32, 36, 40};
}

QPen linePen(int line)
{
    return pen(lineColour(line), 3.0);
}

QPen theoryPen()
{
    QPen dashed = pen(textColour(), 2.0);
    dashed.setDashPattern({5.0, 5.0}); // so that the line below shows
    return dashed;
}

QPen bandSample(double width)
{
    QPen sample = pen(bandColour(0), width);
    sample.setCapStyle(Qt::FlatCap);
    return sample;
}

QPen limitPen()
{
    return pen(limitColour(), 2.5);
}

QPen thresholdPen()
{
    return pen(thresholdColour(), 1.5, Qt::DashDotLine);
}

QFont font(int pixels, bool bold)
{
    QFont result(QStringLiteral("Liberation Sans")); // has the widths of Arial
    result.setStyleHint(QFont::SansSerif);
    result.setPixelSize(pixels);
    result.setBold(bold);
    return result;
}

} // namespace ChartStyle
