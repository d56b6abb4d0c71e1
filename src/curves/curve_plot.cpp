#include "curves/curve_plot.h"

#include "chart/chart_style.h"

#include <QChart>
#include <QGraphicsLayout>
#include <QLegend>
#include <QPainter>
#include <QValueAxis>

#include <algorithm>

QT_CHARTS_USE_NAMESPACE

namespace {

constexpr int letters = 12; // pixels
constexpr int ticksAcross = 10;
constexpr int ticksUp = 8;

QValueAxis* makeAxis()
{
    auto* axis = new QValueAxis;
    axis->setTickType(QValueAxis::TicksDynamic);
    axis->setTickAnchor(0.0);
    axis->setLabelsFont(ChartStyle::font(letters));
    axis->setLabelsColor(ChartStyle::textColour());
    axis->setTitleFont(ChartStyle::font(letters, true));
    axis->setTitleBrush(ChartStyle::textColour());
    axis->setGridLinePen(QPen(QColor(220, 223, 226), 1.0));
    axis->setLinePen(QPen(ChartStyle::textColour(), 1.0));
    return axis;
}

} // namespace

CurvePlot::CurvePlot(QWidget* parent) : QWidget(parent), chart(new QChart)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(240, 180);
    setAttribute(Qt::WA_OpaquePaintEvent);
    scene.addItem(chart);
    chart->legend()->hide();
    chart->setBackgroundRoundness(0.0);
    chart->setBackgroundBrush(Qt::white);
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    chart->setMargins(QMargins(letters, letters, 2 * letters, letters / 2));
    addAxes();
    // Queued, for the layout may settle in the middle of drawing.
    const auto follow = [this](const QRectF& area) {
        if (area != groundArea) {
            touchGround();
        }
    };
    connect(chart, &QChart::plotAreaChanged, this, follow, Qt::QueuedConnection);
}

CurvePlot::~CurvePlot() = default;

void CurvePlot::addAxes()
{
    across = makeAxis();
    up = makeAxis();
    chart->addAxis(across, Qt::AlignBottom);
    chart->addAxis(up, Qt::AlignLeft);
    placeTicks(*across, span.xLow, span.xHigh);
    placeTicks(*up, span.yLow, span.yHigh);
}

// The axes stay as long as the lines fill most of them: what somebody switches is to be compared at
// a glance.
void CurvePlot::setContent(const PlotContent& content)
{
    place = samePlace(place, shown, content);
    if (!hasOwnSpan) {
        const bool isOfAKind = content.xTitle == shown.xTitle;
        setSpan(isOfAKind ? steadySpan(span, content.whole) : content.whole);
    }
    if (content.xTitle != shown.xTitle || content.yTitle != shown.yTitle) {
        across->setTitleText(content.xTitle);
        up->setTitleText(content.yTitle);
        touchGround();
    }
    shown = content;
    touch();
}

void CurvePlot::setHint(const QString& text)
{
    hint = text;
    update();
}

void CurvePlot::placeTicks(QValueAxis& axis, double low, double high)
{
    const AxisTicks ticks = ticksOf(low, high, &axis == across ? ticksAcross : ticksUp);
    // In this order, or there would be thousands of ticks for a moment.
    axis.setTickInterval(std::max(axis.tickInterval(), ticks.step));
    axis.setRange(low, high);
    axis.setTickInterval(ticks.step);
    axis.setLabelFormat(QStringLiteral("%.%1f").arg(ticks.decimals));
}

void CurvePlot::setSpan(const PlotSpan& newSpan)
{
    if (newSpan == span) {
        return;
    }
    span = newSpan;
    placeTicks(*across, span.xLow, span.xHigh);
    placeTicks(*up, span.yLow, span.yHigh);
    touchGround();
}

void CurvePlot::chooseSpan(const PlotSpan& newSpan)
{
    if (isUseful(newSpan)) {
        hasOwnSpan = true;
        setSpan(newSpan);
        emit zoomed(true);
    }
}

void CurvePlot::zoom(double factor)
{
    const QPointF around =
        place.isSome() ? frame().positionOf(shown.lines.at(place.line).points.at(place.point).value)
                       : frame().area.center();
    chooseSpan(frame().zoomed(factor, around));
}

void CurvePlot::showWhole()
{
    hasOwnSpan = false;
    setSpan(shown.whole);
    emit zoomed(false);
}

PlotFrame CurvePlot::frame() const
{
    return {chart->plotArea(), span};
}

void CurvePlot::touch()
{
    isStale = true;
    update();
}

void CurvePlot::touchGround()
{
    isGroundStale = true;
    touch();
}

void CurvePlot::renderGround(double density)
{
    isGroundStale = false;
    chart->resize(size());
    chart->layout()->activate();
    groundArea = chart->plotArea();
    ground = QImage(size() * density, QImage::Format_RGB32);
    ground.setDevicePixelRatio(density);
    ground.fill(Qt::white);
    QPainter painter(&ground);
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, rect(), rect());
}

// Lines are drawn in the picture's own pixels: so their kept pictures fit onto it one to one.
void CurvePlot::renderPicture()
{
    const double density = devicePixelRatioF();
    if (isGroundStale || ground.devicePixelRatio() != density) {
        renderGround(density);
    }
    isStale = false;
    picture = ground;
    picture.setDevicePixelRatio(1.0);
    const QRectF area = chart->plotArea();
    const PlotFrame inPixels{{area.topLeft() * density, area.size() * density}, span};
    QPainter painter(&picture);
    paintLevels(painter, inPixels, density);
    painter.end();
    pictures.paint(picture, shown.lines, inPixels, density);
    picture.setDevicePixelRatio(density);
}

// Thresholds and limit, from edge to edge whatever is zoomed to.
void CurvePlot::paintLevels(QPainter& painter, const PlotFrame& inPixels, double density) const
{
    painter.save();
    painter.setClipRect(inPixels.area);
    const auto paint = [&](double ratio, const QPen& pen) {
        const double y = inPixels.positionOf({span.xLow, ratio}).y();
        painter.setPen(QPen(pen.brush(), density, pen.style()));
        painter.drawLine(QPointF(inPixels.area.left(), y), QPointF(inPixels.area.right(), y));
    };
    for (const double threshold : shown.thresholds) {
        paint(threshold, ChartStyle::thresholdPen());
    }
    if (shown.limit) {
        paint(*shown.limit, ChartStyle::limitPen());
    }
    painter.restore();
}
