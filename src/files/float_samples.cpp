#include "files/float_samples.h"

#include <QCryptographicHash>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>

int sampleCount(const SignalData& signal)
{
    return std::max(0, std::min({signal.size(), signal.iSamples.size(), signal.qSamples.size()}));
}

void putFloatSamples(const SignalData& signal, int first, int end, char* bytes)
{
    constexpr int wordSize = floatSampleSize / 2;
    for (int k = first; k < end; ++k) {
        qToLittleEndian(static_cast<float>(signal.iSamples.at(k)), bytes);
        qToLittleEndian(static_cast<float>(signal.qSamples.at(k)), bytes + wordSize);
        bytes += floatSampleSize;
    }
}

void writeFloatSamples(QIODevice& file, const SignalData& signal, QCryptographicHash* hash)
{
    constexpr int pieceSize = 1 << 14; // samples
    QByteArray piece(pieceSize * floatSampleSize, Qt::Uninitialized);
    const int count = sampleCount(signal);
    for (int first = 0; first < count; first += pieceSize) {
        const int end = first + std::min(pieceSize, count - first);
        const int size = (end - first) * floatSampleSize;
        putFloatSamples(signal, first, end, piece.data());
        file.write(piece.constData(), size);
        if (hash != nullptr) {
            hash->addData(piece.constData(), size);
        }
    }
}
