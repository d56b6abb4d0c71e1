#include "files/waveform_output.h"

#include "base/truncation.h"

#include <new>

namespace {

void writeByEnding(const QString& path, const SignalData& signal, double sampleRate)
{
    const auto endsIn = [&path](const char* suffix) {
        return path.endsWith(QLatin1String(suffix), Qt::CaseInsensitive);
    };
    const quint32 clock = truncatedToUint32(sampleRate);
    if (endsIn(".i") || endsIn(".q")) {
        writeIQTextFiles(signal, path.chopped(2));
    } else if (endsIn(".i.wav") || endsIn(".q.wav")) {
        writeIQWaveFiles(signal, path.chopped(6), clock);
    } else if (endsIn(".wv")) {
        writeWvFile(signal, path.chopped(3), clock);
    }
}

} // namespace

void saveWaveform(const QString& path, const SignalData& signal, double sampleRate)
{
    try {
        writeByEnding(path, signal, sampleRate);
    } catch (const std::bad_alloc&) {
        // A failure like any other: the former file stays whole, and nothing is said.
    }
}
