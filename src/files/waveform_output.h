// Writers of the present signal, one file a form. Each form scales in its own way; the three
// scalings are part of the formats and not related to one another. A file that can't be opened or
// written whole ends the writer, which returns false; what stood in its place stays. Any thread.
//
// baseName ends in none of the suffixes. clock is the sample rate in whole Hz.
#pragma once

#include "setup/signal_data.h"

#include <QString>

class QDateTime;

// Writes the form that the ending of the path asks for, without regard to case: ".i" or ".q" text,
// ".i.wav" or ".q.wav" WAV, ".wv" waveform. Any other path writes nothing. sampleRate in Hz.
bool saveWaveform(const QString& path, const SignalData& signal, double sampleRate);

// baseName.i and baseName.q: one sample a line, six decimals, the largest peak at 2.5.
bool writeIQTextFiles(SignalData signal, const QString& baseName);

// baseName.i.wav and baseName.q.wav: 44 byte header, 16-bit samples that use a quarter of the
// range by the peak-to-peak span.
bool writeIQWaveFiles(SignalData signal, const QString& baseName, quint32 clock);

// baseName.wv: tags in braces, then I and Q at full 16-bit scale of the largest magnitude.
bool writeWvFile(SignalData signal, const QString& baseName, quint32 clock);

// The tags of a ".wv" file up to the "#" in front of the samples. rms in the units of the samples.
QByteArray wvHeader(const QDateTime& now, double rms, qint32 length, quint32 clock);
