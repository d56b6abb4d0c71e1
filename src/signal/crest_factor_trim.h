// Lowers the crest factor of a signal whose phases are free: its peaks are cut, its magnitudes
// restored, again and again. The spectrum, with its notches, stays what it was; the phases move.
// The peaks are those between the samples: cutting the samples alone would leave a signal that
// fills its band as peaked as it was once a converter has made it continuous.
//
// The peaks of noise are what a device distorts, so the reading of a trimmed signal is too good by
// some tenths of a dB at 9 dB, and by more below (see stimulus_statistics.h).
#pragma once

#include <functional>

struct SignalData;

struct TrimResult
{
    double peak = 0.0; // dB over the mean, between the samples; crestFactor() is hardly lower
    int rounds = 0;
    bool isReached = false; // or the rounds brought no more, or it was stopped
};

// Asked after each round; false stops.
using TrimProgress = std::function<bool(int round, double peak)>;

// target in dB, above 0. The signal, of a length that is a power of two, comes finished and leaves
// with new phases and samples: the best of all rounds. Any thread; throws std::bad_alloc.
TrimResult trimCrestFactor(SignalData& signal, double target, const TrimProgress& goOn);
