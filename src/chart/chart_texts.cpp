#include "chart/chart_texts.h"

#include <algorithm>

namespace {

const QChar minus(0x2212);

// With the sign of print.
QString number(double value, int decimals)
{
    return QString::number(value, 'f', decimals).replace('-', minus);
}

QString upTo(const QVector<double>& values)
{
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    return number(*least, 2) + (*least < *most ? " to " + number(*most, 2) : QString());
}

QString rangeText(const ChartRange& range, const QString& unit)
{
    if (range.from && range.to) {
        return number(*range.to - *range.from, 2) + " dB, from " + number(*range.from, 2) + " to " +
               number(*range.to, 2) + ' ' + unit;
    }
    if (range.from) {
        return "from " + number(*range.from, 2) + ' ' + unit + " on";
    }
    return range.to ? "up to " + number(*range.to, 2) + ' ' + unit : "not crossed";
}

} // namespace

QString titleHtml(const NprChartData& data)
{
    const QString what =
        data.isNoiseLike ? "NPR of " : "Not an NPR (the signal isn't noise-like): ";
    return "<div align=\"center\"><b>" + what + data.device.toHtmlEscaped() + "</b><br>" +
           data.date.toHtmlEscaped() + "</div>";
}

QString levelTitle(const QString& unit)
{
    return "Level of the signal / " + unit;
}

QString ratioTitle(const NprChartData& data)
{
    return data.isNoiseLike ? QStringLiteral("NPR / dB")
                            : QStringLiteral("Ratio / dB (not an NPR)");
}

QString peakText(const QPointF& peak, const QString& unit)
{
    return number(peak.y(), 2) + " dB at " + number(peak.x(), 2) + ' ' + unit;
}

QString legendText(const ChartLine& line, const QString& unit)
{
    const QString name = QString(line.name).replace('-', minus);
    return line.peak ? name + ": peak " + peakText(*line.peak, unit) : name;
}

QString thresholdText(double threshold, const QVector<ChartLine>& lines, const QString& unit)
{
    QVector<ChartRange> ranges;
    QVector<double> widths;
    for (const ChartLine& line : lines) {
        for (const ChartRange& range : line.ranges) {
            if (range.threshold == threshold) {
                ranges.append(range);
            }
            if (range.threshold == threshold && range.from && range.to) {
                widths.append(*range.to - *range.from);
            }
        }
    }
    const QString above = "above " + number(threshold, 1).remove(".0") + " dB: ";
    if (ranges.size() == 1) {
        return above + rangeText(ranges.constFirst(), unit);
    }
    if (widths.isEmpty()) {
        return above + "not crossed";
    }
    return above + upTo(widths) + " dB" + (widths.size() < ranges.size() ? ", or not crossed" : "");
}

QString limitText(double limit)
{
    return "limit " + number(limit, 1).remove(".0") + " dB";
}

QString bandText()
{
    return QStringLiteral("scatter to be expected, %1 one sigma").arg(QChar(0x00B1));
}

QString moreText(int lines)
{
    return QStringLiteral("and %1 more").arg(lines);
}
