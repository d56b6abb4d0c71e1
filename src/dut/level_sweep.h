// One stimulus through a chain at many levels: what some channels hold behind the device. The
// stimulus is interpolated once. For each level it is scaled and driven through the device in tiles
// that stay in the cache, and of the output, which never exists as a whole, only the lines within
// the channels are calculated. The powers are those that ChainOutput would find.
//
// Powers are in milliwatts, levels in dBm, frequencies offsets from the carrier in Hz. The same
// stimulus, chain and level give the same bits, whatever else is asked. Any number of threads may
// ask one object at once.
#pragma once

#include "dut/chain.h"
#include "dut/distortion_sums.h"
#include "transform/some_lines.h"

#include <memory>

struct ChannelBand
{
    double low;  // Hz, inclusive
    double high; // Hz, exclusive
};

// The lines of a channel, spacing (Hz) apart, of count lines with the carrier in their middle.
SomeLines::Range linesWithin(ChannelBand band, double spacing, int count);

// What stands in one channel.
struct ChannelContent
{
    double lines = 0.0;    // of what left the device
    double stimulus = 0.0; // of it, what the device's gain passed of its input
    double noise = 0.0;    // without lines, of device and analyzer

    double power() const { return lines + noise; }
};

struct LevelResponse
{
    QVector<ChannelContent> channels; // in the order in which they were asked for
    DistortionEnergy distortion;
};

class LevelSweep
{
public:
    // signal: a period of a power of two of at least SomeLines::shortestPeriod samples. One without
    // power leaves the noise alone.
    LevelSweep(Chain chain, Envelope signal, const QVector<ChannelBand>& channels);

    // Buffers that save later calls of the same thread the allocation.
    struct Scratch
    {
        SomeLines::Workspace lines;
        DistortionSums distortion;
    };
    LevelResponse at(double level, Scratch& scratch) const;

private:
    void drive(double level, int group, double* i, double* q, DistortionSums& sums) const;

    Chain chain;
    Envelope input;          // at 0 dBm, its samples dealt out to the groups of SomeLines
    double inputPower = 0.0; // its mean
    int stretch = 4;
    QVector<SomeLines::Range> ranges;
    QVector<double> noise;      // of the channels
    QVector<double> inputLines; // powers of the channels at 0 dBm
    std::shared_ptr<const SomeLines> lines;
};
