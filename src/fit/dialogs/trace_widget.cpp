#include "fit/dialogs/trace_widget.h"

#include "fit/dialogs/curve_outline.h"

#include <QAbstractAxis>
#include <QChart>
#include <QChartView>
#include <QGraphicsLayout>
#include <QGridLayout>

QT_CHARTS_USE_NAMESPACE

namespace {

// Finer than any screen.
constexpr int outlinePoints = 32768;

QVector<QPointF> finitePoints(const QVector<double>& x, const QVector<double>& y)
{
    QVector<QPointF> points;
    points.reserve(x.size());
    for (int i = 0; i < x.size(); ++i) {
        if (qIsFinite(x.at(i)) && qIsFinite(y.at(i))) {
            points.append({x.at(i), y.at(i)});
        }
    }
    return points;
}

QFont houseFont()
{
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(11);
    return font;
}

QLineSeries* makeSeries(const QString& name, QObject* parent)
{
    auto* series = new QLineSeries(parent);
    series->setName(name);
    return series;
}

} // namespace

TraceWidget::TraceWidget(QWidget* parent)
    : QWidget(parent), chart(new QChart), chartView(new QChartView(chart, this))
{
    chart->legend()->setVisible(true);
    chart->legend()->setAlignment(Qt::AlignBottom);
    chart->legend()->setFont(houseFont());
    chartView->setRenderHint(QPainter::Antialiasing);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(chartView);
}

TraceWidget::~TraceWidget()
{
    delete chartView;
    seriesList.clear();
}

void TraceWidget::addTrace(const QVector<double>& x, const QVector<double>& y, const QString& name)
{
    const QVector<QPointF> points = finitePoints(x, y);
    const bool drawnWhole = points.size() <= maxDrawnPoints;
    QLineSeries* whole = makeSeries(name, this);
    QLineSeries* drawn = drawnWhole ? whole : makeSeries(name, this);
    seriesList.append(whole);

    // Every change of the axes or the layout works through all points, so both settle on the four
    // extremes before the curve comes, and it comes at once and not point by point.
    drawn->replace(curveOutline(points, 4));
    chart->addSeries(drawn);
    chart->createDefaultAxes();
    for (QAbstractAxis* axis : chart->axes()) {
        axis->setLabelsFont(houseFont());
    }
    chart->layout()->activate();
    drawn->replace(drawnWhole ? points : curveOutline(points, outlinePoints));
    if (!drawnWhole) {
        whole->replace(points);
    }
}
