// The stages walk memory so that every value is fetched few times, and compute each butterfly
// and each twiddle factor by the same operations as the textbook loop, so no bit changes.
//
// - A pass runs several stages at once on blocks of n points, seen as a matrix of 2^s rows: a
//   tile of some columns holds all that its butterflies need. Blocks of a pass become smaller
//   from pass to pass, and one that fits the cache goes through its passes before the next.
// - A block that stays in the cache whole is its own tile where its parts lie apart: nothing is
//   copied.
// - Each pair of rows needs its own stretch of the recurrence. Where it begins is found once a
//   pass. Passes on small blocks keep the twiddles, fewer than the block has points, for all
//   blocks; on large blocks the stretches go on from tile to tile.
// - Cores share the columns of a block that is the whole, and otherwise the blocks.
#include "transform/butterfly_stages.h"

#include "base/parallel.h"
#include "transform/tile.h"
#include "transform/twiddles.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

using Element = ComplexBuffer::Element;

constexpr quint64 lastBlock = 32;      // points of the blocks that are left to the last stages
constexpr quint64 keptBlock = 16384;   // points of the largest block whose twiddles are kept
constexpr quint64 inPlaceBlock = 4096; // points of the largest block that is its own tile
constexpr quint64 maxFusedStages = 5;
constexpr quint64 tileColumns = 32;
constexpr quint64 tileSize = (quint64{1} << maxFusedStages) * tileColumns;

} // namespace

// Made without a value: clearing it would cost as much as a short transform's stages.
struct ButterflyStages::Workspace
{
    alignas(64) std::array<double, tileSize> valuesRe;
    alignas(64) std::array<double, tileSize> valuesIm;
    alignas(64) std::array<double, tileSize> twiddlesRe;
    alignas(64) std::array<double, tileSize> twiddlesIm;

    Split values() { return {valuesRe.data(), valuesIm.data()}; }
    Split twiddles() { return {twiddlesRe.data(), twiddlesIm.data()}; }
};

namespace {

quint64 log2Of(quint64 powerOfTwo)
{
    quint64 bits = 0;
    while (powerOfTwo >> bits > 1) {
        ++bits;
    }
    return bits;
}

} // namespace

// Some stages on blocks of n points.
class ButterflyStages::Pass
{
public:
    Pass(quint64 blockSize, quint64 stages, const Element* rotations, quint64 partCount,
         bool isApart)
        : n(blockSize),
          columns(n >> stages),
          isInPlace(isApart && n <= inPlaceBlock),
          shape{quint64{1} << stages, isInPlace ? columns : tileColumns},
          stretches(findStretches(rotations, stages, columns, partCount))
    {
        if (n <= keptBlock) {
            keepTwiddles();
        }
    }

    quint64 blockSize() const { return n; }
    quint64 parts() const { return stretches.size(); }

    void runBlock(Samples block, bool conjugated, Workspace& work) const
    {
        if (isInPlace) {
            runWhole({block.re, block.im}, conjugated);
            return;
        }
        for (quint64 part = 0; part < parts(); ++part) {
            runPart(block, part, conjugated, work);
        }
    }

    // One of the equal parts of the columns of a block.
    void runPart(Samples block, quint64 part, bool conjugated, Workspace& work) const
    {
        std::vector<Stretch> places;
        if (keptRe.empty()) {
            places = stretches[part];
        }
        const quint64 width = columns / parts();
        for (quint64 first = part * width; first < (part + 1) * width; first += tileColumns) {
            loadTile(block.at(first), columns, shape, work.values());
            const quint64 next = first + tileColumns;
            if (n > keptBlock && next < (part + 1) * width) { // others are in the cache by now
                prefetchTile(block.at(next), columns, shape);
            }
            if (conjugated) {
                conjugate(work.values(), shape);
            }
            runTileStages(work.values(), shape, twiddles(first, places, work));
            storeTile(work.values(), shape, block.at(first), columns);
        }
    }

private:
    void runWhole(Split block, bool conjugated) const
    {
        if (conjugated) {
            conjugate(block, shape);
        }
        runTileStages(block, shape, kept(0));
    }

    void keepTwiddles()
    {
        const quint64 perTile = (shape.rows - 1) * shape.columns;
        keptRe.resize(columns / shape.columns * perTile);
        keptIm.resize(keptRe.size());
        std::vector<Stretch> places = stretches.front();
        for (quint64 at = 0; at < keptRe.size(); at += perTile) {
            fillTwiddles(places, {keptRe.data() + at, keptIm.data() + at}, shape.columns);
        }
    }

    Split kept(quint64 at) const
    {
        return {const_cast<double*>(keptRe.data()) + at, const_cast<double*>(keptIm.data()) + at};
    }

    Split twiddles(quint64 column, std::vector<Stretch>& places, Workspace& work) const
    {
        if (!keptRe.empty()) {
            return kept(column * (shape.rows - 1));
        }
        fillTwiddles(places, work.twiddles(), tileColumns);
        return work.twiddles();
    }

    quint64 n;
    quint64 columns;
    bool isInPlace;
    TileShape shape;
    std::vector<std::vector<Stretch>> stretches;
    std::vector<double> keptRe;
    std::vector<double> keptIm;
};

// As few passes as the tiles allow, of about as many stages each. The first is cut into parts
// for the threads, where there are several.
ButterflyStages::ButterflyStages(quint64 itsCount, const Element* rotations, int itsThreads,
                                 Parts parts)
    : count(itsCount), threads(itsThreads)
{
    quint64 n = count;
    while (n > lastBlock) {
        const quint64 end = n > keptBlock ? keptBlock : lastBlock;
        const quint64 left = log2Of(n / end);
        const quint64 rounds = std::max<quint64>(1, (left + maxFusedStages - 1) / maxFusedStages);
        const quint64 stages = (left + rounds - 1) / rounds;
        const bool shared = threads > 1 && n == count && n > keptBlock;
        passes.emplace_back(n, stages, rotations,
                            shared ? std::min<quint64>(16, (n >> stages) / tileColumns) : 1,
                            parts == Parts::Apart);
        rotations += stages;
        n >>= stages;
    }
}

ButterflyStages::~ButterflyStages() = default;

// The passes from `pass` to the end, a block of the one at a time through all later ones.
void ButterflyStages::runFrom(std::size_t pass, Samples x, quint64 points, bool conjugated,
                              Workspace& work) const
{
    if (pass == passes.size()) {
        return;
    }
    const quint64 blockSize = passes[pass].blockSize();
    for (quint64 first = 0; first < points; first += blockSize) {
        passes[pass].runBlock(x.at(first), conjugated, work);
        runFrom(pass + 1, x.at(first), blockSize, false, work);
    }
}

void ButterflyStages::run(Samples x, bool conjugated) const
{
    const Pass& first = passes.front();
    if (first.parts() == 1) {
        const std::unique_ptr<Workspace> work(new Workspace);
        runFrom(0, x, count, conjugated, *work);
        return;
    }
    inParallel(first.parts(), threads, [&](Pieces& parts) {
        const std::unique_ptr<Workspace> work(new Workspace);
        for (quint64 part = 0; parts.take(part);) {
            first.runPart(x, part, conjugated, *work);
        }
    });
    const quint64 blockSize = passes[1].blockSize();
    inParallel(count / blockSize, threads, [&](Pieces& blocks) {
        const std::unique_ptr<Workspace> work(new Workspace);
        for (quint64 block = 0; blocks.take(block);) {
            runFrom(1, x.at(block * blockSize), blockSize, false, *work);
        }
    });
}
