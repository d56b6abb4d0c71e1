// What a picture of NPR over level shows; plain values that say nothing of where they come from.
// Ratios and sigmas in dB, levels in a unit that is told.
#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

#include <optional>

struct ChartPoint
{
    double level = 0.0;
    std::optional<double> npr;   // none interrupts the line
    std::optional<double> sigma; // half the height of the band
};

// The span of levels over which a line stays above a threshold; an end may not be known.
struct ChartRange
{
    double threshold = 0.0;
    std::optional<double> from;
    std::optional<double> to;
};

struct ChartLine
{
    QString name;                // as in "notch 1, -32 MHz"
    QVector<ChartPoint> points;  // by rising level
    std::optional<QPointF> peak; // level and ratio
    QVector<ChartRange> ranges;
};

struct ChartTheory
{
    QString name;            // one of the same name is in the legend once
    QVector<QPointF> points; // level and ratio
};

struct NprChartData
{
    QString device; // of the title, with the date below
    QString date;
    QString levelUnit = QStringLiteral("dBm");
    bool isNoiseLike = true; // or else the title says that this is no NPR
    QVector<ChartLine> lines;
    QVector<ChartTheory> theories;
    std::optional<double> limit;
    QVector<double> thresholds;
};
