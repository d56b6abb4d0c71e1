#include "files/waveform_output.h"

#include "base/truncation.h"

#include <new>

namespace {

bool writeByEnding(const QString& path, const SignalData& signal, double sampleRate)
{
    const auto endsIn = [&path](const char* suffix) {
        return path.endsWith(QLatin1String(suffix), Qt::CaseInsensitive);
    };
    const quint32 clock = truncatedToUint32(sampleRate);
    if (endsIn(".i") || endsIn(".q")) {
        return writeIQTextFiles(signal, path.chopped(2));
    }
    if (endsIn(".i.wav") || endsIn(".q.wav")) {
        return writeIQWaveFiles(signal, path.chopped(6), clock);
    }
    if (endsIn(".wv")) {
        return writeWvFile(signal, path.chopped(3), clock);
    }
    return false;
}

} // namespace

bool saveWaveform(const QString& path, const SignalData& signal, double sampleRate)
{
    try {
        return writeByEnding(path, signal, sampleRate);
    } catch (const std::bad_alloc&) {
        return false; // a failure like any other: the former file stays whole
    }
}
