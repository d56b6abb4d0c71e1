#include "files/signal_input.h"

#include "base/regular_file.h"
#include "transform/pi.h"
#include "transform/statistics.h"
#include "transform/transform.h"

#include <QFile>
#include <QtEndian>

#include <cmath>

namespace {

constexpr quint16 sampleMask = 0x3FFF; // 14 bits
constexpr double zeroWord = 8192.0;

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

// Deliberate: the magnitude is that of the real part alone, the phase is the plain arc tangent of
// the quotient, and it is kept divided by pi. Files of this kind are made for it.
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
