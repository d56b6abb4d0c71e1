#include "simulator/bench.h"

#include "transform/decibels.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

double dbm(double milliwatt)
{
    // A comparison that not-a-number fails too.
    return milliwatt > milliwatts(emptyChannelPower) ? decibels(milliwatt) : emptyChannelPower;
}

// The lone carrier that a generator puts out without modulation.
PlayedSignal carrier()
{
    return {{1.0}, {0.0}, 1.0};
}

} // namespace

Bench::Bench(BenchWiring benchWiring)
    : wiring(std::move(benchWiring)), noiseAlone(wiring.chain, Envelope())
{
}

bool Bench::Drive::operator==(const Drive& other) const
{
    return signalNumber == other.signalNumber && modulated == other.modulated &&
           level == other.level && limit == other.limit;
}

void Bench::play(const PlayedSignal& signal)
{
    played = signal;
    ++signalNumber;
}

ChannelPowers Bench::channelPowers()
{
    if (isOutputOn()) {
        refreshOutput();
    }
    const SimulatedAnalyzer& analyzer = settings.analyzer;
    const double spacing = analyzer.channelSpacing;
    return {channelPower(0.0, analyzer.channelBandwidth),
            channelPower(-spacing, analyzer.adjacentBandwidth),
            channelPower(spacing, analyzer.adjacentBandwidth)};
}

bool Bench::isOutputOn() const
{
    return settings.generator.output && (!wiring.hasMicrowave || settings.microwave.output);
}

double Bench::rfFrequency() const
{
    return settings.generator.frequency +
           (wiring.hasMicrowave ? settings.microwave.frequency : 0.0);
}

double Bench::rfLevel() const
{
    if (!wiring.hasMicrowave) {
        return settings.generator.level;
    }
    const SimulatedMicrowaveGenerator& microwave = settings.microwave;
    return (microwave.ifInput ? settings.generator.level : microwave.level) - microwave.attenuation;
}

// With the limit as long as the peaks that are known are above it.
Bench::Drive Bench::wantedDrive() const
{
    const double limit = inputLimit(settings.analyzer);
    Drive drive{signalNumber, settings.generator.iqModulation, rfLevel(), noLimit};
    if (outputPeak > milliwatts(limit)) {
        drive.limit = limit;
    }
    return drive;
}

void Bench::refreshOutput()
{
    if (wantedDrive() == computedFor) {
        return;
    }
    const bool modulated = settings.generator.iqModulation;
    Envelope samples = deviceInput(wiring.chain, modulated ? played : carrier(), rfLevel());
    passThrough(wiring.chain.device, samples);
    outputPeak = peakPower(samples);
    computedFor = wantedDrive();
    compressAbove(computedFor.limit, wiring.chain, samples);
    output = ChainOutput(wiring.chain, std::move(samples));
    ++computationCount;
}

// center is an offset from that of the analyzer.
double Bench::channelPower(double center, double bandwidth) const
{
    const double tuned = settings.analyzer.centerFrequency - rfFrequency();
    const double edge = settings.analyzer.span / 2.0;
    const double low = std::max(center - bandwidth / 2.0, -edge);
    const double high = std::min(center + bandwidth / 2.0, edge);
    return dbm((isOutputOn() ? output : noiseAlone).channelPower(tuned + low, tuned + high));
}
