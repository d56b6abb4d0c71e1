// The instruments on the bench and the cables between them: signal generator, microwave generator
// if there is one, device under test, analyzer. No socket and no SCPI.
//
// The long computation, device and transform, runs in the first reading after the signal, the
// level or the I/Q modulation changed; later readings take its result. One thread.
#pragma once

#include "simulator/bench_settings.h"
#include "simulator/device_under_test.h"
#include "simulator/played_signal.h"
#include "simulator/spectrum.h"

#include <limits>

struct BenchWiring
{
    DeviceSettings device;
    double noiseFloor = -std::numeric_limits<double>::infinity(); // dBm/Hz; minus infinity is none
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
    // frequencies: an analyzer tuned elsewhere sees noise only.
    ChannelPowers channelPowers();

    // How often the long computation has run.
    int computations() const { return computationCount; }

private:
    // What the device is fed with.
    struct Drive
    {
        int signalNumber = -1;
        bool modulated = false;
        double level = 0.0; // dBm
        bool operator==(const Drive& other) const;
    };

    bool isOutputOn() const;
    double rfFrequency() const; // Hz
    double rfLevel() const;     // dBm
    void refreshSpectrum();
    double channelPower(double center, double bandwidth) const;

    const BenchWiring wiring;
    PlayedSignal played;
    int signalNumber = 0;
    Drive computedFor;
    Spectrum spectrum; // at the device's output
    int computationCount = 0;
};
