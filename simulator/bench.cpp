#include "simulator/bench.h"

#include "simulator/power.h"

#include <cmath>
#include <utility>

namespace {

double dbm(double milliwatt)
{
    // A comparison that not-a-number fails too.
    return milliwatt > milliwatts(emptyChannelPower) ? 10.0 * std::log10(milliwatt)
                                                     : emptyChannelPower;
}

// The lone carrier that a generator puts out without modulation.
PlayedSignal carrier()
{
    return {{1.0}, {0.0}, 1.0};
}

// Scales the signal to a mean power; false for a signal that has none.
bool setMeanPower(PlayedSignal& signal, double milliwatt)
{
    const double power = meanPower(signal);
    if (!std::isfinite(power) || !(power > 0.0)) {
        return false;
    }
    const double factor = std::sqrt(milliwatt / power);
    for (double& i : signal.iSamples) {
        i *= factor;
    }
    for (double& q : signal.qSamples) {
        q *= factor;
    }
    return true;
}

} // namespace

Bench::Bench(BenchWiring benchWiring) : wiring(std::move(benchWiring)) {}

bool Bench::Drive::operator==(const Drive& other) const
{
    return signalNumber == other.signalNumber && modulated == other.modulated &&
           level == other.level;
}

void Bench::play(const PlayedSignal& signal)
{
    played = signal;
    ++signalNumber;
}

ChannelPowers Bench::channelPowers()
{
    if (isOutputOn()) {
        refreshSpectrum();
    }
    const SimulatedAnalyzer& analyzer = settings.analyzer;
    const double center = analyzer.centerFrequency - rfFrequency();
    const double spacing = analyzer.channelSpacing;
    return {channelPower(center, analyzer.channelBandwidth),
            channelPower(center - spacing, analyzer.adjacentBandwidth),
            channelPower(center + spacing, analyzer.adjacentBandwidth)};
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

void Bench::refreshSpectrum()
{
    const Drive drive{signalNumber, settings.generator.iqModulation, rfLevel()};
    if (drive == computedFor) {
        return;
    }
    PlayedSignal envelope = drive.modulated ? played : carrier();
    if (setMeanPower(envelope, milliwatts(drive.level))) {
        passThrough(wiring.device, envelope);
        spectrum = Spectrum(std::move(envelope));
    } else {
        spectrum = Spectrum();
    }
    computedFor = drive;
    ++computationCount;
}

double Bench::channelPower(double center, double bandwidth) const
{
    const double signal =
        isOutputOn() ? spectrum.powerBetween(center - bandwidth / 2.0, center + bandwidth / 2.0)
                     : 0.0;
    return dbm(signal + milliwatts(wiring.noiseFloor) * bandwidth);
}
