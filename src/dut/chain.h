// From a signal and a level to what an analyzer finds behind a device under test: source, ripple of
// the cables, device, noise. No socket, no clock, no randomness of its own: the same samples and
// settings give the same bits. Any thread.
//
//     Envelope samples = deviceInput(chain, signal, level);
//     passThrough(chain.device, samples);
//     const ChainOutput output(chain, std::move(samples));
//     output.channelPower(low, high);
//
// Powers are in milliwatts, levels in dBm, frequencies offsets from the carrier in Hz.
#pragma once

#include "dut/device.h"
#include "dut/source.h"
#include "dut/spectrum.h"

struct Chain
{
    double sourceNotch = noLimit; // depth of notch that the source reaches, dB
    Ripple ripple;                // between source and device
    DeviceSettings device;
    double deviceNoise = -noLimit; // at the device's output, dBm/Hz; minus infinity is none
    double noiseFloor = -noLimit;  // of the analyzer, referred to its input, dBm/Hz
};

// The samples that reach the device when the source plays the signal at a mean power of level. For
// a device that acts between the samples they are the interpolated ones, at several times the
// signal's rate: four, less only for signals of more than 2^22 samples, so that memory stays
// bounded. The ripple acts on the level set. An empty envelope for a signal without power.
// The length must be a power of two.
Envelope deviceInput(const Chain& chain, Envelope signal, double level);

// Cuts the amplitudes of what left the chain's device to a level in dBm, between the samples too,
// as an analyzer does that is driven beyond its range. False, and nothing changed, when no sample
// is above it.
bool compressAbove(double level, const Chain& chain, Envelope& samples);

// What stands at the analyzer's input.
class ChainOutput
{
public:
    ChainOutput() = default; // nothing, not even noise

    // samples: those that left the device; empty ones leave the noise alone.
    ChainOutput(const Chain& chain, Envelope samples);

    // Power from low (inclusive) to high (exclusive): lines of the signal and noise, which has no
    // edge. Beyond half the rate there are the lines that the device made, as far as the
    // interpolated signal has them. 0 where high isn't above low.
    double channelPower(double low, double high) const;

private:
    Spectrum spectrum;
    double noiseDensity = 0.0; // mW/Hz
};
