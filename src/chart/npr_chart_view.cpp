#include "chart/npr_chart_view.h"

#include "chart/chart_overlay.h"
#include "chart/chart_ratios.h"
#include "chart/chart_scale.h"
#include "chart/chart_style.h"
#include "chart/chart_texts.h"

#include <QAreaSeries>
#include <QChart>
#include <QGraphicsItemGroup>
#include <QGraphicsLayout>
#include <QLegend>
#include <QLineSeries>
#include <QResizeEvent>
#include <QValueAxis>

#include <algorithm>

QT_CHARTS_USE_NAMESPACE

namespace {

constexpr int levelTicks = 12;
constexpr int ratioTicks = 9;

QVector<double> levelsOf(const NprChartData& data)
{
    QVector<double> levels;
    for (const ChartLine& line : data.lines) {
        for (const ChartPoint& point : line.points) {
            levels.append(point.level);
        }
    }
    for (const ChartTheory& theory : data.theories) {
        for (const QPointF& point : theory.points) {
            levels.append(point.x());
        }
    }
    return levels;
}

// Theory may go where nothing was measured; it counts where it is all there is.
QVector<double> ratiosOf(const NprChartData& data)
{
    QVector<double> ratios = ratiosToHold(measuredRatios(data));
    for (const ChartTheory& theory : data.theories) {
        for (const QPointF& point : theory.points) {
            if (data.lines.isEmpty()) {
                ratios << point.y();
            }
        }
    }
    if (data.limit) {
        ratios << *data.limit;
    }
    return ratios + data.thresholds;
}

QValueAxis* makeAxis(const ChartScale& scale, const QString& title, int text)
{
    auto* axis = new QValueAxis;
    axis->setRange(scale.low, scale.high);
    axis->setTickType(QValueAxis::TicksDynamic);
    axis->setTickInterval(scale.step);
    axis->setTickAnchor(0.0);
    axis->setLabelFormat(QStringLiteral("%.%1f").arg(scale.decimals));
    axis->setLabelsFont(ChartStyle::font(text));
    axis->setLabelsColor(ChartStyle::textColour());
    axis->setTitleText(title);
    axis->setTitleFont(ChartStyle::font(text, true));
    axis->setTitleBrush(ChartStyle::textColour());
    axis->setGridLinePen(QPen(QColor(220, 223, 226), 1.0));
    axis->setLinePen(QPen(ChartStyle::textColour(), 1.5));
    return axis;
}

// The points of a line in runs without a gap.
QVector<QVector<ChartPoint>> runsOf(const QVector<ChartPoint>& points)
{
    QVector<QVector<ChartPoint>> runs(1);
    for (const ChartPoint& point : points) {
        if (point.npr) {
            runs.last().append(point);
        } else if (!runs.last().isEmpty()) {
            runs.append(QVector<ChartPoint>());
        }
    }
    return runs;
}

} // namespace

NprChartView::NprChartView(int textPixels, QWidget* parent)
    : QChartView(new QChart, parent), text(textPixels)
{
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    chart()->legend()->hide(); // its marks tell lines apart by their colours alone
    chart()->setBackgroundRoundness(0.0);
    chart()->setBackgroundBrush(Qt::white);
    chart()->layout()->setContentsMargins(0, 0, 0, 0);
    chart()->setTitleFont(ChartStyle::font(text * 13 / 10));
    chart()->setTitleBrush(ChartStyle::textColour());
    // Queued, for the layout may settle in the middle of painting the items.
    connect(chart(), &QChart::plotAreaChanged, this, &NprChartView::placeOverlay,
            Qt::QueuedConnection);
}

void NprChartView::setData(const NprChartData& newData)
{
    shown = newData;
    chart()->removeAllSeries();
    anchor = nullptr;
    for (QAbstractAxis* axis : chart()->axes()) {
        chart()->removeAxis(axis);
        delete axis;
    }
    chart()->setTitle(titleHtml(shown));
    addAxes();
    for (const double threshold : shown.thresholds) {
        addLevelLine(threshold, ChartStyle::thresholdPen());
    }
    if (shown.limit) {
        addLevelLine(*shown.limit, ChartStyle::limitPen());
    }
    for (int i = 0; i < shown.lines.size(); ++i) {
        addLine(i);
    }
    for (const ChartTheory& theory : shown.theories) {
        addCurve(theory.points, ChartStyle::theoryPen());
    }
    makeRoom();
    placeOverlay();
}

