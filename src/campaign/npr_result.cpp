#include "campaign/npr_result.h"

#include <cmath>

namespace PointMark {
const QString margin = QStringLiteral("margin");
const QString fewPeaks = QStringLiteral("few-peaks");
const QString notNoiseLike = QStringLiteral("not-noise-like");
const QString belowZero = QStringLiteral("below-zero");
const QString overload = QStringLiteral("overload");
const QString clipped = QStringLiteral("clipped");
} // namespace PointMark

std::optional<double> NprPoint::evmPercent() const
{
    return npr ? std::make_optional(100.0 * std::pow(10.0, -*npr / 20.0)) : std::nullopt;
}

void NprPoint::addMark(const QString& mark)
{
    if (!marks.contains(mark)) {
        marks << mark;
    }
}

QString nameOf(LevelUnit unit)
{
    return unit == LevelUnit::Dbfs ? QStringLiteral("dBFS") : QStringLiteral("dBm");
}

std::optional<double> NprRange::range() const
{
    return from && to ? std::make_optional(*to - *from) : std::nullopt;
}
