// Writers of the present signal in open formats, single precision and not scaled: the samples that
// the status server sends, bit for bit. A file that can't be opened or written whole, or for which
// memory lacks, ends the writer, which returns false; what stood in its place stays. Any thread.
#pragma once

class QString;
struct MeasurementSetup;
struct SignalData;

// The samples and nothing else.
bool writeRawFile(const SignalData& signal, const QString& path);

// One array of complex64 for NumPy, version 1 of its format, shape (N,).
bool writeNpyFile(const SignalData& signal, const QString& path);

// baseName.sigmf-data with the samples, and baseName.sigmf-meta with what they are: rate, hash and
// where in the spectrum the rows of the notch table are, numbered from 1 in their order. program
// is told as the one that made the recording.
bool writeSigmfFiles(const MeasurementSetup& setup, const QString& program,
                     const QString& baseName);
