// Results for people and for files.
#pragma once

#include "campaign/npr_result.h"
#include "cli/arguments.h"
#include "cli/console.h"
#include "cli/option.h"
#include "cli/result_chart.h"

// --csv, --json and --plot.
Options resultOptions();

// Refuses what can't be meant, before anything is measured.
void checkResultOptions(const Arguments& arguments);

// Writes the files that were asked for; the tables unless standard output got one of them. All are
// tried; throws Failure for the first that can't be written.
void putOut(const NprResult& result, const ResultContext& context, const Arguments& arguments,
            Console& console);

// The points, a line each, numbers rounded to their sigma, beside theory if there is any.
QString pointTable(const QVector<NprPoint>& points, const QVector<NprPoint>& theory,
                   const Console& console);

// Peak and ranges, a line a notch.
QString curveTable(const QVector<NprCurve>& curves, const Console& console);
