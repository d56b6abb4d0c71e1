// What a noise power ratio must be: closed forms and series for Gaussian stimuli, written without a
// line of the devices that they are held against. Powers are relative to the stimulus's own.
#pragma once

#include <QVector>

#include <complex>
#include <functional>

// Complex gain of a memoryless device by the momentary power over the mean power of its input.
using Gain = std::function<std::complex<double>(double power)>;

// The gains of the devices whose saturation (or intercept) lies backOff dB above the mean power.
Gain rappGain(double backOff, double smoothness);
Gain softLimiterGain(double backOff);
Gain salehGain(double backOff);
Gain cubicGain(double backOff);

// Orders of distortion: |c_m|^2 (m+1) for m = 0, 1, 2, ... of Bussgang's decomposition in Laguerre
// polynomials; the last one holds all that follow.
QVector<double> distortionOrders(const Gain& gain);

// The stimulus that the theory is asked for: power of each line, carrier at index size/2.
using LinePowers = QVector<double>;

// Lines of distortion that a device of these orders makes of the stimulus: eight times as many
// lines of the same spacing, carrier in the middle. Order m has the spectrum of R |R|^2m, R being
// the autocorrelation of the stimulus.
LinePowers distortionLines(const LinePowers& stimulus, const QVector<double>& orders);

// First line and number of lines of a channel, counted from the carrier.
struct ChannelLines
{
    int first;
    int count;
};

// Lines of distortion that a pair of converters makes of the stimulus, which they sample: as many
// lines as the stimulus has, what lies beyond folded back. Rounding is white; clipping has, in
// order n of Hermite's polynomials, the spectrum of (Re R)^n + j (Im R)^n. loading is the full
// scale over the rms of a component.
LinePowers converterDistortionLines(const LinePowers& stimulus, int bits, double loading);

// Share of the stimulus's power that clipped converters let through.
double converterGain(double loading);

// What an analyzer reads, reference over notch channel in dB, behind a device of these orders and
// behind converters.
double deviceReading(const LinePowers& stimulus, const QVector<double>& orders,
                     ChannelLines reference, ChannelLines notch);
double converterReading(const LinePowers& stimulus, int bits, double loading,
                        ChannelLines reference, ChannelLines notch);

// The loading of the highest ratio of such converters in closed form.
double bestLoading(int bits);
