// A chart of one or more curves with a legend. Main thread only.
//
// Every curve is kept whole in seriesList. A curve of up to maxDrawnPoints is drawn as it is; of a
// longer one the chart gets the outline, under the same name, so that millions of points neither
// stop the window nor fill the memory. OpenGL, which would draw them whole, is not used: where it
// is missing a series that asks for it stays invisible.
#pragma once

#include <QLineSeries>
#include <QVector>
#include <QWidget>

QT_CHARTS_BEGIN_NAMESPACE
class QChart;
class QChartView;
QT_CHARTS_END_NAMESPACE

class TraceWidget : public QWidget
{
    Q_OBJECT

public:
    static constexpr int maxDrawnPoints = 131072;

    explicit TraceWidget(QWidget* parent = nullptr);
    ~TraceWidget() override;

    // Adds the curve through (x[i], y[i]) for each i of x; y has at least as many elements. The
    // axes then fit all curves so far. Points that are not finite are left out.
    void addTrace(const QVector<double>& x, const QVector<double>& y, const QString& name);

    const QVector<QtCharts::QLineSeries*>& series() const { return seriesList; }

private:
    QVector<QtCharts::QLineSeries*> seriesList;
    QtCharts::QChart* chart;
    QtCharts::QChartView* chartView; // the chart's owner; this widget is its parent
};
