// One stimulus through a chain at many levels: what some channels hold behind the device. The
// stimulus is interpolated once and scaled for each level, and of the output only the lines within
// the channels are calculated. The powers are those that ChainOutput would find.
//
// Powers are in milliwatts, levels in dBm, frequencies offsets from the carrier in Hz. The same
// stimulus, chain and level give the same bits, whatever else is asked. Any number of threads may
// ask one object at once.
#pragma once

#include "dut/chain.h"
#include "dut/scatter.h"
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

    // scratch is a buffer that saves later calls of the same thread the allocation.
    LevelResponse at(double level, Envelope& scratch) const;

private:
    Chain chain;
    Envelope input; // at 0 dBm
    int stretch = 4;
    QVector<SomeLines::Range> ranges;
    QVector<double> noise;      // of the channels
    QVector<double> inputLines; // powers of the channels at 0 dBm
    std::shared_ptr<const SomeLines> lines;
};
