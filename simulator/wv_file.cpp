#include "simulator/wv_file.h"

#include <QFile>
#include <QtEndian>

#include <stdexcept>

namespace {

constexpr int longestHeader = 65536;
constexpr qint64 sampleSize = 4; // I and Q
constexpr char waveformTag[] = "{WAVEFORM-";

// What stands between a tag's start and an end mark; throws when there is none.
QByteArray textAfter(const QByteArray& header, const char* tag, char endMark)
{
    const int found = header.indexOf(tag);
    const int start = found + static_cast<int>(qstrlen(tag));
    const int end = header.indexOf(endMark, start);
    if (found < 0 || end < 0) {
        throw std::runtime_error(std::string("has no tag ") + tag);
    }
    return header.mid(start, end - start);
}

double positiveNumber(const QByteArray& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber || !(value > 0.0) || !(value < 1e15)) {
        throw std::runtime_error("holds a number that is none: " + text.left(30).toStdString());
    }
    return value;
}

PlayedSignal signalOfWords(const QByteArray& words, double clock)
{
    const int count = static_cast<int>(words.size() / sampleSize);
    PlayedSignal signal{QVector<double>(count), QVector<double>(count), clock};
    for (int k = 0; k < count; ++k) {
        const char* at = words.constData() + k * sampleSize;
        signal.iSamples[k] = qFromLittleEndian<qint16>(at);
        signal.qSamples[k] = qFromLittleEndian<qint16>(at + sampleSize / 2);
    }
    return signal;
}

// Throws what is wrong with the file.
PlayedSignal readWaveform(QFile& file)
{
    const QByteArray header = file.peek(longestHeader);
    const double clock = positiveNumber(textAfter(header, "{CLOCK:", '}'));
    const double stated = positiveNumber(textAfter(header, waveformTag, ':'));
    const int mark = header.indexOf('#', header.indexOf(waveformTag));
    if (mark < 0) {
        throw std::runtime_error("has no samples");
    }
    const auto size = static_cast<qint64>(stated) - 1; // the "#" is counted
    if (size % sampleSize != 0 || !isPlayableLength(size / sampleSize)) {
        throw std::runtime_error("has a number of samples that is no power of two up to 2^24");
    }
    file.seek(mark + 1);
    const QByteArray words = file.read(size);
    if (words.size() != size) {
        throw std::runtime_error("ends before its last sample");
    }
    return signalOfWords(words, clock);
}

} // namespace

PlayedSignal loadWaveform(const QString& path, QString& errorText)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        errorText = path + ": " + file.errorString();
        return {};
    }
    try {
        return readWaveform(file);
    } catch (const std::runtime_error& error) {
        errorText = path + ' ' + QString::fromLatin1(error.what());
        return {};
    }
}
