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

struct Column
{
    const char* name;
    QString (*text)(const NprPoint& point);
};

const Column columns[] = {
    {"level_dbm", [](const NprPoint& p) { return number(p.level); }},
    {"notch", [](const NprPoint& p) { return QString::number(p.notch); }},
    {"center_hz", [](const NprPoint& p) { return number(p.center); }},
    {"width_hz", [](const NprPoint& p) { return number(p.width); }},
    {"power_dbm", [](const NprPoint& p) { return number(p.power); }},
    {"npr_db", [](const NprPoint& p) { return number(p.npr); }},
    {"sigma_db", [](const NprPoint& p) { return number(p.sigma); }},
    {"evm_percent", [](const NprPoint& p) { return number(p.evmPercent()); }},
    {"marks", [](const NprPoint& p) { return p.marks.join(QLatin1Char(' ')); }},
    {"passed", [](const NprPoint& p) { return truth(p.passed); }},
};

// A column for each, and more behind them.
template <typename Text> QByteArray line(Text text, const QStringList& more = {})
{
    QStringList fields;
    for (const Column& column : columns) {
        fields << text(column);
    }
    fields += more;
    return fields.join(QLatin1Char(',')).toUtf8() + '\n';
}

QByteArray header(const QStringList& more = {})
{
    return line([](const Column& column) { return QString(column.name); }, more);
}

QByteArray linesOf(const QVector<NprPoint>& points, const QStringList& more = {})
{
    QByteArray lines;
    for (const NprPoint& point : points) {
        lines += line([&point](const Column& column) { return column.text(point); }, more);
    }
    return lines;
}

// RFC 4180
QString quoted(QString text)
{
    const bool isPlain = std::none_of(text.cbegin(), text.cend(),
                                      [](QChar c) { return QString(",\"\r\n").contains(c); });
    return isPlain ? text : '"' + text.replace('"', QLatin1String("\"\"")) + '"';
}

} // namespace

QByteArray pointsToCsv(const QVector<NprPoint>& points)
{
    return header() + linesOf(points);
}

QByteArray joinedCsv(const QVector<NamedPoints>& results)
{
    QByteArray csv = header({QStringLiteral("result")});
    for (const NamedPoints& one : results) {
        csv += linesOf(one.points, {quoted(one.name)});
    }
    return csv;
}
