// Samples as 16-bit words, written in large pieces.
#pragma once

#include "base/parallel.h"

#include <QByteArray>
#include <QFileDevice>

#include <algorithm>
#include <mutex>
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

// Writes the words of count values to the file from its present position on. fill(first, end,
// values) makes the values from first to end - 1, on several threads at once; first is even. Each
// piece is made on any core and goes to its own place, one after the other.
template <typename Fill> void writeWords(QFileDevice& file, int count, Fill fill)
{
    constexpr int blockSize = 2048; // values, which stay in the first cache
    constexpr int pieceSize = 64 * blockSize;
    const qint64 begin = file.pos();
    std::mutex writing;
    inParallel((static_cast<quint64>(count) + pieceSize - 1) / pieceSize, usefulThreads(),
               [&](Pieces& pieces) {
                   std::vector<double> values(blockSize);
                   QByteArray words(2 * pieceSize, Qt::Uninitialized);
                   for (quint64 piece = 0; pieces.take(piece);) {
                       const int from = static_cast<int>(piece) * pieceSize;
                       const int pieceEnd = from + std::min(pieceSize, count - from);
                       for (int first = from; first < pieceEnd; first += blockSize) {
                           const int end = first + std::min(blockSize, pieceEnd - first);
                           fill(first, end, values.data());
                           truncateToWords(values.data(), end - first,
                                           words.data() + qint64{2} * (first - from));
                       }
                       const std::lock_guard<std::mutex> lock(writing);
                       file.seek(begin + 2 * qint64{from});
                       file.write(words.constData(), 2 * qint64{pieceEnd - from});
                   }
               });
    file.seek(begin + 2 * qint64{count});
}
