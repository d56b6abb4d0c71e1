// Colours, marks and letters of a picture. Lines are told apart by colour and by mark, so that eyes
// which see no red or green, and paper without colours, tell them apart too.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainterPath>
#include <QPen>

namespace ChartStyle {

// Of a line by its index; both repeat, at different numbers.
QColor lineColour(int line);
QPainterPath markShape(int line, double size); // around 0, 0

QColor bandColour(int line); // see-through
QColor limitColour();
QColor thresholdColour();
QColor textColour();

QPen linePen(int line);
QPen theoryPen();              // dashed
QPen bandSample(double width); // of the legend
QPen limitPen();
QPen thresholdPen();

QFont font(int pixels, bool bold = false);

} // namespace ChartStyle
