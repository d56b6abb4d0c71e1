#include "curves/curve_plot.h"

#include "chart/chart_style.h"

#include <QAreaSeries>
#include <QChart>
#include <QGraphicsLayout>
#include <QLegend>
#include <QLineSeries>
#include <QPainter>
#include <QValueAxis>

#include <algorithm>

QT_CHARTS_USE_NAMESPACE

namespace {

constexpr int letters = 12; // pixels
constexpr int ticksAcross = 10;
constexpr int ticksUp = 8;
constexpr double thin = 1.0; // wider ones take several times as long to draw
constexpr double strong = 2.0;

QPen penOf(const PlotLine& line)
{
    const bool isTheory = line.kind == PlotLine::Kind::Theory;
    QPen pen(line.colour, line.isChosen && !isTheory ? strong : thin,
             isTheory ? Qt::DashLine : Qt::SolidLine);
    pen.setCosmetic(true);
    return pen;
}

QVector<QPointF> edgeOf(const QVector<PlotPoint>& points, double sigmas)
{
    QVector<QPointF> edge;
    edge.reserve(points.size());
    for (const PlotPoint& point : points) {
        edge << point.value + QPointF(0.0, sigmas * point.sigma.value_or(0.0));
    }
    return edge;
}

bool hasBand(const PlotLine& line)
{
    return line.isChosen && line.kind == PlotLine::Kind::Measured;
}

void fill(const PlotLine& line, QLineSeries* middle, QAreaSeries* band)
{
    middle->replace(edgeOf(line.points, 0.0));
    middle->setPen(penOf(line));
    middle->setVisible(line.isShown);
    if (band != nullptr) {
        constexpr int seeThrough = 48;
        QColor ground = line.colour;
        ground.setAlpha(seeThrough);
        band->upperSeries()->replace(edgeOf(line.points, 1.0));
        band->lowerSeries()->replace(edgeOf(line.points, -1.0));
        band->setBrush(ground);
        band->setVisible(line.isShown);
    }
}

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
    connect(chart, &QChart::plotAreaChanged, this, &CurvePlot::touch, Qt::QueuedConnection);
}

CurvePlot::~CurvePlot() = default;

void CurvePlot::addAxes()
{
    across = makeAxis();
    up = makeAxis();
    chart->addAxis(across, Qt::AlignBottom);
    chart->addAxis(up, Qt::AlignLeft);
    setSpan(PlotSpan());
}

// Without points yet: the axes would stretch around them.
void CurvePlot::attach(QAbstractSeries* series)
{
    chart->addSeries(series);
    series->attachAxis(across);
    series->attachAxis(up);
}

CurvePlot::Drawn CurvePlot::draw(const PlotLine& line)
{
    Drawn drawn{line, new QLineSeries, nullptr};
    if (hasBand(line)) {
        drawn.band = new QAreaSeries;
        drawn.band->setUpperSeries(new QLineSeries(drawn.band));
        drawn.band->setLowerSeries(new QLineSeries(drawn.band));
        drawn.band->setPen(Qt::NoPen);
    }
    if (drawn.band != nullptr) {
        attach(drawn.band);
    }
    attach(drawn.series);
    fill(line, drawn.series, drawn.band);
    return drawn;
}

// Points are given anew only where they changed: the chart works each of them out again.
void CurvePlot::redraw(Drawn& drawn, const PlotLine& line)
{
    if (drawn.line.points != line.points || drawn.line.colour != line.colour) {
        fill(line, drawn.series, drawn.band);
    }
    for (QAbstractSeries* series : seriesOf(drawn)) {
        series->setVisible(line.isShown);
    }
    drawn.line = line;
}

QVector<QAbstractSeries*> CurvePlot::seriesOf(const Drawn& drawn)
{
    QVector<QAbstractSeries*> all{drawn.series};
    if (drawn.band != nullptr) {
        all << drawn.band;
    }
    return all;
}

void CurvePlot::erase(const Drawn& drawn)
{
    for (QAbstractSeries* series : seriesOf(drawn)) {
        chart->removeSeries(series);
        delete series;
    }
}

// Series that stay are kept, for making them takes longer than all else. Chosen ones come last and
// lie above the others.
void CurvePlot::setContent(const PlotContent& content)
{
    place = samePlace(place, shown, content);
    shown = content;
    QVector<Drawn> former;
    lines.swap(former);
    QVector<PlotLine> fresh;
    for (const PlotLine& line : qAsConst(shown.lines)) {
        auto* const found = std::find_if(former.begin(), former.end(), [&](const Drawn& drawn) {
            return drawn.line.isSameAs(line);
        });
        if (found == former.end()) {
            fresh << line;
            continue;
        }
        redraw(*found, line);
        lines << *found;
        former.erase(found);
    }
    if (!hasOwnSpan) {
        setSpan(shown.whole);
    }
    std::for_each(former.begin(), former.end(), [this](const Drawn& drawn) { erase(drawn); });
    std::stable_partition(fresh.begin(), fresh.end(),
                          [](const PlotLine& line) { return !line.isChosen; });
    for (const PlotLine& line : qAsConst(fresh)) {
        lines << draw(line);
    }
    across->setTitleText(shown.xTitle);
    up->setTitleText(shown.yTitle);
    drawLevels();
    touch();
}

// Thresholds and limit, from edge to edge whatever is zoomed to.
void CurvePlot::drawLevels()
{
    for (QLineSeries* level : qAsConst(levels)) {
        chart->removeSeries(level);
        delete level;
    }
    levels.clear();
    const auto add = [this](double ratio, const QPen& pen) {
        levels << new QLineSeries;
        attach(levels.last());
        levels.last()->append(span.xLow, ratio);
        levels.last()->append(span.xHigh, ratio);
        levels.last()->setPen(QPen(pen.brush(), thin, pen.style()));
    };
    for (const double threshold : qAsConst(shown.thresholds)) {
        add(threshold, ChartStyle::thresholdPen());
    }
    if (shown.limit) {
        add(*shown.limit, ChartStyle::limitPen());
    }
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
    touch();
}

void CurvePlot::chooseSpan(const PlotSpan& newSpan)
{
    if (isUseful(newSpan)) {
        hasOwnSpan = true;
        setSpan(newSpan);
        drawLevels();
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
    drawLevels();
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

void CurvePlot::renderPicture()
{
    isStale = false;
    chart->resize(size());
    chart->layout()->activate();
    const double density = devicePixelRatioF();
    picture = QPixmap(size() * density);
    picture.setDevicePixelRatio(density);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, rect(), rect());
}
