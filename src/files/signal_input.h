// Readers of signals from files. Each returns a SignalData, or an empty one with length 0 when it
// failed; nothing else tells of a failure. Any thread.
#pragma once

#include "setup/signal_data.h"

// A ".pmc" text file: the number of spectral lines, then lines of "index phase magnitude" divided
// by single blanks, the index in frequency order. Lines may be absent (0.0) and in any order. A
// line with fewer fields or an index outside is ignored; text that is no number counts as 0. Fails
// for a length below 1 or above maxSignalLength. iSamples and qSamples are zero.
SignalData loadMagnitudePhaseFile(const QString& path);

// Two files of equal size, each a flat array of little-endian 16-bit words with a 14-bit sample in
// offset binary; headers are not looked for. The largest power of two of words is used. Leaves the
// spectrum in iSamples and qSamples and, in frequency order, in magnitude and phase.
SignalData loadIQFiles(const QString& iPath, const QString& qPath);
