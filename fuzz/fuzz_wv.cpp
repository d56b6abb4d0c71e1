// Waveform files on their way into the simulator.
#include "fuzz/input_file.h"
#include "simulator/wv_file.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const InputFile input(bytesOf(data, size));
    QString errorText;
    const PlayedSignal read = loadWaveform(input.path(), errorText);
    if (read.iSamples.size() != read.qSamples.size() || (read.size() == 0) == errorText.isEmpty()) {
        std::abort();
    }
    return 0;
}
