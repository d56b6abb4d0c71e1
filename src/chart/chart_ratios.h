// Ratios that a chart's axis holds. A reading that can't be one, such as that of a channel beside
// the analyzer's span, lies so far away that all the others would become one flat line: the axis
// ends before it, and an arrow at the edge stands for it.
#pragma once

#include "chart/npr_chart_data.h"

#include <QPainterPath>

// In dB. Below, a notch would hold a hundred times the noise of its surroundings; above, it would
// hold less noise than any analyzer has.
constexpr double lowestRatio = -20.0;
constexpr double highestRatio = 150.0;

bool isCredible(double ratio);

// The credible ones of the ratios; all of them where none is.
QVector<double> ratiosToHold(const QVector<double>& ratios);

// With the ends of the bands of sigma.
QVector<double> measuredRatios(const NprChartData& data);

// Whether the axis ends before a reading.
bool hasArrows(const NprChartData& data);

// With its tip, which points upwards or downwards, at an edge.
QPainterPath edgeArrow(const QPointF& tip, bool isUp, double size);
