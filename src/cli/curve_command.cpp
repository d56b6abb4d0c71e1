#include "cli/curve_command.h"

#include "campaign/plan.h"
#include "cli/measuring.h"
#include "cli/measuring_request.h"
#include "cli/values.h"

namespace {

constexpr Range dbm{-300.0, 300.0, "dBm"};

QVector<double> levelsOf(const QString& text)
{
    const QStringList fields = text.split(':');
    if (fields.size() != 3) {
        failUsage("--levels takes FROM:TO:STEP in dBm, such as -40:0:1, not \"" + text + '"');
    }
    const double from = numberOf(fields.at(0), "--levels FROM", dbm);
    const double to = numberOf(fields.at(1), "--levels TO", dbm);
    const double step = numberOf(fields.at(2), "--levels STEP", {-600.0, 600.0, "dB"});
    const QVector<double> levels = levelSteps(from, to, step);
    if (levels.isEmpty()) {
        failUsage(QStringLiteral("--levels: a step of %1 dB gives no levels or more than %2")
                      .arg(step)
                      .arg(mostLevels));
    }
    return levels;
}

ExitStatus run(const Session& session)
{
    return measure(session, curveOf(session.arguments));
}

} // namespace

Measuring curveOf(const Arguments& arguments)
{
    if (!arguments.has("levels")) {
        failUsage(QStringLiteral("curve needs --levels FROM:TO:STEP in dBm, such as -40:0:1"));
    }
    Measuring wanted;
    wanted.levels = levelsOf(arguments.value("levels"));
    for (const QString& threshold : arguments.values("threshold")) {
        wanted.thresholds << thresholdOf(threshold);
    }
    return wanted;
}

Command curveCommand()
{
    return {
        "curve",
        "Measure NPR in the notches over levels: peak, range over a threshold, pass or fail.",
        "CONFIG",
        "curve default --notches 9,1e6,-100,0 --simulate adc,bits=12,full-scale=0 --levels "
        "-40:0:1 --threshold 41",
        Options{{"levels", "FROM:TO:STEP", "Levels in dBm, both ends included."},
                {"threshold", "DB",
                 "Report the range of levels around the peak where NPR stays above this.", true}} +
            measuringOptions(),
        run};
}
