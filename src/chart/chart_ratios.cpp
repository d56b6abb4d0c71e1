#include "chart/chart_ratios.h"

#include <QPolygonF>

#include <algorithm>
#include <iterator>

bool isCredible(double ratio)
{
    return ratio >= lowestRatio && ratio <= highestRatio;
}

QVector<double> ratiosToHold(const QVector<double>& ratios)
{
    QVector<double> credible;
    std::copy_if(ratios.begin(), ratios.end(), std::back_inserter(credible), isCredible);
    return credible.isEmpty() ? ratios : credible;
}

QVector<double> measuredRatios(const NprChartData& data)
{
    QVector<double> ratios;
    for (const ChartLine& line : data.lines) {
        for (const ChartPoint& point : line.points) {
            if (point.npr) {
                const double sigma = point.sigma.value_or(0.0);
                ratios << *point.npr - sigma << *point.npr << *point.npr + sigma;
            }
        }
        if (line.peak) {
            ratios << line.peak->y();
        }
    }
    return ratios;
}

bool hasArrows(const NprChartData& data)
{
    bool hasCredible = false;
    bool hasOthers = false;
    for (const ChartLine& line : data.lines) {
        for (const ChartPoint& point : line.points) {
            hasCredible = hasCredible || (point.npr && isCredible(*point.npr));
            hasOthers = hasOthers || (point.npr && !isCredible(*point.npr));
        }
    }
    return hasCredible && hasOthers;
}

QPainterPath edgeArrow(const QPointF& tip, bool isUp, double size)
{
    const double back = isUp ? size : -size;
    QPainterPath path;
    path.addPolygon(
        QPolygonF({tip, tip + QPointF(size / 2.0, back), tip + QPointF(-size / 2.0, back)}));
    path.closeSubpath();
    return path;
}
