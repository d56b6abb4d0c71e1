// From recordings of a device's output to points of a result.
#pragma once

#include "campaign/notch_rows.h"
#include "campaign/npr_result.h"
#include "recording/notch_analysis.h"

// What a recording of the setup's signal is to hold; its gaps are the notches in their order. The
// signal has been made.
RecordedSignal recordedSignalOf(const MeasurementSetup& setup,
                                const QVector<NumberedNotch>& notches);

// Where there is no level in dBm, the recording's own is the point's, and its power is known too.
struct PlaceOfRecording
{
    int number = 0; // index in the result's recordings
    std::optional<double> levelDbm;
};

// Of the notches that were recorded.
QVector<NprPoint> recordedPoints(const RecordingAnalysis& analysis,
                                 const QVector<NumberedNotch>& notches,
                                 const PlaceOfRecording& place);

// But for the name of the file.
RecordingFacts factsOf(const RecordingAnalysis& analysis, const RecordingRequest& request);
