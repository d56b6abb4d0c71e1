// Where values lie in a picture: the rectangle of its axes and the values at their ends. Positions
// in pixels from the top left, values upwards. Any thread.
#pragma once

#include <QPointF>
#include <QRectF>

struct PlotSpan
{
    double xLow = 0.0;
    double xHigh = 1.0;
    double yLow = 0.0;
    double yHigh = 1.0;

    bool operator==(const PlotSpan& other) const;
    bool operator!=(const PlotSpan& other) const { return !(*this == other); }
};

struct PlotFrame
{
    QRectF area;
    PlotSpan span;

    QPointF positionOf(const QPointF& value) const;
    QPointF valueAt(const QPointF& position) const;
    // The span within a rectangle of pixels, as far as it lies in the area.
    PlotSpan spanOf(const QRectF& rectangle) const;
    // Larger by the factor (smaller below 1) around a position, which keeps its value.
    PlotSpan zoomed(double factor, const QPointF& around) const;
    // Moved by shares of itself, to the right and upwards.
    PlotSpan moved(double right, double up) const;
};

// Where a value is seen: at the edge when it lies beyond the span and is no ratio that a bench can
// read.
bool isAtEdge(const QPointF& value, const PlotSpan& span);
QPointF seenPosition(const QPointF& value, const PlotFrame& frame);

// Neither so narrow that numbers don't tell its ends apart nor turned around.
bool isUseful(const PlotSpan& span);

// The present one as long as the wanted one lies in it and fills half of it or more each way.
PlotSpan steadySpan(const PlotSpan& present, const PlotSpan& wanted);

struct AxisTicks
{
    double step = 1.0; // 1, 2 or 5 times a power of ten
    int decimals = 0;  // that a multiple of the step needs
};

// So many, about, from low to high, however narrow.
AxisTicks ticksOf(double low, double high, int count);
