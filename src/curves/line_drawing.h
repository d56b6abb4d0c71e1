// How a line of a chart is drawn, and which pixels that takes. Any thread.
#pragma once

#include "curves/plot_content.h"

#include <QRect>

class QPainter;

// With its band of sigma below where it has one. density: pixels that make a unit of the pen.
void drawLine(QPainter& painter, const PlotLine& line, const PlotFrame& frame, double density);

// Rectangles one beside the other, in pixels, that hold all that drawLine() draws within the
// frame's area.
QVector<QRect> stripsOf(const PlotLine& line, const PlotFrame& frame, double density);
