// A result that nobody measured: roofs of known height. Notch n peaks at -20 dBm with 50 + n dB and
// falls by 1 dB a dB on both sides; its centre lies at 10 MHz times n - 2.
#pragma once

#include "campaign/npr_curve.h"
#include "campaign/result_json.h"
#include "kit/file_content.h"

#include <QtTest>

#include <cmath>

inline NprResult roofs(int notches, double from = -40.0, double to = 0.0, double step = 1.0,
                       double raised = 0.0)
{
    NprResult result;
    result.program = "test 1";
    result.started = "2026-11-21T14:00:00Z";
    result.signal.length = 131072;
    result.signal.sampleRate = 1e8;
    result.bench.simulated = "linear";
    result.bench.generator = result.bench.analyzer = "simulated";
    const auto steps = static_cast<int>(std::lround((to - from) / step));
    for (int k = 0; k <= steps; ++k) {
        const double level = from + k * step;
        for (int notch = 1; notch <= notches; ++notch) {
            NprPoint point;
            point.level = level;
            point.notch = notch;
            point.center = 1e7 * (notch - 2);
            point.width = 1e6;
            point.power = level - 20.0;
            point.npr = 50.0 + notch + raised - std::abs(level + 20.0);
            point.sigma = 0.25;
            result.points << point;
        }
    }
    result.curves = curvesOf(result.points, {41.0});
    return result;
}

inline QString writeResult(const QString& path, const NprResult& result)
{
    putContent(path, resultToJson(result));
    return path;
}
