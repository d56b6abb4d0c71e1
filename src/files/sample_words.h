// Samples as 16-bit words, written in large pieces.
#pragma once

#include <QByteArray>
#include <QIODevice>

#include <algorithm>
#include <vector>

// The low 16 bits of the value truncated toward zero. What fits no 64-bit integer, and
// not-a-number, gives 0: that is what the low bits of the processor's conversion hold.
inline quint16 truncatedWord(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    const bool fits = value > -limit && value < limit;
    return fits ? static_cast<quint16>(static_cast<qint64>(value) & 0xFFFF) : quint16{0};
}

// The words of some values, little-endian.
void truncateToWords(const double* values, int count, char* words);

// Writes the words of count values to the device in pieces. fill(first, end, values) makes the
// values from first to end - 1; a piece begins and ends at an even number.
template <typename Fill> void writeWords(QIODevice& device, int count, Fill fill)
{
    constexpr int blockSize = 2048; // values, which stay in the first cache
    constexpr int pieceSize = 32 * blockSize;
    std::vector<double> values(blockSize);
    QByteArray piece(2 * pieceSize, Qt::Uninitialized);
    for (int from = 0; from < count; from += pieceSize) {
        const int pieceEnd = from + std::min(pieceSize, count - from);
        for (int first = from; first < pieceEnd; first += blockSize) {
            const int end = first + std::min(blockSize, pieceEnd - first);
            fill(first, end, values.data());
            truncateToWords(values.data(), end - first, piece.data() + 2 * (first - from));
        }
        device.write(piece.constData(), 2 * qint64{pieceEnd - from});
    }
}
