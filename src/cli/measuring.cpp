#include "cli/measuring.h"

#include "campaign/campaign.h"
#include "campaign/instrument_bench.h"
#include "campaign/npr_curve.h"
#include "campaign/result_json.h"
#include "campaign/simulated_bench.h"
#include "campaign/subtraction.h"
#include "campaign/theory.h"
#include "cli/device_argument.h"
#include "cli/made_signal.h"
#include "cli/progress.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/values.h"
#include "setup/config_file.h"

#include <QDateTime>
#include <QEventLoop>
#include <QFile>

#include <algorithm>

namespace {

constexpr int mostAverages = 100000;
constexpr double usualSettling = 0.1; // s, of instruments

// The options that are checked before anything is calculated.
struct Request
{
    std::optional<Chain> simulated;
    QString simulatedText;
    int averages = 1;
    double settleSeconds = 0.0;
    std::optional<double> limit;
    std::optional<NprResult> without; // the device
    std::optional<Chain> theory;
};

// The chain of "--theory"; a converter has the full scale of the simulated one unless it is given.
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

NprResult readResult(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        failFile("can't read result " + path + ": " + file.errorString());
    }
    try {
        return resultFromJson(file.read(qint64{mostResultBytes} + 1));
    } catch (const ResultError& error) {
        failFile(path + " is no result of this program: " + error.text);
    }
}

Request requestOf(const Arguments& arguments)
{
    Request request;
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
        request.theory = theoryChain(arguments.value("theory"), request.simulated);
    }
    if (arguments.has("subtract")) {
        request.without = readResult(arguments.value("subtract"));
    }
    return request;
}

