#include "curves/result_texts.h"

#include "campaign/npr_curve.h"
#include "chart/chart_texts.h"

#include <QDateTime>
#include <QSet>

#include <algorithm>

namespace {

const NprCurve* highestOf(const QVector<NprCurve>& curves)
{
    const NprCurve* highest = nullptr;
    for (const NprCurve& curve : curves) {
        if (curve.peakNpr && curve.peakLevel &&
            (highest == nullptr || *curve.peakNpr > *highest->peakNpr)) {
            highest = &curve;
        }
    }
    return highest;
}

} // namespace

QString deviceText(const NprResult& result)
{
    return result.bench.simulated.value_or("measured with " + result.bench.analyzer);
}

QString dateText(const NprResult& result)
{
    const QDateTime time = QDateTime::fromString(result.started, Qt::ISODate);
    return time.isValid() ? time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd hh:mm"))
                          : result.started;
}

QString notchCountText(const NprResult& result)
{
    QSet<int> numbers;
    for (const NprPoint& point : result.points) {
        numbers.insert(point.notch);
    }
    return QString::number(numbers.size());
}

QString peakText(const NprResult& result)
{
    const NprCurve* highest = highestOf(result.curves);
    return highest == nullptr
               ? QString()
               : printed(*highest->peakNpr, 1) + " dB at " + printed(*highest->peakLevel, 1) + ' ' +
                     nameOf(result.levelUnit);
}

QString rangeText(const NprResult& result)
{
    std::optional<double> narrowest;
    std::optional<double> threshold;
    for (const NprCurve& curve : result.curves) {
        if (curve.ranges.isEmpty()) {
            continue;
        }
        const NprRange& range = curve.ranges.constFirst();
        if (!range.range()) {
            return QStringLiteral("not crossed");
        }
        threshold = range.threshold;
        narrowest = std::min(narrowest.value_or(*range.range()), *range.range());
    }
    return narrowest ? printed(*narrowest, 1) + " dB over " + QString::number(*threshold) + " dB"
                     : QString();
}

QString verdictText(const NprResult& result)
{
    const bool hasLimit =
        std::any_of(result.points.begin(), result.points.end(),
                    [](const NprPoint& point) { return point.passed.has_value(); });
    return !hasLimit                       ? QString()
           : hasMissedLimit(result.points) ? QStringLiteral("FAIL")
                                           : QStringLiteral("pass");
}
