#include "curves/report.h"

#include "campaign/npr_curve.h"
#include "campaign/result_json.h"
#include "chart/chart_file.h"
#include "chart/chart_style.h"
#include "chart/chart_texts.h"
#include "cli/result_chart.h"
#include "curves/result_texts.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QTextDocument>

namespace {

constexpr int mostRows = 40; // more would be too small to read

QString cellsOf(const QStringList& texts, const char* element)
{
    QString row;
    for (const QString& text : texts) {
        row += QStringLiteral("<%1>%2</%1>").arg(QLatin1String(element), text.toHtmlEscaped());
    }
    return "<tr>" + row + "</tr>";
}

QString number(const std::optional<double>& value, int decimals)
{
    return value ? printed(*value, decimals) : QString(QChar(0x2013));
}

QStringList rangeCells(const NprCurve& curve, const QString& unit)
{
    QStringList texts;
    for (const NprRange& range : curve.ranges) {
        texts << QStringLiteral("%1 dB over %2 dB (%3 to %4 %5)")
                     .arg(number(range.range(), 1), QString::number(range.threshold),
                          number(range.from, 1), number(range.to, 1), unit);
    }
    return {texts.join(QStringLiteral("; "))};
}

QString curveTable(const QVector<ShownResult>& results)
{
    QStringList rows;
    for (const ShownResult& shown : results) {
        const QString unit = nameOf(shown.result.levelUnit);
        for (const NprCurve& curve : shown.result.curves) {
            const QString peakLevel = number(curve.peakLevel, 2) + ' ' + unit;
            rows << cellsOf(QStringList{shown.name, QString::number(curve.notch),
                                        number(curve.peakNpr, 1), peakLevel} +
                                rangeCells(curve, unit),
                            "td");
        }
    }
    const int left = rows.size() - mostRows;
    QString table = cellsOf({"Result", "Notch", "Peak / dB", "at", "Range"}, "th") +
                    QStringList(rows.mid(0, mostRows)).join(QString());
    if (left > 0) {
        table += cellsOf({QStringLiteral("and %1 more").arg(left)}, "td");
    }
    return "<table cellspacing=0 cellpadding=5>" + table + "</table>";
}

// Each with the count of its points.
QString marksOf(const NprResult& result)
{
    QMap<QString, int> counts;
    for (const NprPoint& point : result.points) {
        for (const QString& mark : point.marks) {
            ++counts[mark];
        }
    }
    QStringList texts;
    for (auto mark = counts.begin(); mark != counts.end(); ++mark) {
        texts << QStringLiteral("%1 (%2 points)").arg(mark.key()).arg(mark.value());
    }
    return texts.isEmpty() ? QStringLiteral("none") : texts.join(QStringLiteral(", "));
}

QString settingsTable(const QVector<ShownResult>& results)
{
    QString table = cellsOf(
        {"Result", "Device", "Measured", "Signal", "Crest factor / dB", "Limit", "Marks"}, "th");
    for (const ShownResult& shown : results.mid(0, mostRows)) {
        const SignalFigures& signal = shown.result.signal;
        table += cellsOf(
            {shown.name, deviceText(shown.result), dateText(shown.result),
             QStringLiteral("%1 points at %2 MHz").arg(signal.length).arg(signal.sampleRate / 1e6),
             printed(signal.crestFactor, 2), verdictText(shown.result), marksOf(shown.result)},
            "td");
    }
    return "<table cellspacing=0 cellpadding=5>" + table + "</table>";
}

// Below the chart, made smaller where the page wouldn't hold it.
void paintTables(const QVector<ShownResult>& results, double height, QPainter& painter)
{
    QTextDocument text;
    text.setDocumentMargin(0.0);
    text.setDefaultFont(ChartStyle::font(22));
    text.setDefaultStyleSheet(QStringLiteral("th { text-align: left; }"));
    text.setHtml(reportHtml(results));
    text.setTextWidth(chartWidth);
    const double fit = std::min(
        {1.0, height / text.size().height(), chartWidth / std::max(1.0, text.idealWidth())});
    painter.scale(fit, fit);
    text.drawContents(&painter);
}

} // namespace

NprChartData pictureOf(const QVector<ShownResult>& results)
{
    QVector<ChartedResult> charted;
    for (const ShownResult& shown : results) {
        QVector<double> thresholds;
        addThresholds(shown.result, thresholds);
        charted << ChartedResult{
            shown.name, shown.result, {shown.theoryName, shown.theory, shown.limit, thresholds}};
    }
    return chartOf(charted);
}

QString reportHtml(const QVector<ShownResult>& results)
{
    return "<h3>Peaks and ranges</h3>" + curveTable(results) + "<h3>Settings and marks</h3>" +
           settingsTable(results) +
           "<p>Range: levels around the peak over which NPR stays above the threshold. Bands: one "
           "standard deviation to be expected over stimuli.</p>";
}

QByteArray reportPdf(const QVector<ShownResult>& results)
{
    constexpr int dotsPerInch = 300;
    constexpr double margin = 15.0; // mm
    constexpr double gap = 40.0;    // between chart and tables, in units of the chart
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter page(&buffer);
    page.setTitle(QStringLiteral("NPR curves"));
    page.setResolution(dotsPerInch);
    page.setPageSize(QPageSize(QPageSize::A4));
    page.setPageMargins(QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
    QPainter painter(&page);
    const double scale = double(page.width()) / chartWidth;
    painter.scale(scale, scale);
    paintChart(pictureOf(results), painter);
    painter.translate(0.0, chartHeight + gap);
    paintTables(results, page.height() / scale - chartHeight - gap, painter);
    painter.end();
    return bytes;
}
