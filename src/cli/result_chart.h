// A result as a picture.
#pragma once

#include "campaign/npr_result.h"
#include "chart/npr_chart_data.h"

// What a picture and a table show beside the result.
struct ResultContext
{
    QString theoryName;
    QVector<NprPoint> theory; // level, notch and ratio count
    std::optional<double> limit;
    QVector<double> thresholds;
};

NprChartData chartOf(const NprResult& result, const ResultContext& context);

struct ChartedResult
{
    QString name; // of its lines
    NprResult result;
    ResultContext context;
};

// All in one picture, of which at least one; a single one is drawn as by itself.
NprChartData chartOf(const QVector<ChartedResult>& results);
