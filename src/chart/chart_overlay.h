// Marks, labels and legend over the curves of a picture.
#pragma once

#include "chart/npr_chart_data.h"

#include <QRectF>

#include <functional>

class QGraphicsItemGroup;

struct OverlayPlace
{
    QRectF plot;                                       // pixels
    QRectF legend;                                     // pixels
    int text;                                          // height of letters, pixels
    std::function<QPointF(const QPointF&)> positionOf; // of level and ratio
};

// Adds everything to the group.
void fillOverlay(QGraphicsItemGroup& group, const NprChartData& data, const OverlayPlace& place);

// Height of the legend at a width, in pixels.
double legendHeight(const NprChartData& data, double width, int text);
