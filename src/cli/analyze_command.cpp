#include "cli/analyze_command.h"

#include "campaign/npr_curve.h"
#include "campaign/recorded_points.h"
#include "campaign/subtraction.h"
#include "campaign/theory.h"
#include "cli/made_signal.h"
#include "cli/measuring_request.h"
#include "cli/new_result.h"
#include "cli/progress.h"
#include "cli/result_input.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/theory_argument.h"
#include "cli/values.h"
#include "recording/notch_analysis.h"
#include "recording/recording_file.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

struct Request
{
    QStringList files;
    QVector<double> levels; // dBm, one a file, or none
    const SampleType* type = nullptr;
    std::optional<double> sampleRate;
    std::optional<double> center;
    double skipSeconds = 0.0;
    QVector<double> thresholds;
    std::optional<double> limit;
    std::optional<Chain> theory;
    std::optional<NprResult> without; // the device

    LevelUnit unit() const { return levels.isEmpty() ? LevelUnit::Dbfs : LevelUnit::Dbm; }
};

void checkFiles(const Request& request)
{
    if (request.files.isEmpty()) {
        failUsage(QStringLiteral("analyze needs a recording behind CONFIG"));
    }
    if (!request.levels.isEmpty() && request.levels.size() != request.files.size()) {
        failUsage(QStringLiteral("--level is given %1 times for %2 recordings; give it once for "
                                 "each, in their order, or not at all")
                      .arg(request.levels.size())
                      .arg(request.files.size()));
    }
}

// Of the request's files and levels.
void takeComparisons(const Arguments& arguments, Request& request)
{
    if (arguments.has("theory")) {
        request.theory = theoryChain(arguments.value("theory"), std::nullopt, request.unit());
    }
    if (arguments.has("subtract") && request.levels.isEmpty()) {
        failUsage(QStringLiteral("--subtract needs --level for each recording, here and in what is "
                                 "subtracted: levels in dBFS are never quite the same"));
    }
    if (arguments.has("subtract")) {
        request.without = readResult(arguments.value("subtract"));
    }
}

const SampleType* typeOf(const QString& name)
{
    const SampleType* const type = sampleTypeOf(name);
    if (type == nullptr) {
        failUsage("--type takes " + sampleTypeNames().join('|') + ", not \"" + name + '"');
    }
    return type;
}

Request analyzeRequestOf(const Arguments& arguments)
{
    Request request;
    checkResultOptions(arguments);
    request.files = arguments.positional().mid(1);
    for (const QString& level : arguments.values("level")) {
        request.levels << numberOf(level, "--level", {-300.0, 300.0, "dBm"});
    }
    for (const QString& threshold : arguments.values("threshold")) {
        request.thresholds << thresholdOf(threshold);
    }
    if (arguments.has("type")) {
        request.type = typeOf(arguments.value("type"));
    }
    if (arguments.has("rate")) {
        request.sampleRate = numberOf(arguments.value("rate"), "--rate", {1e-3, 1e12, "Hz"});
    }
    if (arguments.has("limit")) {
        request.limit = numberOf(arguments.value("limit"), "--limit", {-300.0, 300.0, "dB"});
    }
    if (arguments.has("center")) {
        request.center = numberOf(arguments.value("center"), "--center", {-1e12, 1e12, "Hz"});
    }
    request.skipSeconds = numberOr(arguments, "skip", {0.0, 1e9, "seconds"}, 0.0);
    checkFiles(request);
    takeComparisons(arguments, request);
    return request;
}

double sampleRateOf(const Recording& recording, const Request& request)
{
    if (!request.sampleRate && !recording.sampleRate) {
        failUsage(recording.name + " doesn't tell its sample rate; give --rate HZ");
    }
    return request.sampleRate ? *request.sampleRate : *recording.sampleRate;
}

// Where the carrier lies: as told, or by the frequencies of CONFIG and recording where both have
// one.
double centerOf(const Recording& recording, const Request& request, double carrier)
{
    if (request.center) {
        return *request.center;
    }
    return recording.frequency && carrier != 0.0 ? carrier - *recording.frequency : 0.0;
}

// What is the same for all recordings.
struct Task
{
    const Session& session;
    const Request& request;
    QVector<NumberedNotch> notches; // all
    QVector<NumberedNotch> chosen;  // of them
    RecordingRequest wanted;        // but for rate and center
    std::optional<Theory> theory;   // of the chosen ones
    double carrier = 0.0;           // of CONFIG, Hz
};

