// From the words of a command that measures to a bench and a plan that can be run, and from points
// to a result. Nothing here talks to an instrument.
#pragma once

#include "campaign/bench.h"
#include "campaign/conclusion.h"
#include "cli/console.h"
#include "cli/measuring_request.h"
#include "cli/result_chart.h"
#include "cli/stop_check.h"

#include <memory>

struct PreparedMeasuring
{
    MeasuringRequest request;
    NprResult result; // without points
    CampaignPlan plan;
    std::shared_ptr<Bench> bench;
    Judgement judgement;
    ResultContext context;
};

// Reads CONFIG and makes the signal and its theory, which takes a while; asks stop between the
// steps. Warnings go to the console. Any thread. Throws Failure.
PreparedMeasuring prepareMeasuring(const Arguments& arguments, const CurveRequest& wanted,
                                   Console& console, const StopCheck& stop = endAtSignal);

// What so many points are worth: marks, subtraction, limit, curves. Any thread.
NprResult resultOf(const PreparedMeasuring& ready, const QVector<NprPoint>& points,
                   const BenchNames& bench, const QVector<quint32>& seeds);
