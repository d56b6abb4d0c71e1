// The one container that carries a signal through the program: sources and file readers
// fill it, the shaping steps change it, the status server and the waveform writers read it.
//
// Two index orders, not to be mixed:
// - frequency order (magnitude, phase): index N/2 is the carrier, index 0 the lowest
//   frequency; bin number b of a notch lives at index N/2 + b;
// - transform order (the spectrum in iSamples, qSamples before the inverse transform):
//   index 0 is the carrier, the positive frequencies follow, the negative ones fill the
//   upper half. buildTransformInput converts.
//
// The vectors are implicitly shared with atomic counts: a copy moves no sample and may be
// read on another thread, a write detaches.
#pragma once

#include <QString>
#include <QVector>

class NotchList;

// The longest signal that is ever made, eight times the longest row of the form. It bounds
// what a file or a configuration can ask for.
constexpr quint32 maxSignalLength = 1U << 26;

struct SignalData
{
    SignalData() = default; // empty, length 0
    explicit SignalData(quint32 n);

    // n zeros in each vector; with n below 1 all vectors are empty. length is n as it came.
    void reset(qint32 n);

    QVector<double>& iData() { return iSamples; }
    QVector<double>& qData() { return qSamples; }
    const QVector<double>& iData() const { return iSamples; }
    const QVector<double>& qData() const { return qSamples; }
    qint32 size() const { return length; }

    // Spectrum shaping, in signal/. Lengths and indexes are in bins, frequency order.

    // Flat 1.0, or with compensation x/sin(x), x = pi (i - N/2)/N, the inverse of a
    // converter's roll-off.
    void setMagnitudes(bool sinxCompensation);
    // Scales bins first to last, both inclusive; clipped to the end, none if first > last.
    void attenuate(quint32 first, quint32 last, double factor);
    // Notch mode cuts each row by its depth; carrier mode keeps one bin a row and takes
    // 105 dB off all others. The list is a private copy: sorting it changes no table.
    void applyNotches(NotchList list, bool carrierMode);
    // Gain in dB, one value a bin; a trace of another length is skipped without a word.
    void applyCompensation(const QVector<double>& trace);
    // Polar bins in frequency order to N times their Cartesian form in transform order.
    void buildTransformInput();
    // Peak to average ratio of the complex envelope in dB, over the stored samples.
    double crestFactor() const;

    QVector<double> iSamples;  // in-phase samples, or real part of the spectrum
    QVector<double> qSamples;  // quadrature samples, or imaginary part of the spectrum
    QVector<double> magnitude; // linear amplitude of each bin, 1.0 is the nominal carrier
    QVector<double> phase;     // radians
    qint32 length = 0;         // number of samples and of bins; 0 tells a failed read
};
