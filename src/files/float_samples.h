// Samples as little-endian single precision, I before Q: what the status server sends, and what
// the open formats hold.
#pragma once

#include "setup/signal_data.h"

class QCryptographicHash;
class QIODevice;

constexpr int floatSampleSize = 8; // bytes

// Of the samples that have both parts.
int sampleCount(const SignalData& signal);

// The samples from first to end - 1, rounded to the nearest float; 0 <= first <= end <=
// sampleCount(). Any thread.
void putFloatSamples(const SignalData& signal, int first, int end, char* bytes);

// All samples in large pieces, which go to the hash too unless it is null.
void writeFloatSamples(QIODevice& file, const SignalData& signal,
                       QCryptographicHash* hash = nullptr);
