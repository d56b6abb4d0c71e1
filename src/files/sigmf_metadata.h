// The metadata of a SigMF recording of the present signal, version 1.0.0 of the format.
#pragma once

#include <QByteArray>

class QString;
struct MeasurementSetup;

// JSON for a file with the samples of setup.signal as pairs of little-endian floats, whose SHA-512
// is hash (64 bytes). Frequencies are offsets from the carrier in Hz, for the capture tells no
// frequency of its middle: whoever plays the samples chooses it. Each row of the notch table that
// left something in the spectrum has an annotation over all samples, from the lower edge of its
// first line to the upper edge of its last; a line is as wide as their distance. Without a positive
// rate there are neither rate nor annotations.
QByteArray sigmfMetadata(const MeasurementSetup& setup, const QString& program,
                         const QByteArray& hash);
