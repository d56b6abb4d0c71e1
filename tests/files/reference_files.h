// The plain ways of reading and writing signals as text, one conversion of Qt after the other.
// Tests compare the production code with them, benchmarks measure it against them. Not to be
// improved.
#pragma once

#include "setup/signal_data.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <cmath>

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

inline void appendWord(QByteArray& words, double value)
{
    const auto word = static_cast<quint64>(static_cast<qint64>(value));
    words.append(static_cast<char>(word & 0xFF));
    words.append(static_cast<char>(word >> 8 & 0xFF));
}

// What follows the header of a WAV file, and what stands between "#" and "}" of a waveform file.
inline QByteArray wavWords(const QVector<double>& samples, double positive, double negative)
{
    QByteArray words;
    for (const double sample : samples) {
        appendWord(words, sample * (sample >= 0.0 ? positive : negative));
    }
    return words;
}

inline QByteArray wvWords(const SignalData& signal)
{
    double peak = 0.0;
    for (int k = 0; k < signal.length; ++k) {
        const double x =
            signal.iSamples[k] * signal.iSamples[k] + signal.qSamples[k] * signal.qSamples[k];
        peak = std::max(peak, std::sqrt(x));
    }
    QByteArray words;
    for (int k = 0; k < signal.length; ++k) {
        appendWord(words, 32767.0 / peak * signal.iSamples[k] + 0.5);
        appendWord(words, 32767.0 / peak * signal.qSamples[k] + 0.5);
    }
    return words;
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
