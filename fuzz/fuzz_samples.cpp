// Raw sample files: the first byte of an input says where the I file ends and the Q file begins,
// in 255th parts of the rest; 128 makes two files of one size.
#include "files/signal_input.h"
#include "fuzz/input_file.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const QByteArray bytes = bytesOf(data + 1, size - 1);
    const int split = data[0] == 128 ? bytes.size() / 2 : bytes.size() * data[0] / 255;
    const InputFile iInput(bytes.left(split));
    const InputFile qInput(bytes.mid(split, data[0] == 128 ? split : -1));
    const SignalData read = loadIQFiles(iInput.path(), qInput.path());
    if (read.iSamples.size() != read.length || read.qSamples.size() != read.length ||
        read.magnitude.size() != read.length || read.phase.size() != read.length) {
        std::abort();
    }
    return 0;
}
