#include "cli/prepared_measuring.h"

#include "campaign/instrument_bench.h"
#include "campaign/simulated_bench.h"
#include "cli/exit_status.h"
#include "cli/made_signal.h"
#include "cli/new_result.h"
#include "cli/setup_arguments.h"
#include "cli/theory_argument.h"
#include "transform/decibels.h"

#include <algorithm>
#include <cmath>

namespace {

// For a message: all where they are few.
QString firstOf(const QStringList& words)
{
    constexpr int most = 5;
    const QString some = words.mid(0, most).join(", ");
    return words.size() > most ? QStringLiteral("%1 and %2 more").arg(some).arg(words.size() - most)
                               : some;
}

// A bench and the level that its settings have.
struct ChosenBench
{
    std::shared_ptr<Bench> bench;
    double presentLevel;
};

ChosenBench chosenBench(const MeasurementSetup& setup, const MeasuringRequest& request)
{
    const auto instruments = std::make_shared<InstrumentBench>(setup);
    const double presentLevel = instruments->presentLevel();
    if (!request.simulated) {
        return {instruments, presentLevel};
    }
    const QString objection = SimulatedBench::objectionTo(setup.signal);
    if (!objection.isEmpty()) {
        failFile(objection);
    }
    return {std::make_shared<SimulatedBench>(setup.forOtherThread(), *request.simulated,
                                             request.simulatedText),
            presentLevel};
}

QVector<double> levelsOf(const CurveRequest& wanted, double presentLevel)
{
    constexpr double most = 300.0; // dBm, the bound of --levels
    if (!wanted.levels.isEmpty()) {
        return wanted.levels;
    }
    if (!(std::abs(presentLevel) <= most)) {
        failUsage(QStringLiteral("CONFIG's level is %1 dBm, beyond that of any generator; change "
                                 "it with --set, such as --set \"Generator1/Level=-20\"")
                      .arg(presentLevel));
    }
    return {presentLevel};
}

// A reading compares the notch with the channel beside it, whatever that holds.
void warnOfReferences(const MeasurementSetup& setup, const CampaignPlan& plan, Console& console)
{
    constexpr double enough = 0.8; // one decibel
    QStringList numbers;
    double least = enough;
    for (const NumberedNotch& notch : plan.notches) {
        const double filling = referenceFilling(notch, setup.signal, setup.sampleRate);
        if (filling < enough) {
            numbers << QString::number(notch.number);
            least = std::min(least, filling);
        }
    }
    if (!numbers.isEmpty()) {
        console.warn(
            QStringLiteral("the reference channel of notch %1 lies partly in another notch or "
                           "beyond the noise: NPR reads up to %2 dB too low there; make "
                           "notches narrower or fewer")
                .arg(firstOf(numbers))
                .arg(-decibels(least), 0, 'f', 1));
    }
}

// What no analyzer can be tuned to: the carrier of the defaults is at 0 Hz.
void warnOfFrequencies(const MeasurementSetup& setup, const CampaignPlan& plan, Console& console)
{
    const NumberedNotch& lowest = plan.notches.constFirst();
    const double frequency = setup.analyzer.frequency + lowest.notch.center;
    if (frequency < 0.0) {
        console.warn(
            QStringLiteral("notch %1 lies at %2 Hz, for \"Analyzer/Frequency\" is %3 Hz; set "
                           "the carrier's frequency, for the generator too")
                .arg(lowest.number)
                .arg(frequency, 0, 'g', 9)
                .arg(setup.analyzer.frequency, 0, 'g', 9));
    }
}

void addTheory(ResultContext& context, const MeasurementSetup& setup, const CampaignPlan& plan,
               const MeasuringRequest& request, const QString& name, const StopCheck& stop)
{
    context.theoryName = "theory " + (name == "same" ? request.simulatedText : name);
    context.theory = theoryPoints(setup, *request.theory, plan, stop);
}

} // namespace

PreparedMeasuring prepareMeasuring(const Arguments& arguments, const CurveRequest& wanted,
                                   Console& console, const StopCheck& stop)
{
    PreparedMeasuring ready;
    ready.request = requestOf(arguments);
    MeasurementSetup setup = readSetup(arguments, console);
    requireMeasurable(setup);
    ready.result = newResult(setup);
    makeSignal(setup);
    stop();
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    warnUnlessNoiseLike(statistics, console);
    ready.result.signal = figuresOf(setup, statistics);
    const ChosenBench chosen = chosenBench(setup, ready.request);
    ready.bench = chosen.bench;
    ready.plan = planOf(setup, setup.signal.length, ready.request,
                        levelsOf(wanted, chosen.presentLevel), arguments);
    warnOfReferences(setup, ready.plan, console);
    if (!ready.request.simulated) {
        warnOfFrequencies(setup, ready.plan, console);
    }
    requireSubtractable(ready.request.without, ready.result, ready.plan, arguments);
    if (ready.request.without) {
        ready.judgement.without.emplace(ready.request.without->points);
    }
    ready.judgement.limit = ready.request.limit;
    ready.judgement.thresholds = wanted.thresholds;
    ready.judgement.hasCurves = !wanted.levels.isEmpty();
    ready.context.limit = ready.request.limit;
    ready.context.thresholds = wanted.thresholds;
    if (ready.request.theory) {
        addTheory(ready.context, setup, ready.plan, ready.request, arguments.value("theory"), stop);
    }
    return ready;
}

NprResult resultOf(const PreparedMeasuring& ready, const QVector<NprPoint>& points,
                   const BenchNames& bench, const QVector<quint32>& seeds)
{
    NprResult result = ready.result;
    result.bench = bench;
    result.signal.seeds = seeds;
    result.points = points;
    conclude(result, ready.judgement);
    return result;
}
