// Recordings: the first byte chooses the form of the file and whether the signal is longer than
// most inputs, the rest is the file. What a reader takes is analyzed too.
#include "fuzz/input_file.h"
#include "recording/notch_analysis.h"
#include "recording/recording_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdlib>

namespace {

const char* const names[] = {"a.npy", "a.wav", "a.i.wav", "a.sigmf-meta", "a.cf32", "a.ri16"};
constexpr std::size_t nameCount = sizeof(names) / sizeof(names[0]);

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        std::abort();
    }
}

// A chirp, which is unlike itself at every other place.
SignalPeriod chirp(int length)
{
    SignalPeriod period;
    for (int k = 0; k < length; ++k) {
        const double radians = M_PI * k * k / length;
        period.i << std::cos(radians);
        period.q << std::sin(radians);
    }
    return period;
}

void analyze(const Recording& recording, int length)
{
    RecordingRequest request;
    request.signal.sampleRate = 1000.0;
    request.signal.length = length;
    request.played = chirp(length);
    request.signal.band = {-400.0, 400.0};
    request.signal.gaps = {FrequencyBand{-100.0, 50.0}};
    request.sampleRate = 1000.0;
    const SampleReader reader(recording);
    const RecordingAnalysis analysis =
        analyzeNotches(reader, request, [](qint64, qint64) { return true; });
    if (!std::isfinite(analysis.power) || analysis.notches.size() != 1) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const QTemporaryDir folder;
    constexpr int shortPeriod = 256;
    constexpr int longPeriod = 2048;
    const int period = data[0] / nameCount % 2 == 0 ? shortPeriod : longPeriod;
    const QByteArray bytes = bytesOf(data + 1, size - 1);
    const QString path = folder.filePath(names[data[0] % nameCount]);
    write(folder.filePath("a.q.wav"), bytes);
    write(folder.filePath("a.sigmf-data"), bytes);
    write(path, bytes);
    try {
        const Recording recording = openRecording(path, nullptr);
        if (recording.samples <= 0 || recording.type == nullptr) {
            std::abort();
        }
        analyze(recording, period);
    } catch (const RecordingError& error) {
        if (error.text.isEmpty() || error.text.contains('\n')) {
            std::abort();
        }
    }
    return 0;
}
