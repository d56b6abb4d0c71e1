// The correction of the magnitude that undoes a measured response: at each line of the spectrum
// the distance of the trace below its top, in dB, so that a line where the path is weak is raised.
//
// Frequencies are in Hz relative to the centre, corrections have one value a line in frequency
// order. Any thread.
#pragma once

#include "fit/analyzer_trace.h"

// The frequencies of lineCount lines that lie lineSpacing apart and start half a sampleRate below
// the centre.
QVector<double> lineFrequencies(int lineCount, double sampleRate, double lineSpacing);

// Point i of the trace for line i, whatever its frequency; lines without a point get 0. The top
// is at least 0. The trace has at most lineCount points.
QVector<double> directCorrection(const AnalyzerTrace& trace, int lineCount);

// A polynomial of degree 20 through the points between the first and the last line, sampled at the
// lines. The trace and the lines have at least one element. Throws what polyfit throws when no
// points are left. Uses all cores; the bits do not depend on their number. Empty when abandoned
// becomes true meanwhile.
QVector<double> polynomialCorrection(const AnalyzerTrace& trace, const QVector<double>& lines,
                                     const std::atomic<bool>* abandoned = nullptr);
