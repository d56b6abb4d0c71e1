// How long the segments of averaged periodograms are.
#pragma once

#include <QString>

struct SegmentNeed
{
    QString name; // of the recording, for messages
    qint64 samples = 0;
    double sampleRate = 0.0; // Hz
    double narrowest = 0.0;  // notch, Hz
};

// A power of two of samples: so long that the window's main lobe costs little of the narrowest
// notch, shorter for some averages of a short recording. Throws RecordingError for one without two
// lines in the notch.
int segmentLengthFor(const SegmentNeed& need);
