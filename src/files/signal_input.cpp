#include "files/signal_input.h"

#include "files/plain_lines.h"
#include "transform/statistics.h"
#include "transform/transform.h"

#include <QFile>
#include <QTextStream>
#include <QtEndian>

#include <algorithm>
#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;
constexpr quint16 sampleMask = 0x3FFF; // 14 bits
constexpr double zeroWord = 8192.0;

void store(SignalData& data, int index, double phase, double magnitude)
{
    if (index >= 0 && index < data.length) {
        data.phase[index] = phase;
        data.magnitude[index] = magnitude;
    }
}

// Any line, trimmed.
void readAnyLine(const QString& line, SignalData& data)
{
    const QVector<QStringRef> fields = line.splitRef(QLatin1Char(' '));
    if (fields.size() >= 3) {
        store(data, fields.at(0).toInt(), fields.at(1).toDouble(), fields.at(2).toDouble());
    }
}

QString trimmedText(TextRange line)
{
    return QString::fromLatin1(line.begin, static_cast<int>(line.size())).trimmed();
}

// A line of plain text; what isn't of the common kind goes the way of any line.
void readPlainLine(TextRange line, SignalData& data)
{
    const auto isBlank = [](char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); };
    TextRange text = line;
    while (text.begin != text.end && isBlank(*text.begin)) {
        ++text.begin;
    }
    while (text.begin != text.end && isBlank(text.end[-1])) {
        --text.end;
    }
    const char* first = std::find(text.begin, text.end, ' ');
    const char* second = first == text.end ? first : std::find(first + 1, text.end, ' ');
    if (second == text.end) {
        return; // fewer than three fields
    }
    int index = 0;
    double phase = 0.0;
    double magnitude = 0.0;
    if (readSureIndex({text.begin, first}, index) && readSureDouble({first + 1, second}, phase) &&
        readSureDouble({second + 1, std::find(second + 1, text.end, ' ')}, magnitude)) {
        store(data, index, phase, magnitude);
    } else {
        readAnyLine(trimmedText(line), data);
    }
}

SignalData emptyOfLength(const QString& firstLine)
{
    const int length = firstLine.toInt();
    if (length < 1 || static_cast<quint32>(length) > maxSignalLength) {
        return {};
    }
    return SignalData(static_cast<quint32>(length));
}

SignalData readAnyText(QFile& file)
{
    QTextStream in(&file);
    SignalData data = emptyOfLength(in.readLine().trimmed());
    while (data.length > 0 && !in.atEnd()) {
        readAnyLine(in.readLine().trimmed(), data);
    }
    return data;
}

// The largest power of two that fits the words of a file; 1 for a file without a whole word.
quint64 usedWords(qint64 bytes)
{
    quint64 count = 1;
    while (count * 2 <= static_cast<quint64>(bytes / 2)) {
        count *= 2;
    }
    return count;
}

double sampleOf(quint16 word)
{
    const double value = (word & sampleMask) - zeroWord;
    return value < 0.0 ? value / 8192.0 : value / 8191.0;
}

// Words that the file does not offer count as 0, the lowest sample.
void readSamples(QFile& file, QVector<double>& samples)
{
    const QByteArray bytes = file.read(2 * qint64{samples.size()});
    for (int i = 0; i < samples.size(); ++i) {
        const bool offered = 2 * i + 1 < bytes.size();
        samples[i] =
            sampleOf(offered ? qFromLittleEndian<quint16>(bytes.constData() + 2 * qint64{i}) : 0);
    }
}

// Deliberate, and what files of this kind are made for: the magnitude is that of the real part
// alone, the phase is the plain arc tangent of the quotient, and it is kept divided by pi.
void takeLine(SignalData& data, int from, int to)
{
    const double re = data.iSamples.at(from);
    const double im = data.qSamples.at(from);
    data.magnitude[to] = std::sqrt(re * re);
    data.phase[to] = std::atan(im / re) / pi;
}

void takeSpectrum(SignalData& data)
{
    const int half = data.length / 2;
    for (int i = 0; i < half; ++i) {
        takeLine(data, i, i + half);
    }
    for (int i = data.length - 1; i >= half; --i) {
        takeLine(data, i, i - half);
    }
    double mean = 0.0;
    double stdDev = 0.0;
    standardize(data.magnitude, static_cast<quint32>(data.length), data.magnitude, mean, stdDev);
}

} // namespace

SignalData loadMagnitudePhaseFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    PlainLines lines(file);
    TextRange line{};
    SignalData data;
    if (lines.next(line)) {
        data = emptyOfLength(trimmedText(line));
        while (data.length > 0 && lines.next(line)) {
            readPlainLine(line, data);
        }
    }
    if (!lines.isPlain()) {
        file.seek(0);
        return readAnyText(file);
    }
    return data;
}

SignalData loadIQFiles(const QString& iPath, const QString& qPath)
{
    QFile iFile(iPath);
    QFile qFile(qPath);
    if (!iFile.open(QIODevice::ReadOnly) || !qFile.open(QIODevice::ReadOnly)) {
        return {};
    }
    if (iFile.size() != qFile.size() || usedWords(iFile.size()) > maxSignalLength) {
        return {};
    }
    const auto n = static_cast<quint32>(usedWords(iFile.size()));
    SignalData data(n);
    readSamples(iFile, data.iSamples);
    readSamples(qFile, data.qSamples);
    forwardTransform(data.iSamples, data.qSamples, n);
    takeSpectrum(data);
    return data;
}
