// NPR in the notches of a signal from a recording of it: the density beside a notch over that in
// it. Gain, time shift, a constant offset and the beginning of the recording don't matter.
//
// Two ways. Where whole periods of the signal fit and the clocks agree, its lines are read one by
// one (whole_periods.h); otherwise periodograms are averaged (periodograms.h).
//
// Powers are relative to full scale (see level_meter.h), frequencies in Hz. Runs where it is called
// and uses all cores.
#pragma once

#include "recording/notch_channels.h"
#include "recording/segment_pass.h"
#include "recording/signal_place.h"

struct RecordingRequest
{
    RecordedSignal signal;
    SignalPeriod played;     // its samples, to know an inverted recording by; may be empty
    double sampleRate = 0.0; // of the recording
    double center = 0.0;     // where the signal's carrier lies in it
    double skipSeconds = 0.0;
};

// Densities per Hz.
struct NotchReading
{
    bool isRecorded = false; // or else the notch, or the signal beside it, isn't in the recording
    double beside = 0.0;
    double within = 0.0;
    int lines = 0;            // of the spectrum, in the notch
    double cells = 0.0;       // independent values behind the density in the notch
    double besideCells = 0.0; // infinity where the density beside doesn't scatter
    // Of what differs from period to period, in the notch.
    std::optional<double> noise;
    // Density in the notch without it; none where it can't be told from 0.
    std::optional<double> distortion;
};

enum class AnalysisWay { WholePeriods, Periodograms };

struct RecordingAnalysis
{
    AnalysisWay way = AnalysisWay::Periodograms;
    QVector<NotchReading> notches;      // in the order of the gaps
    qint64 samples = 0;                 // behind those that were skipped
    qint64 averages = 0;                // periods or segments
    int segmentLength = 0;              // samples of either
    double power = 0.0;                 // mean
    double peak = 0.0;                  // largest component
    std::optional<double> clippedShare; // of the components; none for floating point
    std::optional<double> clockError;   // share by which the recorder's clock is fast
    std::optional<bool> isInverted;     // the notches are read accordingly
};

// Throws RecordingError, and ReadingStopped when progress says so.
RecordingAnalysis analyzeNotches(const SampleReader& reader, const RecordingRequest& request,
                                 const ReadingProgress& progress);
