#include "cli/theory_argument.h"

#include "cli/device_argument.h"
#include "cli/exit_status.h"

Chain theoryChain(const QString& text, const std::optional<Chain>& simulated, LevelUnit unit)
{
    if (text == "same" && !simulated) {
        failUsage(QStringLiteral("--theory same is that of the device of --simulate; name one"));
    }
    Chain chain = text == "same" ? *simulated : chainOf(text, "--theory");
    if (!Theory::isIn(chain.device)) {
        failUsage("--theory: " + chain.device.name + " makes no distortion and has no closed form");
    }
    const bool isConverter = chain.device.name == "adc";
    const bool hasScale =
        text == "same" || text.contains("full-scale=") || text.contains("loading=");
    if (unit == LevelUnit::Dbfs && !isConverter) {
        failUsage("--theory " + chain.device.name +
                  " needs levels in dBm: analyze the recordings with --level");
    }
    if (isConverter && !hasScale && unit == LevelUnit::Dbfs) {
        chain.device.fullScale = 0.0;
    } else if (isConverter && !hasScale) {
        if (!simulated || simulated->device.name != "adc") {
            failUsage(QStringLiteral("--theory adc needs full-scale=DBM"));
        }
        chain.device.fullScale = simulated->device.fullScale;
        chain.device.loadingFactor = simulated->device.loadingFactor;
    }
    return chain;
}

QVector<NprPoint> theoryPoints(const MeasurementSetup& setup, const Chain& chain,
                               const CampaignPlan& plan, const StopCheck& stop)
{
    return theoryPoints(Theory(setup.signal, setup.sampleRate, chain, plan.notches), plan.levels,
                        plan.notches, stop);
}

QVector<NprPoint> theoryPoints(const Theory& theory, const QVector<double>& levels,
                               const QVector<NumberedNotch>& notches, const StopCheck& stop)
{
    QVector<NprPoint> points;
    for (const double level : levels) {
        stop(); // many levels take minutes
        const QVector<std::optional<double>> ratios = theory.at(level);
        for (int k = 0; k < ratios.size(); ++k) {
            NprPoint point;
            point.level = level;
            point.notch = notches.at(k).number;
            point.npr = ratios.at(k);
            points << point;
        }
    }
    return points;
}
