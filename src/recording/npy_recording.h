// NumPy's array files (.npy), versions 1 to 3: a head that tells type and shape, then the samples.
#pragma once

#include "recording/recording.h"

// One-dimensional arrays, or two columns of reals for I and Q. Throws RecordingError.
Recording openNpy(const QString& path);
