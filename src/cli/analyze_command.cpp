#include "cli/commands.h"

#include "campaign/conclusion.h"
#include "campaign/npr_curve.h"
#include "campaign/recorded_points.h"
#include "campaign/theory.h"
#include "cli/analyze_request.h"
#include "cli/made_signal.h"
#include "cli/measuring_request.h"
#include "cli/new_result.h"
#include "cli/progress.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/theory_argument.h"
#include "recording/notch_analysis.h"
#include "recording/recording_file.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

double sampleRateOf(const Recording& recording, const AnalyzeRequest& request)
{
    if (!request.sampleRate && !recording.sampleRate) {
        failUsage(recording.name + " doesn't tell its sample rate; give --rate HZ");
    }
    return request.sampleRate ? *request.sampleRate : *recording.sampleRate;
}

// Where the carrier lies: as told, or by the frequencies of CONFIG and recording where both have
// one.
double centerOf(const Recording& recording, const AnalyzeRequest& request, double carrier)
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
    const AnalyzeRequest& request;
    QVector<NumberedNotch> notches; // all
    QVector<NumberedNotch> chosen;  // of them
    RecordingRequest wanted;        // but for rate and center
    std::optional<Theory> theory;   // of the chosen ones
    double carrier = 0.0;           // of CONFIG, Hz
};

Task taskOf(const Session& session, const AnalyzeRequest& request, MeasurementSetup& setup)
{
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

// How reading the recording with this index ended. One that can't be read leaves nothing in the
// result.
ExitStatus tryRecording(const Task& task, int index, NprResult& result)
{
    const QVector<double>& levels = task.request.levels;
    const bool hasOthers = task.request.files.size() > 1;
    Console& console = task.session.console;
    const auto leaveOut = [&](const QString& reason) {
        console.message(hasOthers ? reason + "; it is left out" : reason);
        return ExitStatus::FileFailed;
    };
    try {
        addRecording(task, task.request.files.at(index),
                     levels.isEmpty() ? std::nullopt : std::make_optional(levels.at(index)),
                     result);
    } catch (const RecordingError& error) {
        return leaveOut(error.text);
    } catch (const ReadingStopped&) {
        return statusOfSignal(task.session.stop.received());
    } catch (const Failure& failure) {
        if (failure.status == ExitStatus::FileFailed) {
            return leaveOut(failure.text);
        }
        console.message(failure.text);
        return failure.status;
    }
    return ExitStatus::Done;
}

// All that can be read, up to a signal or to what no other recording mends, such as wrong usage.
ExitStatus addRecordings(const Task& task, NprResult& result)
{
    ExitStatus all = ExitStatus::Done;
    for (int k = 0; k < task.request.files.size(); ++k) {
        const ExitStatus its = tryRecording(task, k, result);
        if (its != ExitStatus::Done && its != ExitStatus::FileFailed) {
            return its;
        }
        all = its == ExitStatus::Done ? all : its;
    }
    return all;
}

void conclude(const AnalyzeRequest& request, NprResult& result)
{
    result.bench.analyzer = QStringLiteral("recordings");
    Judgement by;
    if (request.without) {
        by.without.emplace(request.without->points);
    }
    by.limit = request.limit;
    by.thresholds = request.thresholds;
    by.hasCurves = request.files.size() > 1;
    conclude(result, by);
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

// A signal ends the work on theory too, and decides the status; what was read is put out without.
ResultContext contextOf(const Task& task, const NprResult& result, ExitStatus& status)
{
    ResultContext context;
    context.limit = task.request.limit;
    context.thresholds = task.request.thresholds;
    try {
        if (task.theory) {
            context.theory = theoryOf(task, result.points);
            context.theoryName = "theory " + task.session.arguments.value("theory");
        }
    } catch (const Failure& failure) {
        status = failure.status;
    }
    return context;
}

ExitStatus run(const Session& session)
{
    const AnalyzeRequest request = analyzeRequestOf(session.arguments);
    MeasurementSetup setup = readSetup(session.arguments, session.console, Further::Taken);
    requireMeasurable(setup);
    makeSignal(setup);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    warnUnlessNoiseLike(statistics, session.console);
    NprResult result = newResult(setup);
    result.levelUnit = request.unit();
    result.signal = figuresOf(setup, statistics);
    const Task task = taskOf(session, request, setup);
    requireSubtractable(task, result);
    ExitStatus status = addRecordings(task, result);
    if (result.recordings.isEmpty()) {
        return status;
    }
    conclude(request, result);
    const ResultContext context = contextOf(task, result, status);
    if (status == ExitStatus::Done && hasMissedLimit(result.points)) {
        status = ExitStatus::LimitMissed;
    }
    putOut(status, result, context, session.arguments, session.console);
    return status;
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
                 "Report the range of levels around the peak where NPR stays above this.", true},
                {"limit", "DB", "A reading below it fails, and the status is 1."}} +
            resultOptions() + Options{{"quiet", "", "No progress line."}} + setupOptions(),
        run};
}
