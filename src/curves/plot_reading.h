// Which point of a chart somebody points at, and what it says. Any thread.
#pragma once

#include "curves/plot_content.h"

struct PlotPlace
{
    int line = -1;
    int point = -1;

    bool isSome() const { return line >= 0; }
    bool operator==(const PlotPlace& other) const
    {
        return line == other.line && point == other.point;
    }
    bool operator!=(const PlotPlace& other) const { return !(*this == other); }
};

// The point nearest to a position, of the shown line that passes nearest to it; chosen lines come
// first where several do. None where none passes within so many pixels.
PlotPlace placeNear(const QPointF& position, double reach, const PlotContent& content,
                    const PlotFrame& frame);

// One point further along its line; the same at its end. The first point of the first shown line
// from none.
PlotPlace besidePlace(const PlotPlace& place, int steps, const PlotContent& content);
// The point of nearest x on the next shown line in the order of the list, round the end.
PlotPlace otherLinePlace(const PlotPlace& place, int steps, const PlotContent& content);

// Where a place is after the content has changed; none when its line is gone or hidden.
PlotPlace samePlace(const PlotPlace& place, const PlotContent& before, const PlotContent& after);

// Name, line, level, NPR with its sigma, EVM; a text a line.
QStringList readingTexts(const PlotPlace& place, const PlotContent& content);
