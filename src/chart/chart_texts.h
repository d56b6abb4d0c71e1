// The words of a picture. unit: of levels.
#pragma once

#include "chart/npr_chart_data.h"

#include <QStringList>

// With so many decimals and the minus sign of print.
QString printed(double value, int decimals);

// "notch 1, -32 MHz": center in Hz from the carrier.
QString notchText(int notch, double center);

QString titleHtml(const NprChartData& data);
QString levelTitle(const QString& unit);
QString ratioTitle(const NprChartData& data);

// "62.71 dB at -10.99 dBm"
QString peakText(const QPointF& peak, const QString& unit);
QString legendText(const ChartLine& line, const QString& unit);
// What the lines' ranges over a threshold are, in one line.
QString thresholdText(double threshold, const QVector<ChartLine>& lines, const QString& unit);
QString limitText(double limit);
QString bandText();
// Of the arrows at the edge, with one of each kind.
QString arrowText();
// Of so many lines that the legend has no room for.
QString moreText(int lines);
