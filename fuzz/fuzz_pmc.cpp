// Magnitude/phase files.
#include "files/signal_input.h"
#include "fuzz/input_file.h"

#include <QList>

#include <cstdlib>

namespace {

// A length of five digits is legal, and its zeros cost time that finds nothing.
bool isLong(const QByteArray& bytes)
{
    const QByteArray number = bytes.split('\n').constFirst().trimmed();
    return number.size() > 4 && number.toLongLong() > 9999;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    if (isLong(bytes)) {
        return 0;
    }
    const InputFile input(bytes);
    const SignalData read = loadMagnitudePhaseFile(input.path());
    if (read.magnitude.size() != read.length || read.phase.size() != read.length ||
        read.iSamples.size() != read.length || read.qSamples.size() != read.length) {
        std::abort();
    }
    return 0;
}
