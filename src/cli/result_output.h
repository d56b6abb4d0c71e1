// Results for people and for files.
#pragma once

#include "campaign/npr_result.h"
#include "cli/arguments.h"
#include "cli/console.h"
#include "cli/option.h"

// --csv and --json.
Options resultOptions();

// Refuses what can't be meant, before anything is measured.
void checkResultOptions(const Arguments& arguments);

// Writes the files that were asked for; the tables unless standard output got one of them. All are
// tried; throws Failure for the first that can't be written.
void putOut(const NprResult& result, const Arguments& arguments, Console& console);

// The points, a line each, numbers rounded to their sigma.
QString pointTable(const QVector<NprPoint>& points, const Console& console);

// Peak and ranges, a line a notch.
QString curveTable(const QVector<NprCurve>& curves, const Console& console);
