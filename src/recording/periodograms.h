// Averaged periodograms: the power density of a recording of any origin. Segments overlap by two
// thirds and are weighted by the window of kaiser_window.h.
#pragma once

#include "recording/bands.h"
#include "recording/segment_pass.h"

// Of the whole recording.
struct PowerDensity
{
    // Full scale^2 / Hz, as many as samples in a segment; k stands for k times spacing, those of
    // the upper half for negative frequencies.
    std::vector<double> bins;
    double spacing = 0.0; // Hz
    qint64 segments = 0;
    LevelSums levels;
};

// What stands in some bands. Only bins whose middle lies within count.
struct BandDensity
{
    double density = 0.0; // mean; 0 without a bin
    int bins = 0;
    double cells = 0.0; // independent values behind the mean
};

constexpr int hopDivisor = 3;

// From sample first on, in segments of a length that is a power of two and fits. Throws what
// sumSegments throws.
PowerDensity powerDensity(const SampleReader& reader, double sampleRate, qint64 first, int length,
                          const ReadingProgress& progress);

// Bands within half the sample rate on both sides of 0.
BandDensity densityIn(const Bands& bands, const PowerDensity& density);
