// The ripple of the chain as an analyzer would store it: a text file, one line a point, frequency
// (offset from the carrier, Hz) and level (dB) divided by ";". Numbers have a decimal point.
#pragma once

#include "dut/source.h"

#include <QString>

// As many points as the signal has lines, at their frequencies from minus half the rate up, so that
// a reader may take them for one another. False when the file can't be written; errorText says why.
bool writeTrace(const QString& path, const Ripple& ripple, int points, double sampleRate,
                QString& errorText);
