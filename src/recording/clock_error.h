// The length of a periodic signal's period as a recording shows it: how far the recorder's clock
// and that of the generator are apart.
#pragma once

#include "recording/bands.h"
#include "recording/sample_reader.h"

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
