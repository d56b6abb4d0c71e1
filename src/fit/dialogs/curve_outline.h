// What of a long curve is drawn. A chart spends microseconds and hundreds of bytes on each point
// whenever it is resized, so of some millions only those are handed to it that make the picture.
#pragma once

#include <QPointF>
#include <QVector>

// The points themselves if they are not more than mostPoints (at least 4). Otherwise the extremes
// in x and y of each of up to mostPoints/4 groups of neighbours, in their order: on a screen with
// fewer columns than groups the curve looks the same, and its bounds are the same anyway.
QVector<QPointF> curveOutline(const QVector<QPointF>& points, int mostPoints);
