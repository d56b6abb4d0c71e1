#include "campaign/conclusion.h"

#include "campaign/npr_curve.h"

void conclude(NprResult& result, const Judgement& by)
{
    if (!result.signal.noiseLike) {
        for (NprPoint& point : result.points) {
            point.addMark(PointMark::notNoiseLike);
        }
    }
    if (by.without) {
        subtractBench(*by.without, result.points);
    }
    if (by.limit) {
        applyLimit(result.points, *by.limit);
    }
    if (by.hasCurves) {
        result.curves = curvesOf(result.points, by.thresholds);
    }
}
