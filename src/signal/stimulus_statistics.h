// What a device under test sees of a signal: the levels that its envelope reaches, between the
// samples too, and whether it is noise enough for a noise power ratio. Any thread.
//
// A reading is an NPR only if the device is driven as noise drives it. The envelope of noise is
// Rayleigh distributed: its power exceeds the mean by a for the share exp(-a) of the time. A phase
// law that spreads the energy evenly (parabolic) or heaps it up (constant) keeps the spectrum and
// not that distribution; the distortion and the reading are then off by tens of dB. A signal counts
// as noise-like if
// - it has 100 lines, or there is no distribution to speak of;
// - the levels exceeded for 50, 30, 10, 1 and 0.1 % of the time lie within 0.8 dB of those of noise
//   and four times the scatter (standard deviation) that so many lines have by chance. A share that
//   fewer than 10 independent samples make up says nothing and isn't asked;
// - the peak lies where that of noise of n lines lies all but surely, 10 lg(ln n - 2) to
//   10 lg(ln n + 12) dB over the mean, or was trimmed no further down than to 8 dB. Cutting the
//   peaks of noise to 9 dB raises a reading by some tenths of a dB, to 8 dB by one to three dB,
//   below that by more than the reading is worth.
#pragma once

#include <array>

struct SignalData;

// Of the time, in the order of their levels.
constexpr std::array<double, 4> ccdfShares = {0.1, 0.01, 0.001, 0.0001};

struct StimulusStatistics
{
    double crestFactor = 0.0;                        // dB, over the stored samples alone
    double peak = 0.0;                               // dB over the mean, interpolated 4 times
    std::array<double, ccdfShares.size()> ccdf = {}; // dB over the mean, interpolated 4 times
    double lines = 0.0; // as many equal ones would have their power so much divided
    bool isNoiseLike = false;
};

// Over the lines of a signal's spectrum: of their powers and of the squares of these.
struct LineSums
{
    double power = 0.0;
    double square = 0.0;
};

LineSums lineSumsOf(const SignalData& signal);

// Of a finished signal whose length is a power of two. Not-a-number for one without power. Throws
// std::bad_alloc; takes the memory of another signal.
StimulusStatistics statisticsOf(const SignalData& signal);
