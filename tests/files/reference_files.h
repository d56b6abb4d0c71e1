// The plain ways of reading and writing signals as text, one conversion of Qt after the other.
// Tests compare the production code with them, benchmarks measure it against them. Not to be
// improved.
#pragma once

#include "setup/signal_data.h"

#include <QFile>
#include <QTextStream>

namespace reference {

inline void writeText(const QString& path, const QVector<double>& samples, double factor)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        return;
    }
    QTextStream out(&file);
    for (const double sample : samples) {
        out << QString::number(sample * factor, 'f', 6) << '\n';
    }
}

inline SignalData readMagnitudePhase(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QTextStream in(&file);
    const int length = in.readLine().trimmed().toInt();
    if (length < 1 || static_cast<quint32>(length) > maxSignalLength) {
        return {};
    }
    SignalData data(static_cast<quint32>(length));
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        const QVector<QStringRef> fields = line.splitRef(QLatin1Char(' '));
        if (fields.size() < 3) {
            continue;
        }
        const int index = fields.at(0).toInt();
        if (index >= 0 && index < length) {
            data.phase[index] = fields.at(1).toDouble();
            data.magnitude[index] = fields.at(2).toDouble();
        }
    }
    return data;
}

} // namespace reference
