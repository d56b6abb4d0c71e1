// From points to a result: what the bench itself put into the notches is taken off, limits and
// curves follow from what is left. Any thread.
#pragma once

#include "campaign/subtraction.h"

struct Judgement
{
    std::optional<BenchPoints> without; // the device
    std::optional<double> limit;        // dB
    QVector<double> thresholds;         // of the curves, dB
    bool hasCurves = false;             // the points are at levels of a curve
};

// Of a result that has its signal and points.
void conclude(NprResult& result, const Judgement& by);
