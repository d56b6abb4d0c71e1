// Recordings of the Signal Metadata Format, version 1: JSON in NAME.sigmf-meta beside the samples
// in NAME.sigmf-data.
#pragma once

#include "recording/recording.h"

// The name of either file. Of several captures the first counts; the remarks tell it. Throws
// RecordingError.
Recording openSigmf(const QString& path);
