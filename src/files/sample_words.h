// Samples as 16-bit words, buffered into a file.
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

// The low 16 bits of the value truncated toward zero. What fits no 64-bit integer, and
// not-a-number, gives 0: that is what the low bits of the processor's conversion hold.
inline quint16 truncatedWord(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    const bool fits = value > -limit && value < limit;
    return fits ? static_cast<quint16>(static_cast<qint64>(value) & 0xFFFF) : quint16{0};
}

// Collects little-endian words and writes them to the device in large pieces.
class WordWriter
{
public:
    explicit WordWriter(QIODevice& target) : device(target) { buffer.reserve(pieceSize); }

    ~WordWriter() { device.write(buffer); }
    WordWriter(const WordWriter&) = delete;
    WordWriter& operator=(const WordWriter&) = delete;

    void write(quint16 word)
    {
        if (buffer.size() == pieceSize) {
            device.write(buffer);
            buffer.resize(0); // keeps its memory
        }
        const quint16 littleEndian = qToLittleEndian(word);
        buffer.append(reinterpret_cast<const char*>(&littleEndian), sizeof(littleEndian));
    }

private:
    static constexpr int pieceSize = 1 << 16;

    QIODevice& device;
    QByteArray buffer;
};
