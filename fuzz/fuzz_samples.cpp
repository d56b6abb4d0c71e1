// Raw sample files, each of a size of its own: two little-endian words of 16 bits are the sizes of
// the I file and of the Q file in bytes; what follows fills them, from its begin again as often as
// needed.
#include "files/signal_input.h"
#include "fuzz/input_file.h"

#include <QtEndian>

#include <cstdlib>

namespace {

constexpr int headSize = 4; // bytes

QByteArray piece(const QByteArray& content, int from, int size)
{
    QByteArray bytes;
    for (int at = 0; at < size && !content.isEmpty(); ++at) {
        bytes += content.at((from + at) % content.size());
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < headSize) {
        return 0;
    }
    const int iSize = qFromLittleEndian<quint16>(data);
    const int qSize = qFromLittleEndian<quint16>(data + 2);
    const QByteArray content = bytesOf(data + headSize, size - headSize);
    const QByteArray iBytes = piece(content, 0, iSize);
    const QByteArray qBytes = piece(content, iSize, qSize);
    const InputFile iInput(iBytes);
    const InputFile qInput(qBytes);
    const SignalData read = loadIQFiles(iInput.path(), qInput.path());
    const bool isOfOneSize = iBytes.size() == qBytes.size(); // both empty where nothing fills them
    if ((read.length > 0 && !isOfOneSize) || read.iSamples.size() != read.length ||
        read.qSamples.size() != read.length || read.magnitude.size() != read.length ||
        read.phase.size() != read.length) {
        std::abort();
    }
    return 0;
}
