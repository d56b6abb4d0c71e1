// Reversing the bits of an index sends neighbours far apart, so the plain loop misses the cache
// on every exchange. Here an index is read as (row, middle, column) with a few bits of row and
// column: all elements of one middle form a square tile that goes, transposed and reversed, to
// the tile of the reversed middle. Both tiles pass through buffers that fit the cache, and every
// cache line that is fetched is used whole.
#include "transform/bit_reversal.h"

#include <array>
#include <cmath>
#include <memory>
#include <utility>

namespace {

using Element = ComplexBuffer::Element;

constexpr quint32 tileBits = 5;
constexpr quint32 tileSide = 1U << tileBits;

using Tile = std::array<Element, std::size_t{tileSide} * tileSide>;

quint32 reversedWord(quint32 value)
{
    value = ((value >> 1) & 0x55555555U) | ((value & 0x55555555U) << 1);
    value = ((value >> 2) & 0x33333333U) | ((value & 0x33333333U) << 2);
    value = ((value >> 4) & 0x0F0F0F0FU) | ((value & 0x0F0F0F0FU) << 4);
    value = ((value >> 8) & 0x00FF00FFU) | ((value & 0x00FF00FFU) << 8);
    return (value >> 16) | (value << 16);
}

// The low bits reversed. The shift count is taken modulo 32, so 0 bits leave a 0 as it is.
quint32 reversedBits(quint32 value, quint32 bits)
{
    return reversedWord(value) >> ((32 - bits) % 32);
}

// The product with the complex number (factor, 0), signs of zeros and all.
Element scaled(Element value, double factor)
{
    return {value.real() * factor - value.imag() * 0.0, value.imag() * factor + value.real() * 0.0};
}

void reorderPlainly(Element* x, quint64 count, quint32 bits, double factor)
{
    for (quint32 a = 0; a < count; ++a) {
        const quint32 b = reversedBits(a, bits);
        if (b > a) {
            std::swap(x[a], x[b]);
        }
    }
    for (quint64 i = 0; i < count; ++i) {
        x[i] = scaled(x[i], factor);
    }
}

// The tiles of an array of 2^bits elements.
class TiledReversal
{
public:
    TiledReversal(Element* data, quint32 bits, double scaleFactor)
        : x(data), factor(scaleFactor), middleBits(bits - 2 * tileBits)
    {
        for (quint32 i = 0; i < tileSide; ++i) {
            reversed[i] = reversedBits(i, tileBits);
        }
    }

    void run()
    {
        for (quint32 middle = 0; middle < 1U << middleBits; ++middle) {
            const quint32 partner = reversedBits(middle, middleBits);
            if (partner < middle) {
                continue;
            }
            load(middle, first);
            if (partner != middle) {
                load(partner, second);
                store(second, middle);
            }
            store(first, partner);
        }
    }

private:
    Element* rowOf(quint32 row, quint32 middle)
    {
        return x + (((quint64{row} << middleBits) + middle) << tileBits);
    }

    void load(quint32 middle, Tile& tile)
    {
        for (quint32 row = 0; row < tileSide; ++row) {
            const Element* from = rowOf(row, middle);
            for (quint32 column = 0; column < tileSide; ++column) {
                tile[reversed[column] * tileSide + reversed[row]] = from[column];
            }
        }
    }

    void store(const Tile& tile, quint32 middle)
    {
        for (quint32 row = 0; row < tileSide; ++row) {
            Element* to = rowOf(row, middle);
            for (quint32 column = 0; column < tileSide; ++column) {
                to[column] = scaled(tile[row * tileSide + column], factor);
            }
        }
    }

    Element* x;
    double factor;
    quint32 middleBits;
    std::array<quint32, tileSide> reversed{};
    Tile first;
    Tile second;
};

} // namespace

void reorderAndScale(Element* x, quint64 count, double factor)
{
    const auto bits = static_cast<quint32>(std::log2(static_cast<double>(count)));
    if (count != quint64{1} << bits || bits < 2 * tileBits) {
        reorderPlainly(x, count, bits, factor);
        return;
    }
    std::make_unique<TiledReversal>(x, bits, factor)->run();
}
