// The instruments on the bench and the cables between them: signal generator, microwave generator
// if there is one, device under test, analyzer. No socket and no SCPI.
//
// The long computation, device and transform, runs in the first reading after the signal, the
// level or the I/Q modulation changed; later readings take its result. One thread.
#pragma once

#include "dut/chain.h"
#include "simulator/bench_settings.h"
#include "simulator/played_signal.h"

struct BenchWiring
{
    Chain chain;
    bool hasMicrowave = false; // a microwave generator converts the signal up
};

// Powers of three channels of equal wording, dBm. An empty channel has emptyChannelPower.
struct ChannelPowers
{
    double reference;
    double lower;
    double upper;
};

constexpr double emptyChannelPower = -200.0; // dBm

class Bench
{
public:
    explicit Bench(BenchWiring wiring);

    BenchSettings settings;

    // Plays a signal of playable length, or with an empty one nothing, from now on.
    void play(const PlayedSignal& signal);

    // The reference channel at the analyzer's centre and one channel on each side of it. Absolute
    // frequencies: an analyzer tuned elsewhere sees noise only. What lies outside the analyzer's
    // span isn't measured, so a channel there is empty.
    ChannelPowers channelPowers();

    // Whether the analyzer compressed the signal of the last reading, whose peaks were above
    // inputLimit().
    bool isOverloaded() const { return computedFor.limit < noLimit && isOutputOn(); }

    // How often the long computation has run; tests see by it that it doesn't run for nothing.
    int computations() const { return computationCount; }

private:
    // What the computed output depends on.
    struct Drive
    {
        int signalNumber = -1;
        bool modulated = false;
        double level = 0.0;     // dBm
        double limit = noLimit; // dBm; of an analyzer that compresses, otherwise without limit
        bool operator==(const Drive& other) const;
    };

    bool isOutputOn() const;
    double rfFrequency() const; // Hz
    double rfLevel() const;     // dBm
    Drive wantedDrive() const;
    void refreshOutput();
    double channelPower(double center, double bandwidth) const;

    const BenchWiring wiring;
    PlayedSignal played;
    int signalNumber = 0;
    Drive computedFor;
    double outputPeak = 0.0; // mW, before the analyzer
    ChainOutput output;
    const ChainOutput noiseAlone;
    int computationCount = 0;
};
