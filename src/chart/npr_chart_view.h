// NPR over level: a line a notch with its sigma as a band, theory dashed, limit and thresholds as
// lines with the ranges marked below them, peaks ringed and the highest labelled, and a legend with
// all peaks. Fit for a report as it stands. Main thread.
//
// Axes and curves are those of Qt Charts; marks, labels and legend lie over them and follow when
// the view changes its size.
#pragma once

#include "chart/npr_chart_data.h"

#include <QChartView>

class NprChartView : public QtCharts::QChartView
{
    Q_OBJECT

public:
    // textPixels is the height of the letters of axes and legend; all sizes follow it.
    explicit NprChartView(int textPixels, QWidget* parent = nullptr);

    void setData(const NprChartData& data);

    // Where a level and a ratio lie in the view, in pixels.
    QPointF positionOf(const QPointF& levelAndNpr) const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void addAxes();
    void addBand(int line, const QVector<QPointF>& upper, const QVector<QPointF>& lower);
    void addCurve(const QVector<QPointF>& points, const QPen& pen);
    void addLine(int line);
    void addLevelLine(double npr, const QPen& pen);
    void attach(QtCharts::QAbstractSeries* series);
    void makeRoom();
    void placeOverlay();

    const int text;
    NprChartData shown;
    QtCharts::QAbstractSeries* anchor = nullptr; // any series, whose axes tell where a value lies
    QGraphicsItemGroup* overlay = nullptr;
};
