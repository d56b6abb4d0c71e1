// Waveform audio files with 16-bit samples: I and Q as the two channels of one file, or the pair of
// files that "Save Waveform" writes.
#pragma once

#include "recording/recording.h"

// Throws RecordingError. A name that ends in .i.wav or .q.wav and has one channel stands for both.
Recording openWav(const QString& path);
