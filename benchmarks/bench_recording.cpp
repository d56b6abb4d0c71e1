// What a recording costs: 1 GiB of cf32 read in segments of 4096, in turns with scipy.signal.welch
// with the same window and overlap where it is found. The file lies in the folder for temporary
// ones. Counters: "against_scipy" above 1 means that ours is the faster one, "worst_db" is the
// largest difference of two bins, "gib_per_s" what is read a second.
#include "recording/notch_analysis.h"
#include "recording/periodograms.h"
#include "recording/recording_file.h"
#include "turns.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cmath>
#include <random>

namespace {

constexpr double rate = 1e8;
constexpr qint64 bytes = qint64{1} << 30;

// Noise, half a million samples of which come again and again.
QString writeNoise(const QTemporaryDir& folder)
{
    std::mt19937_64 random(1);
    std::normal_distribution<float> component(0.0F, 0.1F);
    std::vector<float> block(1 << 20);
    for (float& value : block) {
        value = component(random);
    }
    const auto blockBytes = static_cast<qint64>(block.size()) * qint64{sizeof(float)};
    QFile file(folder.filePath("noise.cf32"));
    file.open(QIODevice::WriteOnly);
    for (qint64 written = 0; written < bytes; written += blockBytes) {
        file.write(reinterpret_cast<const char*>(block.data()), blockBytes);
    }
    return file.fileName();
}

bool goOn(qint64 /*done*/, qint64 /*total*/)
{
    return true;
}

// At another rate than the recording's, with a notch that asks for segments of 4096.
void analyze(const SampleReader& reader)
{
    RecordingRequest request;
    request.signal.sampleRate = 0.8 * rate;
    request.signal.length = 131072;
    request.signal.band = {-0.4 * rate, 0.4 * rate};
    request.signal.gaps = {FrequencyBand{10e6, 14e6}};
    request.sampleRate = rate;
    const RecordingAnalysis analysis = analyzeNotches(reader, request, goOn);
    if (analysis.segmentLength != 4096) {
        std::abort();
    }
}

// Leaves its densities in a file beside the recording.
double scriptSeconds(const QString& recording)
{
    QProcess script;
    script.start(QStringLiteral(NOTCHBENCH_WELCH_SCRIPT), {recording, recording + ".welch"});
    script.waitForFinished(-1);
    const double seconds = script.readAllStandardOutput().trimmed().toDouble();
    return script.exitCode() == 0 ? seconds : 0.0;
}

double worstDifference(const SampleReader& reader, const QString& recording)
{
    QFile file(recording + ".welch");
    file.open(QIODevice::ReadOnly);
    const QByteArray theirs = file.readAll();
    const PowerDensity ours = powerDensity(reader, rate, 0, 4096, goOn);
    double worst = theirs.size() == 4096 * int(sizeof(double)) ? 0.0 : HUGE_VAL;
    const auto* const values = reinterpret_cast<const double*>(theirs.constData());
    for (std::size_t k = 0; k < ours.bins.size() && std::isfinite(worst); ++k) {
        worst = std::max(worst, std::abs(10.0 * std::log10(ours.bins[k] / values[k])));
    }
    return worst;
}

void recording(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = writeNoise(folder);
    const SampleReader reader(openRecording(path, nullptr));
    Fastest ours;
    Fastest theirs;
    while (state.KeepRunning()) {
        state.SetIterationTime(ours.add(secondsOf([&reader] { analyze(reader); })));
        if (const double seconds = scriptSeconds(path); seconds > 0.0) {
            theirs.add(seconds);
        }
    }
    state.counters["gib_per_s"] = 1.0 / ours.seconds();
    if (theirs.isMeasured()) {
        state.counters["against_scipy"] = theirs.seconds() / ours.seconds();
        state.counters["worst_db"] = worstDifference(reader, path);
    }
}

} // namespace

BENCHMARK(recording)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
