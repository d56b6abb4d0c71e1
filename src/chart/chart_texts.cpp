#include "chart/chart_texts.h"

#include <algorithm>
#include <iterator>

namespace {

// The minus sign of print.
QString inPrint(QString number)
{
    return number.replace('-', QChar(0x2212));
}

QString upTo(const QVector<double>& values)
{
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    return printed(*least, 2) + (*least < *most ? " to " + printed(*most, 2) : QString());
}

QString rangeText(const ChartRange& range, const QString& unit)
{
    if (range.from && range.to) {
        return printed(*range.to - *range.from, 2) + " dB, from " + printed(*range.from, 2) +
               " to " + printed(*range.to, 2) + ' ' + unit;
    }
    if (range.from) {
        return "from " + printed(*range.from, 2) + ' ' + unit + " on";
    }
    return range.to ? "up to " + printed(*range.to, 2) + ' ' + unit : "not crossed";
}

QVector<ChartRange> rangesOver(double threshold, const QVector<ChartLine>& lines)
{
    QVector<ChartRange> ranges;
    for (const ChartLine& line : lines) {
        std::copy_if(line.ranges.begin(), line.ranges.end(), std::back_inserter(ranges),
                     [=](const ChartRange& range) { return range.threshold == threshold; });
    }
    return ranges;
}

// Of several lines: their widths, or the ends that there are.
QString rangesText(const QVector<ChartRange>& ranges, const QString& unit)
{
    QVector<double> widths;
    QVector<double> begins;
    QVector<double> ends;
    for (const ChartRange& range : ranges) {
        if (range.from && range.to) {
            widths << *range.to - *range.from;
        } else if (range.from) {
            begins << *range.from;
        } else if (range.to) {
            ends << *range.to;
        }
    }
    QStringList parts;
    if (!widths.isEmpty()) {
        parts << upTo(widths) + " dB";
    }
    if (!begins.isEmpty()) {
        parts << "from " + upTo(begins) + ' ' + unit + " on";
    }
    if (!ends.isEmpty()) {
        parts << "ending at " + upTo(ends) + ' ' + unit;
    }
    if (parts.isEmpty() || widths.size() + begins.size() + ends.size() < ranges.size()) {
        parts << "not crossed";
    }
    return parts.join(", or ");
}

} // namespace

QString printed(double value, int decimals)
{
    return inPrint(QString::number(value, 'f', decimals));
}

QString notchText(int notch, double center)
{
    const QString megahertz = inPrint(QString::number(center / 1e6, 'g', 4));
    return QStringLiteral("notch %1, %2 MHz").arg(notch).arg(megahertz);
}

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
    return printed(peak.y(), 2) + " dB at " + printed(peak.x(), 2) + ' ' + unit;
}

QString legendText(const ChartLine& line, const QString& unit)
{
    return line.peak ? line.name + ": peak " + peakText(*line.peak, unit) : line.name;
}

QString thresholdText(double threshold, const QVector<ChartLine>& lines, const QString& unit)
{
    const QVector<ChartRange> ranges = rangesOver(threshold, lines);
    const QString above = "above " + printed(threshold, 1).remove(".0") + " dB: ";
    return above +
           (ranges.size() == 1 ? rangeText(ranges.constFirst(), unit) : rangesText(ranges, unit));
}

QString limitText(double limit)
{
    return "limit " + printed(limit, 1).remove(".0") + " dB";
}

QString bandText()
{
    return QStringLiteral("scatter to be expected, %1 one sigma").arg(QChar(0x00B1));
}

QString arrowText()
{
    return QString(QChar(0x25b2)) + QChar(0x25bc) + QStringLiteral(" reading beyond the axis");
}

QString moreText(int lines)
{
    return QStringLiteral("and %1 more").arg(lines);
}
