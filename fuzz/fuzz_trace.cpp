// Stored traces of the analyzer, and the corrections made of them: for fewer lines than points, and
// for lines around the span of the trace.
#include "fit/trace_correction.h"
#include "fuzz/input_file.h"

#include <cstdlib>
#include <stdexcept>

namespace {

void correct(const AnalyzerTrace& trace, int lineCount)
{
    constexpr double sampleRate = 20e6;
    try {
        const QVector<double> lines =
            lineFrequencies(lineCount, sampleRate, sampleRate / lineCount);
        if (directCorrection(trace, lineCount).size() != lineCount ||
            polynomialCorrection(trace, lines).size() != lineCount) {
            std::abort();
        }
    } catch (const std::range_error&) {
        // No points are left between the lines: no polynomial is offered.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const InputFile input(bytesOf(data, size));
    for (const int lineCount : {1, 7, 64}) {
        const AnalyzerTrace trace = readAnalyzerTrace(input.path(), lineCount);
        if (trace.pointCount() > lineCount || trace.levels.size() != trace.pointCount()) {
            std::abort();
        }
        if (trace.pointCount() > 0) {
            correct(trace, lineCount);
        }
    }
    return 0;
}
