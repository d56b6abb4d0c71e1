#include "cli/measuring_request.h"

#include "campaign/subtraction.h"
#include "cli/device_argument.h"
#include "cli/exit_status.h"
#include "cli/result_input.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/theory_argument.h"
#include "cli/values.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostAverages = 100000;
constexpr double usualSettling = 0.1; // s, of instruments

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

void requireLines(const QVector<NumberedNotch>& notches)
{
    for (const NumberedNotch& notch : notches) {
        if (notch.lines < 1) {
            failUsage(QStringLiteral("notch %1 is too narrow: there is no line of the signal in "
                                     "it; widen it or set a longer \"NPR/FFT Len\"")
                          .arg(notch.number));
        }
    }
}

} // namespace

Option notchOption()
{
    return {"notch", "all|N,N...",
            "Notches to measure, such as 1,3, numbered from the lowest centre up; all by default."};
}

QVector<NumberedNotch> chosenNotches(const Arguments& arguments, const QVector<NumberedNotch>& all)
{
    if (!arguments.has("notch") || arguments.value("notch") == "all") {
        return all;
    }
    QVector<NumberedNotch> chosen;
    QVector<int> numbers;
    for (const QString& word : arguments.value("notch").split(',')) {
        const int number = wholeNumberOf(word, "--notch", 1, all.size());
        if (!numbers.contains(number)) {
            numbers << number;
        }
    }
    std::sort(numbers.begin(), numbers.end());
    for (const int number : qAsConst(numbers)) {
        chosen << all.at(number - 1);
    }
    return chosen;
}

Options measuringOptions()
{
    return Options{
               {"simulate", "DEVICE[,KEY=VALUE...]",
                "Simulate generator, device and analyzer in place of CONFIG's instruments."},
               notchOption(),
               {"average", "N",
                "Readings per point; powers are averaged. Simulated, each takes the next seed."},
               {"settle", "SECONDS",
                "Wait after each change of level; 0 in simulation, 0.1 otherwise."},
               {"limit", "DB", "A reading below it fails, and the status is 1."},
               {"theory", "DEVICE[,KEY=VALUE...]|same",
                "Add the closed form of a device, or of the same one that is simulated."},
               {"subtract", "FILE.json",
                "A result measured without the device, whose distortion and noise are subtracted."},
           } +
           resultOptions() + Options{{"quiet", "", "No progress line."}} + setupOptions();
}

CurveRequest curveRequestOf(const Arguments& arguments)
{
    if (!arguments.has("levels")) {
        failUsage(QStringLiteral("curve needs --levels FROM:TO:STEP in dBm, such as -40:0:1"));
    }
    CurveRequest wanted;
    wanted.levels = levelsOf(arguments.value("levels"));
    for (const QString& threshold : arguments.values("threshold")) {
        wanted.thresholds << thresholdOf(threshold);
    }
    return wanted;
}

MeasuringRequest requestOf(const Arguments& arguments)
{
    MeasuringRequest request;
    checkResultOptions(arguments);
    if (arguments.has("simulate")) {
        request.simulatedText = arguments.value("simulate");
        request.simulated = chainOf(request.simulatedText, "--simulate");
    }
    request.averages = wholeNumberOr(arguments, "average", 1, mostAverages, 1);
    request.settleSeconds = numberOr(arguments, "settle", {0.0, 86400.0, "seconds"},
                                     request.simulated ? 0.0 : usualSettling);
    if (arguments.has("limit")) {
        request.limit = numberOf(arguments.value("limit"), "--limit", {-300.0, 300.0, "dB"});
    }
    if (arguments.has("theory")) {
        request.theory = theoryChain(arguments.value("theory"), request.simulated, LevelUnit::Dbm);
    }
    if (arguments.has("subtract")) {
        request.without = readResult(arguments.value("subtract"));
    }
    return request;
}

void requireSubtractable(const std::optional<NprResult>& without, const NprResult& wanted,
                         const CampaignPlan& plan, const Arguments& arguments)
{
    if (!without) {
        return;
    }
    const QString objection = objectionToSubtracting(*without, wanted, plan);
    if (!objection.isEmpty()) {
        failUsage("--subtract " + arguments.value("subtract") + ": " + objection +
                  "; measure it with the same notches, levels and bandwidth");
    }
}

void requireMeasurable(const MeasurementSetup& setup)
{
    if (!(setup.sampleRate > 0.0)) {
        failUsage(QStringLiteral("CONFIG's sample rate is %1 Hz; --set \"NPR/SRate=1e8\" makes it "
                                 "one that can be measured with")
                      .arg(setup.sampleRate));
    }
    if (setup.notchOrCarrier != NotchOrCarrier::Notch) {
        failUsage(QStringLiteral("CONFIG is in carrier mode, where there is no notch to measure "
                                 "in; --set \"NPR/Notch/Carrier=0\" changes to notches"));
    }
    (void)requireNotches(setup);
}

CampaignPlan planOf(const MeasurementSetup& setup, int signalLength,
                    const MeasuringRequest& request, const QVector<double>& levels,
                    const Arguments& arguments)
{
    CampaignPlan plan;
    plan.levels = levels;
    plan.notches = chosenNotches(arguments, numberedNotches(setup, signalLength));
    requireLines(plan.notches);
    plan.averages = request.averages;
    plan.settleSeconds = request.settleSeconds;
    return plan;
}

QString durationText(double seconds)
{
    const auto whole = static_cast<qint64>(std::ceil(seconds));
    const auto parted = [](qint64 all, const char* unit) {
        return QStringLiteral("about %1:%2 %3")
            .arg(all / 60)
            .arg(all % 60, 2, 10, QLatin1Char('0'))
            .arg(QLatin1String(unit));
    };
    return whole < 60     ? QStringLiteral("about %1 s").arg(whole)
           : whole < 3600 ? parted(whole, "min")
                          : parted((whole + 30) / 60, "h"); // in minutes
}
