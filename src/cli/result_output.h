// Results for people and for files.
#pragma once

#include "campaign/npr_result.h"
#include "cli/arguments.h"
#include "cli/console.h"
#include "cli/exit_status.h"
#include "cli/option.h"
#include "cli/result_chart.h"

Options jsonOption();
Options resultOptions(); // --csv, --json and --plot

// Refuses what can't be meant or written, before anything is measured. Throws Failure.
void checkResultOptions(const Arguments& arguments, const QStringList& furtherFiles = {});

// Whether one of --csv and --json takes standard output, which then has nothing else.
bool takesStandardOutput(const Arguments& arguments);

// Writes what --csv and --json ask for. All are tried; throws Failure for those that can't be
// written.
void writeResult(const NprResult& result, const Arguments& arguments, Console& console);

// One file, or standard output for "-"; throws Failure.
void writeBytes(const QByteArray& bytes, const QString& file, Console& console);
void writeChart(const NprChartData& chart, const QString& file);

// The same with the pictures of --plot, and the tables unless standard output got one of them,
// after work that ended so. The first failure decides the program's status: throws Failure only
// where all went well before, and otherwise tells it. A result without a point takes no place of a
// file that has something in it.
void putOut(ExitStatus status, const NprResult& result, const ResultContext& context,
            const Arguments& arguments, Console& console);

// The points, a line each, numbers rounded to their sigma, beside theory if there is any.
QString pointTable(const NprResult& result, const QVector<NprPoint>& theory,
                   const Console& console);

// Peak and ranges, a line a notch.
QString curveTable(const NprResult& result, const Console& console);
