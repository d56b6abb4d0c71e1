#include "campaign/result_csv.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace {

// The shortest text that reads back as the same number.
QString number(std::optional<double> value)
{
    return value && std::isfinite(*value)
               ? QString::number(*value, 'g', QLocale::FloatingPointShortest)
               : QString();
}

QString truth(std::optional<bool> value)
{
    return !value ? QString() : *value ? QStringLiteral("true") : QStringLiteral("false");
}

// RFC 4180
QString quoted(QString text)
{
    const bool isPlain = std::none_of(text.cbegin(), text.cend(),
                                      [](QChar c) { return QString(",\"\r\n").contains(c); });
    return isPlain ? text : '"' + text.replace('"', QLatin1String("\"\"")) + '"';
}

struct Column
{
    const char* name; // without its unit where that is the result's
    QString (*text)(const NprPoint& point);
    bool isLevel = false;
};

const Column columns[] = {
    {"level", [](const NprPoint& p) { return number(p.level); }, true},
    {"notch", [](const NprPoint& p) { return QString::number(p.notch); }},
    {"center_hz", [](const NprPoint& p) { return number(p.center); }},
    {"width_hz", [](const NprPoint& p) { return number(p.width); }},
    {"power", [](const NprPoint& p) { return number(p.power); }, true},
    {"npr_db", [](const NprPoint& p) { return number(p.npr); }},
    {"sigma_db", [](const NprPoint& p) { return number(p.sigma); }},
    {"evm_percent", [](const NprPoint& p) { return number(p.evmPercent()); }},
    {"marks", [](const NprPoint& p) { return quoted(p.marks.join(QLatin1Char(' '))); }},
    {"passed", [](const NprPoint& p) { return truth(p.passed); }},
};

// Of points from recordings, behind the others.
const Column recordedColumns[] = {
    {"recording",
     [](const NprPoint& p) {
         return p.recorded ? QString::number(p.recorded->recording) : QString();
     }},
    {"lines",
     [](const NprPoint& p) { return p.recorded ? QString::number(p.recorded->lines) : QString(); }},
    {"noise_density_dbfs_hz",
     [](const NprPoint& p) {
         return number(p.recorded ? p.recorded->noiseDensity : std::nullopt);
     }},
    {"distortion_npr_db",
     [](const NprPoint& p) {
         return number(p.recorded ? p.recorded->distortionNpr : std::nullopt);
     }},
};

using Columns = QVector<Column>;

Columns columnsOf(bool areRecorded)
{
    Columns all(std::begin(columns), std::end(columns));
    if (areRecorded) {
        for (const Column& column : recordedColumns) {
            all << column;
        }
    }
    return all;
}

// A column for each, and more behind them.
template <typename Text>
QByteArray line(const Columns& all, Text text, const QStringList& more = {})
{
    QStringList fields;
    for (const Column& column : all) {
        fields << text(column);
    }
    fields += more;
    return fields.join(QLatin1Char(',')).toUtf8() + '\n';
}

QByteArray header(const Columns& all, LevelUnit unit, const QStringList& more = {})
{
    const QString suffix = '_' + nameOf(unit).toLower();
    return line(
        all, [&](const Column& column) { return column.name + (column.isLevel ? suffix : ""); },
        more);
}

QByteArray linesOf(const Columns& all, const QVector<NprPoint>& points,
                   const QStringList& more = {})
{
    QByteArray lines;
    for (const NprPoint& point : points) {
        lines += line(
            all, [&point](const Column& column) { return column.text(point); }, more);
    }
    return lines;
}

} // namespace

QByteArray pointsToCsv(const NprResult& result)
{
    const Columns all = columnsOf(!result.recordings.isEmpty());
    return header(all, result.levelUnit) + linesOf(all, result.points);
}

QByteArray joinedCsv(const QVector<NamedResult>& results)
{
    const Columns all =
        columnsOf(std::any_of(results.begin(), results.end(), [](const NamedResult& one) {
            return !one.result.recordings.isEmpty();
        }));
    QByteArray csv = header(all, results.constFirst().result.levelUnit, {QStringLiteral("result")});
    for (const NamedResult& one : results) {
        csv += linesOf(all, one.result.points, {quoted(one.name)});
    }
    return csv;
}
