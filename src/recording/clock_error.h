// How far the recorder's clock and that of the generator are apart: by the length of a periodic
// signal's period as a recording shows it, or by how the recording drifts against the signal.
#pragma once

#include "recording/bands.h"
#include "recording/sample_reader.h"
#include "recording/signal_place.h"

struct MeasuredPeriod
{
    double samples = 0.0;
    // The largest turn of a line within the band from one period to the next, beyond whole turns,
    // in turns; none where lines turn too fast to follow.
    std::optional<double> slip;
};

// Correlates stretches of the recording that lie periods apart, further and further. band: of the
// signal in the recording, Hz. None where the recording is shorter than a period and a stretch, or
// doesn't repeat within 120 ppm of the nominal period (in samples). Throws RecordingError.
std::optional<MeasuredPeriod> measurePeriod(const SampleReader& reader, double sampleRate,
                                            qint64 first, double nominal, FrequencyBand band);

// The share by which the recorder's clock is fast, from where the beginning and the end of the
// recording, which has the signal's rate, lie in the played period. For a recording that is too
// short for measurePeriod, of 2048 samples or more. center: of the carrier in the recording, band:
// of the signal about it, Hz. None where the signal isn't found. Throws RecordingError.
std::optional<double> clockErrorAgainst(const SignalPeriod& played, const SampleReader& reader,
                                        double sampleRate, qint64 first, double center,
                                        FrequencyBand band);
