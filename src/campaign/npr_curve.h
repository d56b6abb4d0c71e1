// What follows from measured points: peaks, ranges, limits. Any thread.
#pragma once

#include "campaign/npr_result.h"

// One curve a notch, by rising number. Peak: vertex of the parabola through the highest point and
// its neighbours, the point itself at an end of the curve or beside a point without a ratio.
// Ranges: from the peak outwards to the nearest crossing on each side, by linear interpolation.
QVector<NprCurve> curvesOf(const QVector<NprPoint>& points, const QVector<double>& thresholds);

// Appends those of the result's ranges that aren't there yet.
void addThresholds(const NprResult& result, QVector<double>& thresholds);

// Tells each point whether it passes; one without a ratio doesn't.
void applyLimit(QVector<NprPoint>& points, double limit);

bool hasMissedLimit(const QVector<NprPoint>& points);
