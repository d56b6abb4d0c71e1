// The words of a picture.
#pragma once

#include "chart/npr_chart_data.h"

#include <QStringList>

QString titleHtml(const NprChartData& data);
QString levelTitle();
QString ratioTitle(const NprChartData& data);

// "62.71 dB at -10.99 dBm"
QString peakText(const QPointF& peak);
QString legendText(const ChartLine& line);
// What the lines' ranges over a threshold are, in one line.
QString thresholdText(double threshold, const QVector<ChartLine>& lines);
QString limitText(double limit);
QString bandText();
