#include "cli/commands.h"

#include "campaign/npr_curve.h"
#include "campaign/recorded_config.h"
#include "campaign/result_csv.h"
#include "cli/device_argument.h"
#include "cli/made_signal.h"
#include "cli/result_input.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/theory_argument.h"
#include "cli/values.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// Those of the results themselves where none are asked for.
QVector<double> thresholdsOf(const Arguments& arguments, const QVector<ChartedResult>& results)
{
    QVector<double> thresholds;
    for (const QString& text : arguments.values("threshold")) {
        thresholds << thresholdOf(text);
    }
    if (!thresholds.isEmpty()) {
        return thresholds;
    }
    for (const ChartedResult& one : results) {
        addThresholds(one.result, thresholds);
    }
    return thresholds;
}

QVector<ChartedResult> readResults(const QStringList& files)
{
    if (files.isEmpty()) {
        failUsage(QStringLiteral("plot needs a result: a file that --json wrote"));
    }
    QVector<ChartedResult> results;
    for (const QString& file : files) {
        ChartedResult one;
        one.name = QFileInfo(file).completeBaseName();
        one.result = readResult(file);
        if (one.result.points.isEmpty()) {
            failFile(file + " has no points: nothing was measured");
        }
        if (!results.isEmpty() && one.result.levelUnit != results.constFirst().result.levelUnit) {
            failUsage(file + " has its levels in " + nameOf(one.result.levelUnit) +
                      ", the results before it in " +
                      nameOf(results.constFirst().result.levelUnit) +
                      "; analyze recordings with --level to have them in dBm");
        }
        results << one;
    }
    return results;
}

// Levels and notches of what was measured, with the notches as its settings make them.
CampaignPlan planOf(const NprResult& result, const MeasurementSetup& setup)
{
    CampaignPlan plan;
    QVector<int> numbers;
    for (const NprPoint& point : result.points) {
        numbers << point.notch;
        plan.levels << point.level;
    }
    std::sort(plan.levels.begin(), plan.levels.end());
    plan.levels.erase(std::unique(plan.levels.begin(), plan.levels.end()), plan.levels.end());
    for (const NumberedNotch& notch : numberedNotches(setup, setup.signal.length)) {
        if (numbers.contains(notch.number) && notch.lines > 0) {
            plan.notches << notch;
        }
    }
    return plan;
}

void addTheory(const QString& text, ChartedResult& one)
{
    const std::optional<QString>& device = one.result.bench.simulated;
    const std::optional<Chain> simulated =
        device ? std::make_optional(chainOf(*device, one.name)) : std::nullopt;
    const Chain chain = theoryChain(text, simulated, one.result.levelUnit);
    MeasurementSetup setup = setupOf(one.result.config);
    makeSignal(setup);
    one.context.theoryName = "theory " + (text == "same" ? *device : text);
    one.context.theory = theoryPoints(setup, chain, planOf(one.result, setup));
}

void drawTogether(const QVector<ChartedResult>& results, const Arguments& arguments)
{
    const NprChartData chart = chartOf(results);
    for (const QString& file : arguments.values("plot")) {
        writeChart(chart, file);
    }
}

void joinPoints(const QVector<ChartedResult>& results, const Arguments& arguments, Console& console)
{
    QVector<NamedResult> parts;
    for (const ChartedResult& one : results) {
        parts << NamedResult{one.name, one.result};
    }
    for (const QString& file : arguments.values("csv")) {
        writeBytes(joinedCsv(parts), file, console);
    }
}

ExitStatus run(const Session& session)
{
    const Arguments& arguments = session.arguments;
    checkResultOptions(arguments);
    if (!arguments.has("plot") && !arguments.has("csv")) {
        failUsage(QStringLiteral("plot needs --plot FILE.png, --plot FILE.svg or --csv FILE"));
    }
    QVector<ChartedResult> results = readResults(arguments.positional());
    const QVector<double> thresholds = thresholdsOf(arguments, results);
    for (ChartedResult& one : results) {
        one.context.thresholds = thresholds;
        one.result.curves = curvesOf(one.result.points, thresholds);
        if (arguments.has("theory")) {
            addTheory(arguments.value("theory"), one);
        }
        if (!takesStandardOutput(arguments)) {
            session.console.print(session.console.painted(one.name, Colour::Bold) + '\n' +
                                  curveTable(one.result, session.console) + '\n');
        }
    }
    joinPoints(results, arguments, session.console);
    drawTogether(results, arguments);
    return ExitStatus::Done;
}

} // namespace

Command plotCommand()
{
    return {"plot",
            "Draw results together: several devices, temperatures, days.",
            "RESULT.json...",
            "plot monday.json friday.json --plot both.png --threshold 41",
            Options{{"plot", "FILE.png|FILE.svg", "Draw NPR over level.", true},
                    {"csv", "FILE",
                     "Write the points of all as comma-separated values, with the name of the "
                     "result as their last column; - is standard output.",
                     true},
                    {"threshold", "DB",
                     "Mark the range of levels where NPR stays above this; by default those of the "
                     "results.",
                     true},
                    {"theory", "DEVICE[,KEY=VALUE...]|same",
                     "Add the closed form of a device, or of the one that each result simulated."}},
            run};
}
