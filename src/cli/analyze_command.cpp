#include "cli/analyze_command.h"

#include "campaign/npr_curve.h"
#include "campaign/recorded_points.h"
#include "cli/made_signal.h"
#include "cli/measuring_request.h"
#include "cli/new_result.h"
#include "cli/progress.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/values.h"
#include "recording/notch_analysis.h"
#include "recording/recording_file.h"

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
    QVector<NumberedNotch> notches;
    RecordingRequest wanted; // but for rate and center
    double carrier = 0.0;    // of CONFIG, Hz
};

Task taskOf(const Session& session, const Request& request, MeasurementSetup& setup)
{
    if (!(setup.sampleRate > 0.0)) {
        failUsage(QStringLiteral("CONFIG's sample rate is %1 Hz; --set \"NPR/SRate=1e8\" makes it "
                                 "one that can be recorded")
                      .arg(setup.sampleRate));
    }
    Task task{session, request, numberedNotches(setup, setup.signal.length), {}, 0.0};
    task.wanted.signal = recordedSignalOf(setup, task.notches);
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

// What must be known of the numbers before they are read.
void warnOf(const RecordingAnalysis& analysis, const QVector<NprPoint>& points, const Task& task,
            const QString& file)
{
    Console& console = task.session.console;
    for (int k = 0; k < task.notches.size(); ++k) {
        if (!analysis.notches.at(k).isRecorded) {
            console.warn(
                QStringLiteral("%1: notch %2 or the signal beside it isn't in the recording")
                    .arg(file)
                    .arg(task.notches.at(k).number));
        }
    }
    if (points.isEmpty()) {
        failFile(file + " has none of CONFIG's notches: its rate is too low, or --center is wrong "
                        "(real samples need one)");
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
    const RecordingAnalysis analysis = analyze(reader, wanted, task.session);
    const QVector<NprPoint> points =
        recordedPoints(analysis, task.notches, {result.recordings.size(), level});
    warnOf(analysis, points, task, file);
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
    result.levelUnit = request.levels.isEmpty() ? LevelUnit::Dbfs : LevelUnit::Dbm;
    for (NprPoint& point : result.points) {
        if (!result.signal.noiseLike) {
            point.addMark(PointMark::notNoiseLike);
        }
    }
    if (request.limit) {
        applyLimit(result.points, *request.limit);
    }
    if (request.files.size() > 1) {
        result.curves = curvesOf(result.points, request.thresholds);
    }
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
    result.signal = figuresOf(setup, statistics);
    try {
        addRecordings(taskOf(session, request, setup), result);
    } catch (const RecordingError& error) {
        failFile(error.text);
    } catch (const ReadingStopped&) {
        return statusOfSignal(session.stop.received());
    }
    conclude(request, result);
    ResultContext context;
    context.limit = request.limit;
    context.thresholds = request.thresholds;
    putOut(result, context, session.arguments, session.console);
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
                {"threshold", "DB",
                 "Tell the span of levels around the peak over which NPR stays above it.", true},
                {"limit", "DB", "A reading below it fails, and the status is 1."}} +
            resultOptions() + Options{{"quiet", "", "No progress line."}} + setupOptions(),
        run};
}
