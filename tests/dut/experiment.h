// One row of the proof: a device, a stimulus with a notch, and how many seeds are averaged; what is
// read and what theory says of it.
#pragma once

#include "dut/chain.h"
#include "dut/theory.h"

#include <QMetaType>

// Lines of one amplitude and random phases with one notch that is quite empty.
struct Stimulus
{
    double beta = 0.8;        // band over sample rate
    double notchShare = 0.01; // width of the notch over the band
    int count = 131072;       // samples and lines
    bool atEdge = false;      // the notch's middle lies 1.5 widths inside the band's edge, else
                              // at the carrier

    LinePowers lines() const;
    ChannelLines notch() const;
    // The channels of a reading, 0.75 widths wide; the reference 1.2 widths towards the carrier,
    // below it for a notch at the carrier.
    ChannelLines notchChannel() const;
    ChannelLines referenceChannel() const;
};

Q_DECLARE_METATYPE(Chain)
Q_DECLARE_METATYPE(Stimulus)

// Samples of the stimulus at one hertz from line to line.
Envelope stimulusOf(const Stimulus& stimulus, unsigned seed);

struct Averaged
{
    double reading = 0.0; // reference over notch channel, their powers averaged apart, dB
    double sigma = 0.0;   // expected of the average, dB
    int seeds = 0;
};

// A single reading, of one seed.
Averaged measureSeed(const Chain& chain, double level, const Stimulus& stimulus, unsigned seed);

// What theory says of the stimulus through a device of these orders, and through converters.
double theoryOf(const Stimulus& stimulus, const QVector<double>& orders);
double theoryOf(const Stimulus& stimulus, int bits, double loading);

// How long stimuli are averaged.
struct Averaging
{
    double sigma;             // dB, to be reached
    int mostSeeds;            // even if it isn't
    double rareScatter = 0.0; // dB, that moments too rare to be seen add to one stimulus's reading
};

// Drives the chain at level with one stimulus after the other.
Averaged measureOverSeeds(const Chain& chain, double level, const Stimulus& stimulus,
                          const Averaging& averaging);
