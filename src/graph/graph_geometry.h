// The scale of the spectrum graph and the places of its parts, in pixels; no widget.
//
// The whole sample rate spans the width, 105 dB span 80 % of the height. Bins are counted from the
// carrier. Results are truncated toward zero. Where a formula is worked out in single precision the
// code says float: the pixels that operators aim at follow from it.
#pragma once

#include "setup/notch.h"

#include <QSize>

struct MeasurementSetup;

class GraphGeometry
{
public:
    // The level of 0 dB on the scale from -1 (bottom) to +1 (top), and of -105 dB.
    static constexpr double topLevel = 0.8F;
    static constexpr double floorLevel = -topLevel;

    GraphGeometry(QSize size, quint32 fftLength);

    // Bin -N/2 is pixel 0, bin 0 the middle, bin N/2 the width.
    int xOfBin(qint64 bin) const;
    int yOfLevel(double level) const;
    // The inverse of xOfBin.
    qint32 binAt(int x) const;
    // Whole dB, above 0 over the top level.
    qint32 depthAt(int y) const;

    // Fractions of a dB are dropped.
    static double levelOfDepth(double depth);

    // Recomputes body and handles of a notch.
    void placeHandles(Notch& notch) const;

private:
    int width;
    int height;
    quint32 length;
};

// Half the noise band in bins.
quint32 bandEdge(const MeasurementSetup& setup);

// After a drag: puts the bins of every row in order and into the band, and makes the frequencies
// follow. A bin past the edge stops one inside.
void tidyNotches(MeasurementSetup& setup);
