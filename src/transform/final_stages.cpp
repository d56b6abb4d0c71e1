// Reversing the bits of an index sends neighbours far apart, so a plain loop misses the cache
// on every exchange. Here an index is read as (row, middle, column), five bits of row and of
// column: all values of one middle form a square tile that goes, transposed and reversed, to the
// tile of the reversed middle. Every cache line that is fetched is used whole.
//
// The last five stages pair values that differ in the column only. In the transposed tile those
// are rows, 32 blocks side by side, so they run as any stages on a tile do, each pair of rows
// with one twiddle for all; values pass through memory once less.
#include "transform/final_stages.h"

#include "base/parallel.h"
#include "transform/twiddles.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

constexpr quint32 sideBits = 5;
constexpr quint64 side = quint64{1} << sideBits;
constexpr TileShape square{side, side};

using Plane = std::array<double, side * side>;

struct Tile
{
    alignas(64) Plane re;
    alignas(64) Plane im;

    Split split() { return {re.data(), im.data()}; }
};

quint64 reversedBits(quint64 value, quint32 bits)
{
    quint64 reversed = 0;
    for (quint32 bit = 0; bit < bits; ++bit) {
        reversed |= (value >> bit & 1) << (bits - 1 - bit);
    }
    return reversed;
}

// The values of one transform.
class FinalTiles
{
public:
    FinalTiles(Samples samples, quint32 itsMiddleBits, const double* twiddlesRe,
               const double* twiddlesIm, const Finish& last)
        : x(samples),
          middleBits(itsMiddleBits),
          twiddles{const_cast<double*>(twiddlesRe), const_cast<double*>(twiddlesIm)},
          how(last)
    {
        for (quint64 i = 0; i < side; ++i) {
            reversed[i] = reversedBits(i, sideBits);
        }
    }

    quint64 middles() const { return quint64{1} << middleBits; }

    // A tile and its partner change places; the one of the lower number does the work.
    void run(quint64 middle, Tile& first, Tile& second) const
    {
        const quint64 partner = reversedBits(middle, middleBits);
        if (partner < middle) {
            return;
        }
        load(middle, first);
        prefetch(middle + 1);
        if (partner != middle) {
            load(partner, second);
            store(second, middle);
        }
        store(first, partner);
    }

private:
    Samples row(quint64 number, quint64 middle) const
    {
        return x.at(((number << middleBits) + middle) << sideBits);
    }

    void prefetch(quint64 middle) const
    {
        const quint64 distance = quint64{1} << (middleBits + sideBits);
        const quint64 partner = reversedBits(middle, middleBits);
        if (middle < partner && partner < middles()) {
            prefetchTile(row(0, middle), distance, square);
            prefetchTile(row(0, partner), distance, square);
        }
    }

    void load(quint64 middle, Tile& tile) const
    {
        if (x.stride == 1) {
            const Samples first = row(0, middle);
            const quint64 distance = quint64{1} << (middleBits + sideBits);
            transposeInto(tile.re.data(), first.re, distance, reversed.data(), side);
            transposeInto(tile.im.data(), first.im, distance, reversed.data(), side);
        } else {
            loadPairs(middle, tile);
        }
        runTileStages(tile.split(), square, twiddles);
        finish(tile.split(), side * side, how);
    }

    void loadPairs(quint64 middle, Tile& tile) const
    {
        for (quint64 r = 0; r < side; ++r) {
            const Samples from = row(r, middle);
            double* re = tile.re.data() + reversed[r];
            double* im = tile.im.data() + reversed[r];
            for (quint64 column = 0; column < side; ++column) {
                re[column * side] = from.re[column * from.stride];
                im[column * side] = from.im[column * from.stride];
            }
        }
    }

    void store(Tile& tile, quint64 middle) const
    {
        for (quint64 r = 0; r < side; ++r) {
            storeTile(tile.split().at(r * side), {1, side}, row(reversed[r], middle), 0);
        }
    }

    Samples x;
    quint32 middleBits;
    Split twiddles;
    Finish how;
    std::array<quint64, side> reversed{};
};

} // namespace

FinalStages::FinalStages(quint64 count, const ComplexBuffer::Element* rotations)
{
    while (count >> (2 * sideBits + middleBits) > 1) {
        ++middleBits;
    }
    const auto stretches = findStretches(rotations, sideBits, 1, 1);
    for (const Stretch& pair : stretches.front()) {
        twiddlesRe.insert(twiddlesRe.end(), side, pair.w.real());
        twiddlesIm.insert(twiddlesIm.end(), side, pair.w.imag());
    }
}

void FinalStages::run(Samples x, const Finish& how, int threads) const
{
    const FinalTiles tiles(x, middleBits, twiddlesRe.data(), twiddlesIm.data(), how);
    constexpr quint64 run = 16; // neighbours, whose memory shares pages
    inParallel(std::max<quint64>(1, tiles.middles() / run), threads, [&](Pieces& runs) {
        const std::unique_ptr<std::array<Tile, 2>> work(new std::array<Tile, 2>);
        for (quint64 piece = 0; runs.take(piece);) {
            const quint64 end = std::min((piece + 1) * run, tiles.middles());
            for (quint64 middle = piece * run; middle < end; ++middle) {
                tiles.run(middle, (*work)[0], (*work)[1]);
            }
        }
    });
}
