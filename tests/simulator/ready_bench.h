// A bench that is on and tuned, and the periodic test signals that it plays.
#pragma once

#include "dut/multitone.h"
#include "simulator/bench.h"

#include <utility>

// A bench whose generator and analyzer stand at 1 GHz, with the output on.
inline Bench readyBench(BenchWiring wiring = {}, double level = -30.0)
{
    Bench bench(std::move(wiring));
    bench.settings.generator = {1e9, level, true, true};
    return bench;
}

// Tunes the reference channel to center, in hertz from 1 GHz.
inline void tune(Bench& bench, double center, double bandwidth, double spacing)
{
    SimulatedAnalyzer& analyzer = bench.settings.analyzer;
    analyzer.centerFrequency = 1e9 + center;
    analyzer.channelBandwidth = bandwidth;
    analyzer.adjacentBandwidth = bandwidth;
    analyzer.channelSpacing = spacing;
}

// Reference over upper adjacent channel in dB.
inline double upperNpr(Bench& bench)
{
    const ChannelPowers powers = bench.channelPowers();
    return powers.reference - powers.upper;
}
