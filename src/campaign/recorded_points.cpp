#include "campaign/recorded_points.h"

#include "base/truncation.h"
#include "campaign/point_sums.h"
#include "setup/measurement_setup.h"
#include "transform/decibels.h"

#include <algorithm>
#include <cmath>

namespace {

// A recording that reaches its ends more often is told to be clipped.
constexpr double mostClipped = 1e-4;

std::optional<double> decibelsOf(std::optional<double> ratio)
{
    return ratio && *ratio > 0.0 ? std::make_optional(decibels(*ratio)) : std::nullopt;
}

RecordedReading recordedOf(const NotchReading& reading, int recording)
{
    RecordedReading recorded;
    recorded.recording = recording;
    recorded.lines = reading.lines;
    recorded.noiseDensity = decibelsOf(reading.noise);
    if (reading.distortion) {
        recorded.distortionNpr =
            decibelsOf((reading.beside - reading.within) / *reading.distortion);
    }
    return recorded;
}

NprPoint pointOf(const NotchReading& reading, const NumberedNotch& notch, double level)
{
    // Both channels as wide as the notch.
    BenchReading powers;
    powers.reference = reading.beside * notch.notch.width;
    powers.notch = reading.within * notch.notch.width;
    PointSums sums;
    sums.add(powers, true);
    NumberedNotch where = notch;
    const double cells = 1.0 / (1.0 / reading.cells + 1.0 / reading.besideCells);
    where.lines = std::max(1, static_cast<int>(std::lround(cells)));
    return sums.point(level, where);
}

// Of the lines that the skirts leave. They are placed by the setup's length, also in a signal from
// a file of another one, and suppress both of their inner ends. Where they cover all lines, these
// are as strong beside each other as before.
FrequencyBand bandOf(const MeasurementSetup& setup, const RecordedSignal& signal)
{
    const auto end = static_cast<quint32>(signal.length) - 1;
    quint32 lowest = 0;
    quint32 highest = end;
    if (setup.nbwSrate < 1.0) {
        const double half = setup.fftLength() >> 1;
        lowest = truncatedToUint32(half - half * setup.nbwSrate) + 1;
        highest = std::min(truncatedToUint32(half * setup.nbwSrate + half) - 1, end);
    }
    if (lowest > highest) {
        lowest = 0;
        highest = end;
    }
    const double carrier = signal.length >> 1;
    return {(lowest - carrier) * signal.lineSpacing(), (highest - carrier) * signal.lineSpacing()};
}

} // namespace

RecordedSignal recordedSignalOf(const MeasurementSetup& setup,
                                const QVector<NumberedNotch>& notches)
{
    RecordedSignal signal;
    signal.sampleRate = setup.sampleRate;
    signal.length = setup.signal.length;
    const double spacing = signal.lineSpacing();
    signal.band = bandOf(setup, signal);
    for (const NumberedNotch& notch : notches) {
        signal.gaps << FrequencyBand{(notch.notch.startIndex - 1) * spacing,
                                     (notch.notch.stopIndex + 1) * spacing};
    }
    return signal;
}

QVector<NprPoint> recordedPoints(const RecordingAnalysis& analysis,
                                 const QVector<NumberedNotch>& notches,
                                 const PlaceOfRecording& place)
{
    QVector<NprPoint> points;
    const double level = place.levelDbm.value_or(decibels(analysis.power));
    for (int k = 0; k < notches.size(); ++k) {
        const NotchReading& reading = analysis.notches.at(k);
        if (!reading.isRecorded) {
            continue;
        }
        NprPoint point = pointOf(reading, notches.at(k), level);
        point.recorded = recordedOf(reading, place.number);
        if (place.levelDbm) { // of the device's input; nobody told that of the recording
            point.power = -HUGE_VAL;
        }
        if (analysis.clippedShare.value_or(0.0) > mostClipped) {
            point.addMark(PointMark::clipped);
        }
        points << point;
    }
    return points;
}

RecordingFacts factsOf(const RecordingAnalysis& analysis, const RecordingRequest& request)
{
    RecordingFacts facts;
    facts.sampleRate = request.sampleRate;
    facts.center = request.center;
    facts.samples = analysis.samples;
    facts.hasWholePeriods = analysis.way == AnalysisWay::WholePeriods;
    facts.averages = analysis.averages;
    facts.segmentLength = analysis.segmentLength;
    facts.level = decibels(analysis.power);
    facts.peak = 2.0 * decibels(analysis.peak);
    if (analysis.clippedShare) {
        facts.clipped = 100.0 * *analysis.clippedShare;
    }
    if (analysis.clockError) {
        facts.clockError = 1e6 * *analysis.clockError;
    }
    facts.isInverted = analysis.isInverted;
    return facts;
}