Task taskOf(const Session& session, const Request& request, MeasurementSetup& setup)
{
    if (!(setup.sampleRate > 0.0)) {
        failUsage(QStringLiteral("CONFIG's sample rate is %1 Hz; --set \"NPR/SRate=1e8\" makes it "
                                 "one that can be recorded")
                      .arg(setup.sampleRate));
    }
    Task task{session, request, numberedNotches(setup, setup.signal.length), {}, {}, {}, 0.0};
    task.chosen = chosenNotches(session.arguments, task.notches);
    task.wanted.signal = recordedSignalOf(setup, task.notches);
    if (request.theory) {
        task.theory.emplace(setup.signal, setup.sampleRate, *request.theory, task.chosen);
    }
    task.wanted.played = {std::move(setup.signal.iSamples), std::move(setup.signal.qSamples)};
    task.wanted.skipSeconds = request.skipSeconds;
    task.carrier = setup.effectiveFrequency();
    setup.signal = SignalData();
    return task;
}

RecordingAnalysis analyze(const SampleReader& reader, const RecordingRequest& wanted,
                          const Session& session)
{
    Progress progress(session.console, "parts of " + reader.recording().name,
                      session.arguments.has("quiet"));
    return analyzeNotches(reader, wanted, [&](qint64 done, qint64 total) {
        progress.show(done, total);
        return session.stop.received() == 0;
    });
}

// Of the notches that aren't chosen there is nothing to tell.
bool isChosen(const Task& task, int notch)
{
    return std::any_of(task.chosen.begin(), task.chosen.end(),
                       [notch](const NumberedNotch& one) { return one.number == notch; });
}

QVector<NprPoint> pointsOf(const RecordingAnalysis& analysis, const Task& task,
                           const PlaceOfRecording& place)
{
    QVector<NprPoint> chosen;
    for (const NprPoint& point : recordedPoints(analysis, task.notches, place)) {
        if (isChosen(task, point.notch)) {
            chosen << point;
        }
    }
    return chosen;
}

// What must be known of the numbers before they are read.
void warnOf(const RecordingAnalysis& analysis, const QVector<NprPoint>& points, const Task& task,
            const QString& file, double center)
{
    Console& console = task.session.console;
    for (int k = 0; k < task.notches.size(); ++k) {
        if (isChosen(task, task.notches.at(k).number) && !analysis.notches.at(k).isRecorded) {
            console.warn(
                QStringLiteral("%1: notch %2 or the signal beside it isn't in the recording")
                    .arg(file)
                    .arg(task.notches.at(k).number));
        }
    }
    if (points.isEmpty()) {
        failFile(QStringLiteral("%1 has none of CONFIG's notches with the carrier at %2 Hz: its "
                                "rate is too low, or the carrier lies elsewhere; give --center "
                                "(real samples need one)")
                     .arg(file)
                     .arg(center));
    }
    if (points.constFirst().marks.contains(PointMark::clipped)) {
        console.warn(QStringLiteral("%1 is clipped: %2 % of its values are at their ends")
                         .arg(file)
                         .arg(100.0 * *analysis.clippedShare, 0, 'g', 3));
    }
    if (analysis.isInverted.value_or(false)) {
        console.warn(file + " is inverted: low frequencies lie above the carrier; its notches are "
                            "read there");
    }
}

// Its noise spreads over the rate that it samples at.
void requireTheorysRate(const Task& task, const Recording& recording, double sampleRate)
{
    constexpr double nearly = 1e-3;
    const double itsRate = task.wanted.signal.sampleRate;
    const bool isConverter = task.request.theory && task.request.theory->device.name == "adc";
    const bool isItsRate = std::abs(sampleRate - itsRate) <= nearly * itsRate;
    if (isConverter && !(recording.type->isComplex && isItsRate)) {
        const QString what = recording.type->isComplex ? QStringLiteral("has %1 Hz").arg(sampleRate)
                                                       : QStringLiteral("holds real samples");
        failUsage(QStringLiteral("--theory adc is that of two converters, one a component, at "
                                 "CONFIG's sample rate of %1 Hz; %2 %3")
                      .arg(itsRate)
                      .arg(recording.name, what));
    }
}

void addRecording(const Task& task, const QString& file, std::optional<double> level,
                  NprResult& result)
{
    const SampleReader reader(openRecording(file, task.request.type));
    const Recording& recording = reader.recording();
    for (const QString& remark : recording.remarks) {
        task.session.console.warn(remark);
    }
    RecordingRequest wanted = task.wanted;
    wanted.sampleRate = sampleRateOf(recording, task.request);
    wanted.center = centerOf(recording, task.request, task.carrier);
    requireTheorysRate(task, recording, wanted.sampleRate);
    const RecordingAnalysis analysis = analyze(reader, wanted, task.session);
    const QVector<NprPoint> points = pointsOf(analysis, task, {result.recordings.size(), level});
    warnOf(analysis, points, task, file, wanted.center);
    result.points += points;
    result.recordings << factsOf(analysis, wanted);
    result.recordings.last().file = file;
}

