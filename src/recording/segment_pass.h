// One walk through a recording in segments of the same length, on several cores. What is summed
// over segments comes out the same, bit for bit, for any number of threads: stretches of the file
// are summed by themselves and added in their order.
//
// Memory is bounded by the length of a segment and of the sums, not by that of the recording.
#pragma once

#include "recording/level_meter.h"
#include "recording/sample_reader.h"
#include "transform/samples.h"

#include <functional>

struct Segments
{
    qint64 first = 0;  // sample
    qint64 length = 0; // samples of each, a power of two
    qint64 hop = 0;    // samples from one segment's begin to the next's, length at most
    qint64 count = 0;  // at least 1
};

// As many as fit between two samples.
Segments segmentsBetween(qint64 first, qint64 end, qint64 length, qint64 hop);

// Adds one segment, which it may change, to the sums. Called by several threads at once, each with
// a segment and sums of its own.
using AddSegment = std::function<void(Split segment, double* sums)>;

// That adding a segment of a length may use itself: 1, or all for long ones, which come one by one.
int threadsWithin(qint64 length);

// Stretches of the recording done and to be done; false to stop.
using ReadingProgress = std::function<bool(qint64 done, qint64 total)>;

struct ReadingStopped
{
};

struct PassResult
{
    std::vector<double> sums;
    LevelSums levels; // of all samples from the first segment on, to the end of the recording
};

// sumCount: of numbers that a segment adds to. Checks the recording's hash, if it has one, in the
// same walk. Throws RecordingError, for samples that aren't finite numbers too, and ReadingStopped.
PassResult sumSegments(const SampleReader& reader, const Segments& segments, std::size_t sumCount,
                       const AddSegment& add, const ReadingProgress& progress);
