#include "files/signal_input.h"

#include "transform/statistics.h"
#include "transform/transform.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <QtEndian>

#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;
constexpr quint16 sampleMask = 0x3FFF; // 14 bits
constexpr double zeroWord = 8192.0;

// No device and no pipe: reading one may never end.
bool openRegular(QFile& file)
{
    return QFileInfo(file.fileName()).isFile() && file.open(QIODevice::ReadOnly);
}

void readLine(const QString& line, SignalData& data)
{
    const QVector<QStringRef> fields = line.splitRef(QLatin1Char(' '));
    if (fields.size() < 3) {
        return;
    }
    const int index = fields.at(0).toInt();
    if (index >= 0 && index < data.length) {
        data.phase[index] = fields.at(1).toDouble();
        data.magnitude[index] = fields.at(2).toDouble();
    }
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
    if (!openRegular(file)) {
        return {};
    }
    QTextStream in(&file);
    const int length = in.readLine().trimmed().toInt();
    if (length < 1 || static_cast<quint32>(length) > maxSignalLength) {
        return {};
    }
    SignalData data(static_cast<quint32>(length));
    while (!in.atEnd()) {
        readLine(in.readLine().trimmed(), data);
    }
    return data;
}

SignalData loadIQFiles(const QString& iPath, const QString& qPath)
{
    QFile iFile(iPath);
    QFile qFile(qPath);
    if (!openRegular(iFile) || !openRegular(qFile)) {
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
