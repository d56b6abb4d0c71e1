// One row of the notch table: a gap in the noise, or in carrier mode a lone spectral line.
// Frequencies are offsets from the carrier in Hz; bins are counted from the carrier, so
// both are negative below it.
#pragma once

#include <QRectF>

struct Notch
{
    double center = 0.0;    // Hz; also the sort key
    double width = 0.0;     // Hz
    double startFreq = 0.0; // Hz, lower edge
    double stopFreq = 0.0;  // Hz, upper edge
    double depth = 0.0;     // dB on the amplitude, 0 or negative
    qint32 startIndex = 0;  // first bin
    qint32 stopIndex = 0;   // last bin, inclusive

    // Where the notch was last painted, in pixels of the graph; for hit testing only.
    QRectF bodyRect;
    QRectF leftHandleRect;
    QRectF rightHandleRect;
    QRectF depthHandleRect;
};
