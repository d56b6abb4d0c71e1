#include "campaign/result_csv.h"

#include <QLocale>

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

template <typename Text> QByteArray line(Text text)
{
    QStringList fields;
    for (const Column& column : columns) {
        fields << text(column);
    }
    return fields.join(QLatin1Char(',')).toUtf8() + '\n';
}

} // namespace

QByteArray pointsToCsv(const QVector<NprPoint>& points)
{
    QByteArray csv = line([](const Column& column) { return QString(column.name); });
    for (const NprPoint& point : points) {
        csv += line([&point](const Column& column) { return column.text(point); });
    }
    return csv;
}
