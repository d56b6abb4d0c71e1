// Requests to the status server, with new data and without.
#include "fuzz/input_file.h"
#include "setup/measurement_setup.h"
#include "status/status_replies.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int longestReply = 3 * 8 + (2 * 64 + 1) * 4; // records and symbols
    const QString request = QString::fromLocal8Bit(bytesOf(data, size));
    MeasurementSetup setup;
    setup.signal.reset(64);
    setup.newDataFlag = true;
    if (replyTo(request, setup).size() > longestReply ||
        replyTo(request, setup).size() > longestReply) {
        std::abort();
    }
    return 0;
}
