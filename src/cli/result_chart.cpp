#include "cli/result_chart.h"

#include "chart/chart_texts.h"

#include <algorithm>

namespace {

QVector<NprPoint> pointsOf(int notch, const QVector<NprPoint>& points)
{
    QVector<NprPoint> found;
    std::copy_if(points.begin(), points.end(), std::back_inserter(found),
                 [notch](const NprPoint& point) { return point.notch == notch; });
    std::stable_sort(found.begin(), found.end(),
                     [](const NprPoint& a, const NprPoint& b) { return a.level < b.level; });
    return found;
}

QVector<int> notchesOf(const QVector<NprPoint>& points)
{
    QVector<int> numbers;
    for (const NprPoint& point : points) {
        if (!numbers.contains(point.notch)) {
            numbers << point.notch;
        }
    }
    return numbers;
}

ChartLine lineOf(const QVector<NprPoint>& points)
{
    const NprPoint& first = points.constFirst();
    ChartLine line;
    line.name = notchText(first.notch, first.center);
    for (const NprPoint& point : points) {
        line.points << ChartPoint{point.level, point.npr, point.sigma};
    }
    return line;
}

void addCurve(const NprCurve& curve, ChartLine& line)
{
    if (curve.peakNpr && curve.peakLevel) {
        line.peak = QPointF(*curve.peakLevel, *curve.peakNpr);
    }
    for (const NprRange& range : curve.ranges) {
        line.ranges << ChartRange{range.threshold, range.from, range.to};
    }
}

ChartTheory theoryOf(const QString& name, const QVector<NprPoint>& points)
{
    ChartTheory theory;
    theory.name = name;
    for (const NprPoint& point : points) {
        if (point.npr) {
            theory.points << QPointF(point.level, *point.npr);
        }
    }
    return theory;
}

template <typename Value> void addOnce(const Value& value, QVector<Value>& values)
{
    if (!values.contains(value)) {
        values << value;
    }
}

void join(const NprChartData& other, const QString& name, NprChartData& chart)
{
    for (ChartLine line : other.lines) {
        line.name = name + ", " + line.name;
        chart.lines << line;
    }
    chart.theories += other.theories;
    chart.isNoiseLike = chart.isNoiseLike && other.isNoiseLike;
    for (const double threshold : other.thresholds) {
        addOnce(threshold, chart.thresholds);
    }
}

} // namespace

NprChartData chartOf(const NprResult& result, const ResultContext& context)
{
    NprChartData chart;
    chart.device = result.bench.simulated.value_or("device measured with " + result.bench.analyzer);
    chart.date = result.started.section('T', 0, 0);
    chart.levelUnit = nameOf(result.levelUnit);
    chart.isNoiseLike = result.signal.noiseLike;
    chart.limit = context.limit;
    chart.thresholds = context.thresholds;
    for (const int notch : notchesOf(result.points)) {
        ChartLine line = lineOf(pointsOf(notch, result.points));
        for (const NprCurve& curve : result.curves) {
            if (curve.notch == notch) {
                addCurve(curve, line);
            }
        }
        chart.lines << line;
    }
    for (const int notch : notchesOf(context.theory)) {
        chart.theories << theoryOf(context.theoryName, pointsOf(notch, context.theory));
    }
    return chart;
}

NprChartData chartOf(const QVector<ChartedResult>& results)
{
    if (results.size() == 1) {
        return chartOf(results.constFirst().result, results.constFirst().context);
    }
    NprChartData chart;
    QVector<QString> devices;
    QVector<QString> dates;
    for (const ChartedResult& one : results) {
        const NprChartData part = chartOf(one.result, one.context);
        join(part, one.name, chart);
        chart.levelUnit = part.levelUnit; // of all
        addOnce(part.device, devices);
        addOnce(part.date, dates);
    }
    std::sort(dates.begin(), dates.end());
    chart.device = QStringList(devices.toList()).join(QStringLiteral("; "));
    chart.date =
        dates.size() > 1 ? dates.constFirst() + " to " + dates.constLast() : dates.constFirst();
    return chart;
}
