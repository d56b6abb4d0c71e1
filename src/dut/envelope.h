// One period of a complex baseband signal that repeats.
//
// Where it is driven into a device, the square of a sample's magnitude is the momentary power in
// milliwatts. As it comes from a file or from a program the scale means nothing. Plain values; any
// thread.
#pragma once

#include <QVector>

#include <cmath>

struct Envelope
{
    QVector<double> iSamples;
    QVector<double> qSamples; // as many as iSamples
    double sampleRate = 0.0;  // Hz

    int size() const { return iSamples.size(); }
};

inline double milliwatts(double dbm)
{
    return std::pow(10.0, dbm / 10.0);
}

// Mean square of the samples' magnitudes; not-a-number for an empty envelope.
double meanPower(const Envelope& envelope);

// The largest square of a sample's magnitude; 0 for an empty envelope.
double peakPower(const Envelope& envelope);

// Scales the samples to a mean power. False, and nothing changed, for an envelope without power
// and for one that holds what is no number.
bool setMeanPower(Envelope& envelope, double milliwatt);
