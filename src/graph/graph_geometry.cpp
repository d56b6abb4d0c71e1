#include "graph/graph_geometry.h"

#include "base/truncation.h"
#include "setup/measurement_setup.h"

#include <utility>

namespace {

constexpr qreal handleSize = 10.0; // pixels

} // namespace

GraphGeometry::GraphGeometry(QSize size, quint32 fftLength)
    : width(size.width()), height(size.height()), length(fftLength)
{
}

int GraphGeometry::xOfBin(qint64 bin) const
{
    const float position = 1.0F + static_cast<float>(2 * bin) / static_cast<float>(length);
    return truncatedToInt32(static_cast<float>(width) * position * 0.5);
}

int GraphGeometry::yOfLevel(double level) const
{
    return truncatedToInt32(height * 0.5 - height * level * 0.5);
}

qint32 GraphGeometry::binAt(int x) const
{
    const auto position = static_cast<float>(x / (width * 0.5) - 1.0);
    return truncatedToInt32(static_cast<float>(length) * position * 0.5);
}

qint32 GraphGeometry::depthAt(int y) const
{
    const auto level = static_cast<float>(1.0 - y / (height * 0.5));
    return truncatedToInt32((level - 0.8F) / 0.015238095F);
}

double GraphGeometry::levelOfDepth(double depth)
{
    return static_cast<float>(truncatedToInt32(depth)) * 1.6F / 105.0F + 0.8F;
}

void GraphGeometry::placeHandles(Notch& notch) const
{
    const QPointF topLeft(xOfBin(notch.startIndex) + 1.0, yOfLevel(topLevel) - 2.0);
    const QPointF bottomRight(xOfBin(notch.stopIndex) - 1.0,
                              yOfLevel(levelOfDepth(notch.depth)) - 1.0);
    const QRectF body(topLeft, bottomRight);
    notch.bodyRect = body;
    notch.leftHandleRect = {body.left() - handleSize, body.top(), handleSize,
                            body.height() - handleSize};
    notch.rightHandleRect = {body.right(), body.top(), handleSize, body.height() - handleSize};
    notch.depthHandleRect = {body.left() + handleSize, body.bottom(), body.width() - 2 * handleSize,
                             handleSize};
}

quint32 bandEdge(const MeasurementSetup& setup)
{
    return truncatedToUint32((setup.fftLength() >> 1) * setup.nbwSrate);
}

void tidyNotches(MeasurementSetup& setup)
{
    const double limit = (setup.fftLength() >> 1) * setup.nbwSrate;
    const double binWidth = setup.binWidth();
    for (Notch& notch : setup.notches->items) {
        if (notch.startIndex > notch.stopIndex) {
            std::swap(notch.startIndex, notch.stopIndex);
        }
        if (notch.stopIndex > limit) {
            notch.stopIndex = truncatedToInt32(limit - 1.0);
        }
        if (notch.startIndex < -limit) {
            notch.startIndex = truncatedToInt32(1.0 - limit);
        }
        notch.startFreq = notch.startIndex * binWidth;
        notch.stopFreq = notch.stopIndex * binWidth;
        notch.center = (notch.startFreq + notch.stopFreq) * 0.5;
        notch.width = notch.stopFreq - notch.startFreq;
    }
}
