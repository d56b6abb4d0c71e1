// A signal between its samples. Any thread.
#pragma once

struct SignalData;

// Where an envelope is looked at when its peaks matter: so many times the samples. What is left
// between these is below 0.1 dB.
constexpr int envelopeInterpolation = 4;

// Makes to the same periodic signal, earlier by a part of the distance of two samples: line f of
// its phases is turned by 2 pi f samples / N. That is the only signal between the samples without
// lines beyond half the rate. from has a length that is a power of two.
void shiftSamples(SignalData& to, const SignalData& from, double samples);

// The turn of one line from the next, in radians.
double turnOfShift(const SignalData& signal, double samples);
