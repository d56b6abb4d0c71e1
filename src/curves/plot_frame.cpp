#include "curves/plot_frame.h"

#include "chart/chart_ratios.h"
#include "chart/chart_scale.h"

#include <algorithm>
#include <cmath>

bool PlotSpan::operator==(const PlotSpan& other) const
{
    return xLow == other.xLow && xHigh == other.xHigh && yLow == other.yLow && yHigh == other.yHigh;
}

QPointF PlotFrame::positionOf(const QPointF& value) const
{
    const double x = (value.x() - span.xLow) / (span.xHigh - span.xLow);
    const double y = (value.y() - span.yLow) / (span.yHigh - span.yLow);
    return {area.left() + x * area.width(), area.bottom() - y * area.height()};
}

QPointF PlotFrame::valueAt(const QPointF& position) const
{
    const double x = (position.x() - area.left()) / area.width();
    const double y = (area.bottom() - position.y()) / area.height();
    return {span.xLow + x * (span.xHigh - span.xLow), span.yLow + y * (span.yHigh - span.yLow)};
}

PlotSpan PlotFrame::spanOf(const QRectF& rectangle) const
{
    const QRectF inside = rectangle & area;
    const QPointF low = valueAt(inside.bottomLeft());
    const QPointF high = valueAt(inside.topRight());
    return {low.x(), high.x(), low.y(), high.y()};
}

PlotSpan PlotFrame::zoomed(double factor, const QPointF& around) const
{
    const QPointF fixed = valueAt(around);
    return {fixed.x() + factor * (span.xLow - fixed.x()),
            fixed.x() + factor * (span.xHigh - fixed.x()),
            fixed.y() + factor * (span.yLow - fixed.y()),
            fixed.y() + factor * (span.yHigh - fixed.y())};
}

PlotSpan PlotFrame::moved(double right, double up) const
{
    const double x = right * (span.xHigh - span.xLow);
    const double y = up * (span.yHigh - span.yLow);
    return {span.xLow + x, span.xHigh + x, span.yLow + y, span.yHigh + y};
}

bool isAtEdge(const QPointF& value, const PlotSpan& span)
{
    return !isCredible(value.y()) && (value.y() < span.yLow || value.y() > span.yHigh);
}

QPointF seenPosition(const QPointF& value, const PlotFrame& frame)
{
    const QPointF position = frame.positionOf(value);
    const QRectF& area = frame.area;
    return isAtEdge(value, frame.span)
               ? QPointF(position.x(), std::clamp(position.y(), area.top(), area.bottom()))
               : position;
}

bool isUseful(const PlotSpan& span)
{
    constexpr double least = 1e-6; // of the larger end
    const auto isWide = [](double low, double high) {
        return high - low > least * std::fmax(std::abs(low), std::abs(high));
    };
    return isWide(span.xLow, span.xHigh) && isWide(span.yLow, span.yHigh);
}

PlotSpan steadySpan(const PlotSpan& present, const PlotSpan& wanted)
{
    const auto fits = [](double low, double high, double wantedLow, double wantedHigh) {
        return wantedLow >= low && wantedHigh <= high && wantedHigh - wantedLow >= (high - low) / 2;
    };
    return fits(present.xLow, present.xHigh, wanted.xLow, wanted.xHigh) &&
                   fits(present.yLow, present.yHigh, wanted.yLow, wanted.yHigh)
               ? present
               : wanted;
}

AxisTicks ticksOf(double low, double high, int count)
{
    // A scale is 1 wide at least, so narrower ones are asked for in larger numbers.
    const double enlarged = std::pow(10.0, std::max(0.0, std::ceil(-std::log10(high - low))));
    const double step = scaleWithin({low * enlarged, high * enlarged}, count).step / enlarged;
    constexpr double rounding = 1e-9;
    return {step, std::max(0, static_cast<int>(std::ceil(-std::log10(step) - rounding)))};
}
