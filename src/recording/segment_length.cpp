#include "recording/segment_length.h"

#include "recording/kaiser_window.h"
#include "recording/recording.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 shortestSegment = 1024;
constexpr qint64 longestSegment = 1 << 21; // bounds the memory
constexpr double usualBins = 128.0;        // across a notch, so that its edges cost a twelfth of it
constexpr double fewestBins = 2.0;         // in a notch, without its edges

// Bins of the narrowest notch that the window's main lobe keeps from its edges.
double usableBins(const SegmentNeed& need, qint64 length)
{
    return need.narrowest * static_cast<double>(length) / need.sampleRate - 2.0 * mainLobe;
}

// Whether half the length would be better: more averages, and still bins enough.
bool isTooLong(const SegmentNeed& need, qint64 length)
{
    constexpr qint64 fewSegments = 4;
    constexpr double manyBins = 16.0;
    return length > need.samples ||
           (need.samples < fewSegments * length && usableBins(need, length / 2) > manyBins);
}

[[noreturn]] void refuse(const SegmentNeed& need)
{
    const double least = (fewestBins + 2.0 * mainLobe) * need.sampleRate / need.narrowest;
    const double samples =
        std::exp2(std::ceil(std::log2(std::max<double>(shortestSegment, least))));
    if (!(samples <= longestSegment)) {
        throw RecordingError{
            QStringLiteral("%1: a notch of %2 Hz is too narrow for its sample rate")
                .arg(need.name)
                .arg(need.narrowest)};
    }
    throw RecordingError{
        QStringLiteral("%1 is too short: with %2 samples there aren't two lines in "
                       "the narrowest notch, which is %3 Hz wide; record %4 "
                       "samples or more")
            .arg(need.name)
            .arg(need.samples)
            .arg(need.narrowest)
            .arg(samples, 0, 'f', 0)};
}

} // namespace

int segmentLengthFor(const SegmentNeed& need)
{
    qint64 length = shortestSegment;
    while (length < longestSegment &&
           static_cast<double>(length) < usualBins * need.sampleRate / need.narrowest) {
        length *= 2;
    }
    while (length > shortestSegment && isTooLong(need, length)) {
        length /= 2;
    }
    if (length > need.samples || usableBins(need, length) < fewestBins) {
        refuse(need);
    }
    return static_cast<int>(length);
}
