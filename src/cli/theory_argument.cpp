#include "cli/theory_argument.h"

#include "campaign/theory.h"
#include "cli/device_argument.h"
#include "cli/exit_status.h"

Chain theoryChain(const QString& text, const std::optional<Chain>& simulated)
{
    if (text == "same" && !simulated) {
        failUsage(QStringLiteral("--theory same is that of the device of --simulate; name one"));
    }
    Chain chain = text == "same" ? *simulated : chainOf(text, "--theory");
    if (!Theory::isIn(chain.device)) {
        failUsage("--theory: there is none of " + chain.device.name);
    }
    const bool isConverter = chain.device.name == "adc";
    const bool hasScale =
        text == "same" || text.contains("full-scale=") || text.contains("loading=");
    if (isConverter && !hasScale) {
        if (!simulated || simulated->device.name != "adc") {
            failUsage(QStringLiteral("--theory adc needs full-scale=DBM"));
        }
        chain.device.fullScale = simulated->device.fullScale;
        chain.device.loadingFactor = simulated->device.loadingFactor;
    }
    return chain;
}

QVector<NprPoint> theoryPoints(const MeasurementSetup& setup, const Chain& chain,
                               const CampaignPlan& plan)
{
    const Theory theory(setup.signal, setup.sampleRate, chain, plan.notches);
    QVector<NprPoint> points;
    for (const double level : plan.levels) {
        const QVector<std::optional<double>> ratios = theory.at(level);
        for (int k = 0; k < ratios.size(); ++k) {
            NprPoint point;
            point.level = level;
            point.notch = plan.notches.at(k).number;
            point.npr = ratios.at(k);
            points << point;
        }
    }
    return points;
}
