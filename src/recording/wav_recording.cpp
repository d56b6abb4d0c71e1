#include "recording/wav_recording.h"

#include "base/regular_file.h"

#include <QtEndian>

#include <algorithm>

namespace {

const QLatin1String pairEnding(".i.wav"); // or that of Q, as long

struct WavHead
{
    int format = 0;
    int channels = 0;
    quint32 sampleRate = 0;
    int bits = 0;
    qint64 dataBegin = 0;
    qint64 dataBytes = 0; // that are there
    qint64 claimedBytes = 0;
};

quint16 wordAt(const QByteArray& bytes, int at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

quint32 longAt(const QByteArray& bytes, int at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

void readFormat(QFile& file, quint32 size, WavHead& head)
{
    constexpr int extensible = 0xFFFE; // the format stands in the first word of its identifier
    const QByteArray format = file.read(std::min<quint32>(size, 40));
    if (format.size() < 16) {
        refuseFile(file.fileName(), QStringLiteral("its \"fmt \" is cut short"));
    }
    head.format = wordAt(format, 0);
    head.channels = wordAt(format, 2);
    head.sampleRate = longAt(format, 4);
    head.bits = wordAt(format, 14);
    if (head.format == extensible && format.size() >= 26) {
        head.format = wordAt(format, 24);
    }
}

WavHead readHead(QFile& file)
{
    const QByteArray riff = file.read(12);
    if (riff.size() < 12 || !riff.startsWith("RIFF") || riff.mid(8) != "WAVE") {
        refuseFile(file.fileName(), QStringLiteral("it is no waveform audio file"));
    }
    WavHead head;
    for (QByteArray chunk = file.read(8); chunk.size() == 8; chunk = file.read(8)) {
        const quint32 size = longAt(chunk, 4);
        const qint64 begin = file.pos();
        if (chunk.startsWith("data")) {
            head.dataBegin = begin;
            head.claimedBytes = size;
            head.dataBytes = std::min<qint64>(size, file.size() - begin);
            return head;
        }
        if (chunk.startsWith("fmt ")) {
            readFormat(file, size, head);
        }
        if (!file.seek(begin + size + size % 2)) {
            break;
        }
    }
    refuseFile(file.fileName(), QStringLiteral("it has no \"data\""));
}

void requirePcm(const WavHead& head, int channels, const QString& path)
{
    constexpr int pcm = 1;
    if (head.format != pcm || head.bits != 16 || head.channels != channels) {
        refuseFile(path,
                   QStringLiteral("%1 channels of %2 bits in format %3 aren't taken; save two "
                                  "channels of 16-bit integers")
                       .arg(head.channels)
                       .arg(head.bits)
                       .arg(head.format));
    }
}

WavHead headOf(const QString& path)
{
    QFile file(path);
    if (!openRegular(file)) {
        refuseFile(path, file.exists() ? file.errorString() : QString("there is no such file"));
    }
    return readHead(file);
}

Recording recordingOf(const QString& path, const WavHead& head)
{
    Recording recording;
    recording.name = path;
    recording.paths = QStringList{path};
    recording.type = sampleTypeOf("ci16");
    recording.offset = head.dataBegin;
    if (head.sampleRate > 0) {
        recording.sampleRate = head.sampleRate;
    }
    return recording;
}

// The head that "Save Waveform" writes claims four times the data that there is, so what the file
// holds counts.
Recording openPair(const QString& path, const WavHead& head)
{
    const QString base = path.left(path.size() - pairEnding.size());
    const QString iPath = base + ".i.wav";
    const QString qPath = base + ".q.wav";
    const WavHead iHead = headOf(iPath);
    const WavHead qHead = headOf(qPath);
    requirePcm(iHead, 1, iPath);
    requirePcm(qHead, 1, qPath);
    if (iHead.dataBytes != qHead.dataBytes || iHead.dataBegin != qHead.dataBegin ||
        iHead.sampleRate != qHead.sampleRate) {
        refuseFile(path, "I and Q differ in length or rate: " + iPath + ", " + qPath);
    }
    Recording recording = recordingOf(path, head);
    recording.paths = QStringList{iPath, qPath};
    recording.samples = iHead.dataBytes / 2;
    return recording;
}

} // namespace

Recording openWav(const QString& path)
{
    constexpr quint32 unknownSize = 0xFFFFFFFF; // of a file that was written as it came
    const WavHead head = headOf(path);
    const bool isHalf = path.endsWith(".i.wav") || path.endsWith(".q.wav");
    if (isHalf && head.channels == 1) {
        return openPair(path, head);
    }
    requirePcm(head, 2, path);
    if (head.dataBytes < head.claimedBytes && head.claimedBytes != unknownSize) {
        refuseFile(path, QStringLiteral("it is cut short: it claims %1 bytes of samples and has %2")
                             .arg(head.claimedBytes)
                             .arg(head.dataBytes));
    }
    Recording recording = recordingOf(path, head);
    recording.samples = head.dataBytes / recording.type->bytes;
    return recording;
}