QPointF NprChartView::positionOf(const QPointF& levelAndNpr) const
{
    return chart()->mapToScene(chart()->mapToPosition(levelAndNpr, anchor));
}

void NprChartView::addAxes()
{
    const ChartScale levels = scaleWithin(levelsOf(shown), levelTicks);
    ChartScale ratios = scaleAround(ratiosOf(shown), ratioTicks);
    ratios.high += ratios.step / 2.0; // room for the label of the peak
    chart()->addAxis(makeAxis(levels, levelTitle(shown.levelUnit), text), Qt::AlignBottom);
    chart()->addAxis(makeAxis(ratios, ratioTitle(shown), text), Qt::AlignLeft);
    addCurve({{levels.low, ratios.low}, {levels.high, ratios.low}}, Qt::NoPen); // the anchor
}

void NprChartView::attach(QAbstractSeries* series)
{
    chart()->addSeries(series);
    for (QAbstractAxis* axis : chart()->axes()) {
        series->attachAxis(axis);
    }
    anchor = anchor != nullptr ? anchor : series;
}

void NprChartView::addCurve(const QVector<QPointF>& points, const QPen& pen)
{
    auto* series = new QLineSeries;
    series->setPen(pen);
    series->replace(points);
    attach(series);
}

void NprChartView::addBand(int line, const QVector<QPointF>& upper, const QVector<QPointF>& lower)
{
    auto* area = new QAreaSeries;
    const auto edge = [area](const QVector<QPointF>& points) {
        auto* series = new QLineSeries(area);
        series->replace(points);
        return series;
    };
    area->setUpperSeries(edge(upper));
    area->setLowerSeries(edge(lower));
    area->setPen(Qt::NoPen);
    area->setBrush(ChartStyle::bandColour(line));
    attach(area);
}

void NprChartView::addLine(int line)
{
    for (const QVector<ChartPoint>& run : runsOf(shown.lines.at(line).points)) {
        QVector<QPointF> middle;
        QVector<QPointF> upper;
        QVector<QPointF> lower;
        for (const ChartPoint& point : run) {
            const double sigma = point.sigma.value_or(0.0);
            middle.append({point.level, *point.npr});
            upper.append({point.level, *point.npr + sigma});
            lower.append({point.level, *point.npr - sigma});
        }
        addBand(line, upper, lower);
        addCurve(middle, ChartStyle::linePen(line));
    }
}

void NprChartView::addLevelLine(double npr, const QPen& pen)
{
    const ChartScale levels = scaleWithin(levelsOf(shown), levelTicks);
    addCurve({{levels.low, npr}, {levels.high, npr}}, pen);
}

// The legend lies below the chart's own parts.
void NprChartView::makeRoom()
{
    const double height = legendHeight(shown, width() - 2.0 * text, text);
    const int bottom = static_cast<int>(height + 1.2 * text);
    const QMargins margins(text, text / 2, 2 * text, bottom);
    if (chart()->margins() != margins) {
        chart()->setMargins(margins);
    }
}

void NprChartView::resizeEvent(QResizeEvent* event)
{
    QChartView::resizeEvent(event);
    makeRoom();
    placeOverlay();
}

void NprChartView::placeOverlay()
{
    delete overlay;
    overlay = nullptr;
    if (anchor == nullptr) {
        return;
    }
    overlay = new QGraphicsItemGroup;
    overlay->setZValue(1000.0); // above whatever the chart draws
    scene()->addItem(overlay);
    const double height = legendHeight(shown, width() - 2.0 * text, text);
    const QRectF all = chart()->mapRectToScene(chart()->rect());
    const QRectF legend(all.left() + text, all.bottom() - height - 0.7 * text,
                        all.width() - 2.0 * text, height);
    fillOverlay(*overlay, shown,
                {chart()->mapRectToScene(chart()->plotArea()), legend, text,
                 [this](const QPointF& value) { return positionOf(value); }});
}
