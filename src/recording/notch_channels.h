// Where a recording is read for the notches of a signal: in a notch, and beside it where the signal
// is.
#pragma once

#include "recording/bands.h"

// What a recording is to hold: a periodic signal that fills a band but for some gaps. Frequencies
// are offsets from its carrier in Hz; band and gaps end at lines of the signal that are there.
struct RecordedSignal
{
    double sampleRate = 0.0; // that it is played at, Hz
    int length = 0;          // samples of a period, a power of two
    FrequencyBand band{};
    QVector<FrequencyBand> gaps;

    double lineSpacing() const { return sampleRate / length; }
};

// How the signal lies in the recording. Frequencies are those of the recording.
struct RecordingView
{
    double center = 0.0;     // of the carrier, Hz
    double scale = 1.0;      // of offsets: below 1 where the recorder's clock is fast
    bool isInverted = false; // low offsets at high frequencies
    double guard = 0.0;      // to keep from every edge and from 0, Hz
    FrequencyBand range{};   // that the recording has
};

struct NotchChannels
{
    Bands within;
    Bands beside; // as wide as the notch on both sides, as far as the band and other gaps allow
    bool isRecorded = true; // all of the notch is in the range
};

NotchChannels channelsOf(const RecordedSignal& signal, int gap, const RecordingView& view);

// Whether there is signal where the gap's mirror image would be, so that an inverted recording
// shows.
bool tellsInversion(const RecordedSignal& signal, int gap);

// A band of offsets as it lies in the recording.
FrequencyBand seen(FrequencyBand offsets, const RecordingView& view);