void addRecordings(const Task& task, NprResult& result)
{
    const QVector<double>& levels = task.request.levels;
    for (int k = 0; k < task.request.files.size(); ++k) {
        addRecording(task, task.request.files.at(k),
                     levels.isEmpty() ? std::nullopt : std::make_optional(levels.at(k)), result);
    }
}

void conclude(const Request& request, NprResult& result)
{
    result.bench.analyzer = QStringLiteral("recordings");
    for (NprPoint& point : result.points) {
        if (!result.signal.noiseLike) {
            point.addMark(PointMark::notNoiseLike);
        }
    }
    if (request.without) {
        subtractBench(request.without->points, result.points);
    }
    if (request.limit) {
        applyLimit(result.points, *request.limit);
    }
    if (request.files.size() > 1) {
        result.curves = curvesOf(result.points, request.thresholds);
    }
}

QVector<NprPoint> theoryOf(const Task& task, const QVector<NprPoint>& points)
{
    QVector<double> levels;
    for (const NprPoint& point : points) {
        if (!levels.contains(point.level)) {
            levels << point.level;
        }
    }
    return theoryPoints(*task.theory, levels, task.chosen);
}

void requireSubtractable(const Task& task, const NprResult& result)
{
    CampaignPlan plan;
    plan.levels = task.request.levels;
    plan.notches = task.chosen;
    requireSubtractable(task.request.without, result, plan, task.session.arguments);
}

ResultContext contextOf(const Task& task, const NprResult& result)
{
    ResultContext context;
    context.limit = task.request.limit;
    context.thresholds = task.request.thresholds;
    if (task.theory) {
        context.theoryName = "theory " + task.session.arguments.value("theory");
        context.theory = theoryOf(task, result.points);
    }
    return context;
}

ExitStatus run(const Session& session)
{
    const Request request = analyzeRequestOf(session.arguments);
    MeasurementSetup setup = readSetup(session.arguments, session.console, Further::Taken);
    requireNotchMode(setup);
    makeSignal(setup);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    warnUnlessNoiseLike(statistics, session.console);
    NprResult result = newResult(setup);
    result.levelUnit = request.unit();
    result.signal = figuresOf(setup, statistics);
    const Task task = taskOf(session, request, setup);
    requireSubtractable(task, result);
    try {
        addRecordings(task, result);
    } catch (const RecordingError& error) {
        failFile(error.text);
    } catch (const ReadingStopped&) {
        return statusOfSignal(session.stop.received());
    }
    conclude(request, result);
    putOut(result, contextOf(task, result), session.arguments, session.console);
    return hasMissedLimit(result.points) ? ExitStatus::LimitMissed : ExitStatus::Done;
}

} // namespace

Command analyzeCommand()
{
    return {
        "analyze",
        "Measure NPR in the notches from recordings of the device's output, with no "
        "instrument.",
        "CONFIG RECORDING...",
        "analyze bench.cfg recording.sigmf-meta --json result.json",
        Options{{"type", "TYPE",
                 "How raw files keep their samples: " + sampleTypeNames().join(", ") + '.'},
                {"rate", "HZ", "Sample rate of files that don't tell it."},
                {"center", "HZ",
                 "Where the signal's carrier lies in the recording; 0 by "
                 "default, needed for real samples."},
                {"skip", "SECONDS", "Pass over the beginning."},
                {"level", "DBM",
                 "Level that the device was driven with, once for each recording: several "
                 "make a curve. Without, the recordings' own levels are its axis.",
                 true},
                notchOption(),
                {"theory", "DEVICE[,KEY=VALUE...]",
                 "Add the closed form of a device; over levels in dBFS that of converters, such as "
                 "adc,bits=12."},
                {"subtract", "FILE.json",
                 "A result of recordings without the device, at the same --level, whose distortion "
                 "and noise are subtracted."},
                {"threshold", "DB",
                 "Tell the span of levels around the peak over which NPR stays above it.", true},
                {"limit", "DB", "A reading below it fails, and the status is 1."}} +
            resultOptions() + Options{{"quiet", "", "No progress line."}} + setupOptions(),
        run};
}
