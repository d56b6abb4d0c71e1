// Where in the signal a recording begins, and whether it has the signal's low frequencies at its
// high ones, as behind a mixer with its local oscillator above, or in an even Nyquist zone.
#pragma once

#include "recording/sample_reader.h"

#include <QVector>

#include <optional>

// A period of the signal as it is played.
struct SignalPeriod
{
    QVector<double> i;
    QVector<double> q; // as many; a power of two
};

struct SignalPlace
{
    int sample = 0; // of the period
    bool isInverted = false;
};

// Compares the beginning of the recording, whose rate is that of the signal, with the signal and
// its mirror image. center: of the carrier in the recording, Hz. None where neither is found:
// another seed, too much distortion, a center that isn't met within some kHz. Throws
// RecordingError.
std::optional<SignalPlace> placeOfSignal(const SampleReader& reader, double sampleRate,
                                         qint64 first, double center, const SignalPeriod& signal);

// Samples of the recording with the carrier at 0, and zeros behind them up to length. Throws
// RecordingError.
ComplexBuffer aroundCarrier(const SampleReader& reader, double turnsPerSample, qint64 first,
                            qint64 count, qint64 length);