// The notches of "--notch all" or "--notch 1,3".
QVector<NumberedNotch> chosenNotches(const Arguments& arguments, const MeasurementSetup& setup)
{
    const QVector<NumberedNotch> all = numberedNotches(setup, setup.signal.length);
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

void requireNotchMode(const MeasurementSetup& setup)
{
    if (setup.notchOrCarrier != NotchOrCarrier::Notch) {
        failUsage(QStringLiteral("CONFIG is in carrier mode, where there is no notch to measure "
                                 "in; --set \"NPR/Notch/Carrier=0\" changes to notches"));
    }
    (void)requireNotches(setup);
}

CampaignPlan planOf(const MeasurementSetup& setup, const Request& request, const Measuring& wanted,
                    double presentLevel, const Session& session)
{
    CampaignPlan plan;
    plan.levels = wanted.levels.isEmpty() ? QVector<double>{presentLevel} : wanted.levels;
    plan.notches = chosenNotches(session.arguments, setup);
    requireLines(plan.notches);
    plan.averages = request.averages;
    plan.settleSeconds = request.settleSeconds;
    return plan;
}

ConfigSections configSectionsOf(const MeasurementSetup& setup)
{
    ConfigSections sections;
    const ConfigText text = parseConfigText(configTextOf(setup));
    for (auto section = text.begin(); section != text.end(); ++section) {
        for (auto key = section->begin(); key != section->end(); ++key) {
            const bool isQuoted = key->startsWith('"');
            sections[section.key()][key.key()] = isQuoted ? key->mid(1, key->size() - 2) : *key;
        }
    }
    return sections;
}

SignalFigures figuresOf(const MeasurementSetup& setup, const StimulusStatistics& statistics)
{
    SignalFigures figures;
    figures.length = setup.signal.length;
    figures.sampleRate = setup.sampleRate;
    figures.crestFactor = setup.crestFactor;
    figures.peakBetweenSamples = statistics.peak;
    for (std::size_t k = 0; k < ccdfShares.size(); ++k) {
        figures.ccdf[100.0 * ccdfShares[k]] = statistics.ccdf[k];
    }
    figures.noiseLike = statistics.isNoiseLike;
    return figures;
}

// A bench and what people are told before it begins.
struct ChosenBench
{
    std::shared_ptr<Bench> bench;
    double presentLevel;
};

ChosenBench simulatedBench(const MeasurementSetup& setup, const Request& request)
{
    const QString objection = SimulatedBench::objectionTo(setup.signal);
    if (!objection.isEmpty()) {
        failFile(objection);
    }
    return {std::make_shared<SimulatedBench>(setup.forOtherThread(), *request.simulated,
                                             request.simulatedText),
            InstrumentBench(setup).presentLevel()};
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

ResultContext contextOf(const MeasurementSetup& setup, const Request& request,
                        const CampaignPlan& plan, const Session& session, const Measuring& wanted)
{
    ResultContext context;
    context.limit = request.limit;
    context.thresholds = wanted.thresholds;
    if (request.theory) {
        const QString name = session.arguments.value("theory");
        context.theoryName = "theory " + (name == "same" ? request.simulatedText : name);
        context.theory = theoryPoints(setup, *request.theory, plan);
    }
    return context;
}

QString durationText(double seconds)
{
    const auto whole = static_cast<qint64>(std::ceil(seconds));
    return whole < 60 ? QStringLiteral("%1 s").arg(whole)
                      : QStringLiteral("%1:%2:%3 h")
                            .arg(whole / 3600)
                            .arg(whole / 60 % 60, 2, 10, QLatin1Char('0'))
                            .arg(whole % 60, 2, 10, QLatin1Char('0'));
}

void tellBeforehand(const InstrumentBench& bench, const CampaignPlan& plan, Console& console)
{
    console.message(QStringLiteral(
        "the generator must already play the signal of CONFIG, which doesn't travel over this "
        "connection: write it with \"notchbench-cli signal CONFIG --out BASE --format wv\" and "
        "load "
        "it there, or let it fetch it from \"notchbench-cli serve CONFIG\""));
    console.message(
        QStringLiteral("%1 readings, about %2; the level of the %3 goes from %4 to %5 dBm")
            .arg(plan.readingCount())
            .arg(durationText(bench.expectedSeconds(plan)), bench.levelledInstrument())
            .arg(plan.lowestLevel())
            .arg(plan.highestLevel()));
}

CampaignOutcome run(const CampaignPlan& plan, const std::shared_ptr<Bench>& bench,
                    const Session& session)
{
    Progress progress(session.console, "readings", session.arguments.has("quiet"));
    Campaign campaign;
    QEventLoop loop;
    QObject::connect(&campaign, &Campaign::finished, &loop, &QEventLoop::quit);
    QObject::connect(
        &campaign, &Campaign::progressed, &loop,
        [&progress](const CampaignProgress& now) { progress.show(now.readings, now.total); });
    QObject::connect(&session.stop, &StopSignals::requested, &campaign, &Campaign::interrupt);
    campaign.start(plan, bench);
    if (session.stop.received() != 0) {
        campaign.interrupt();
    }
    loop.exec();
    return campaign.outcome();
}

void subtract(const Request& request, const QString& file, NprResult& result)
{
    if (!request.without) {
        return;
    }
    const QString refusal = subtractBench(request.without->points, result.points);
    if (!refusal.isEmpty()) {
        failUsage("--subtract " + file + ": " + refusal +
                  "; measure it with the same notches and levels");
    }
}

ExitStatus statusOf(const CampaignOutcome& outcome, const NprResult& result, const Request& request,
                    const Session& session)
{
    switch (outcome.ending) {
    case CampaignOutcome::Ending::Failed:
        session.console.message(outcome.failure + "; what was measured is kept");
        return request.simulated ? ExitStatus::FileFailed : ExitStatus::InstrumentFailed;
    case CampaignOutcome::Ending::Interrupted:
        return statusOfSignal(session.stop.received());
    case CampaignOutcome::Ending::Done:
        break;
    }
    if (!outcome.warning.isEmpty()) {
        return ExitStatus::InstrumentFailed;
    }
    return hasMissedLimit(result.points) ? ExitStatus::LimitMissed : ExitStatus::Done;
}

// The bytes of a result's points are those that this command's measurement gave, and what follows.
void conclude(NprResult& result, const CampaignOutcome& outcome, const Request& request,
              const Measuring& wanted, const Session& session)
{
    result.bench = outcome.bench;
    result.signal.seeds = outcome.seeds;
    result.points = outcome.points;
    for (NprPoint& point : result.points) {
        if (!result.signal.noiseLike) {
            point.addMark(PointMark::notNoiseLike);
        }
    }
    subtract(request, session.arguments.value("subtract"), result);
    if (request.limit) {
        applyLimit(result.points, *request.limit);
    }
    if (!wanted.levels.isEmpty()) {
        result.curves = curvesOf(result.points, wanted.thresholds);
    }
    if (!outcome.warning.isEmpty()) {
        session.console.warn(outcome.warning);
    }
}

// Writes what was measured whatever the campaign's end; the first failure decides the status.
void putOutAfter(ExitStatus status, const NprResult& result, const ResultContext& context,
                 const Session& session)
{
    try {
        putOut(result, context, session.arguments, session.console);
    } catch (const Failure& failure) {
        if (status == ExitStatus::Done || status == ExitStatus::LimitMissed) {
            throw;
        }
        session.console.message(failure.text);
    }
}

} // namespace

Options measuringOptions()
{
    return Options{
               {"simulate", "DEVICE[,KEY=VALUE...]",
                "Simulate generator, device and analyzer in place of CONFIG's instruments. " +
                    deviceHelp()},
               {"notch", "all|N,N...",
                "Rows of the notch table, numbered from 1 by rising centre; all by default."},
               {"average", "N",
                "Readings a point; powers are averaged. Simulated, each takes the next seed."},
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

ExitStatus measure(const Session& session, const Measuring& wanted)
{
    const Request request = requestOf(session.arguments);
    MeasurementSetup setup = readSetup(session.arguments, session.console);
    requireNotchMode(setup);
    NprResult result;
    result.program = QStringLiteral("notchbench-cli " NOTCHBENCH_VERSION);
    // Deliberate: in whole seconds and UTC, the only member that two runs of a command differ in.
    result.started = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    result.config = configSectionsOf(setup);
    makeSignal(setup);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    warnUnlessNoiseLike(statistics, session.console);
    result.signal = figuresOf(setup, statistics);
    const ChosenBench chosen = request.simulated
                                   ? simulatedBench(setup, request)
                                   : ChosenBench{std::make_shared<InstrumentBench>(setup),
                                                 InstrumentBench(setup).presentLevel()};
    const CampaignPlan plan = planOf(setup, request, wanted, chosen.presentLevel, session);
    const ResultContext context = contextOf(setup, request, plan, session, wanted);
    setup.signal = SignalData(); // the bench has it, where it plays it
    if (const auto* instruments = dynamic_cast<const InstrumentBench*>(chosen.bench.get())) {
        tellBeforehand(*instruments, plan, session.console);
    }
    const CampaignOutcome outcome = run(plan, chosen.bench, session);
    conclude(result, outcome, request, wanted, session);
    const ExitStatus status = statusOf(outcome, result, request, session);
    putOutAfter(status, result, context, session);
    return status;
}
