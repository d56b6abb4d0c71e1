// The stages walk memory so that every value is fetched few times, and compute each butterfly
// and each twiddle factor by the same operations as the textbook loop, so no bit changes.
//
// - A stage of distance k pairs element l with l + k; its twiddles w(l) come from a recurrence
//   that starts at 1 and must be walked one by one. Butterflies of a stage are independent.
// - Long blocks: several stages run at once on a tile of some columns of the block seen as a
//   matrix of 2^s rows. Each pair of rows then needs its own stretch of the recurrence, so the
//   value at the start of every stretch is found once, and the stretches go on from there.
// - Short blocks, which fit the cache, run all their stages at once; their twiddles together
//   are one value fewer than the block has points.
// - Tiles are held as separate real and imaginary rows, which the compiler vectorises.
#include "transform/butterfly_stages.h"

#include "transform/vector_clones.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace {

using Element = ComplexBuffer::Element;

constexpr double pi = 3.141592653589793;
constexpr quint64 shortBlock = 2048;
constexpr quint64 maxFusedStages = 5;
constexpr quint64 maxRows = quint64{1} << maxFusedStages;
constexpr quint64 tileColumns = 32;

// Separate real and imaginary parts of a run of complex values.
struct Split
{
    double* re;
    double* im;

    Split at(quint64 offset) const { return {re + offset, im + offset}; }
};

struct Workspace
{
    alignas(64) std::array<double, shortBlock> valuesRe;
    alignas(64) std::array<double, shortBlock> valuesIm;
    alignas(64) std::array<double, shortBlock> twiddlesRe;
    alignas(64) std::array<double, shortBlock> twiddlesIm;

    static_assert(maxRows * tileColumns <= shortBlock, "a tile must fit the workspace");

    Split values() { return {valuesRe.data(), valuesIm.data()}; }
    Split twiddles() { return {twiddlesRe.data(), twiddlesIm.data()}; }
};

// Writes count values from w on and returns the one after them.
Element fillTwiddles(Element w, Element rotation, Split out, quint64 count)
{
    for (quint64 l = 0; l < count; ++l) {
        out.re[l] = w.real();
        out.im[l] = w.imag();
        w = plainProduct(w, rotation);
    }
    return w;
}

Element skipTwiddles(Element w, Element rotation, quint64 count)
{
    for (quint64 l = 0; l < count; ++l) {
        w = plainProduct(w, rotation);
    }
    return w;
}

// The rotation of each stage: that of the angle 2 pi / count, doubled from stage to stage.
std::vector<Element> stageRotations(quint64 count)
{
    const double theta = pi / static_cast<double>(count);
    double c = std::cos(theta);
    double s = std::sin(theta);
    std::vector<Element> rotations;
    for (quint64 n = count; n > 1; n /= 2) {
        const double doubledSine = 2 * c * s;
        c = c * c - s * s;
        s = doubledSine;
        rotations.emplace_back(c, s);
    }
    return rotations;
}

VECTOR_CLONES
void splitRun(const Element* from, Split to, quint64 count)
{
    for (quint64 i = 0; i < count; ++i) {
        to.re[i] = from[i].real();
        to.im[i] = from[i].imag();
    }
}

VECTOR_CLONES
void joinRun(Split from, Element* to, quint64 count)
{
    for (quint64 i = 0; i < count; ++i) {
        to[i] = {from.re[i], from.im[i]};
    }
}

VECTOR_CLONES
void butterflies(Split a, Split b, Split w, quint64 count)
{
    double* __restrict aRe = a.re;
    double* __restrict aIm = a.im;
    double* __restrict bRe = b.re;
    double* __restrict bIm = b.im;
    const double* __restrict wRe = w.re;
    const double* __restrict wIm = w.im;
    for (quint64 i = 0; i < count; ++i) {
        const double tRe = aRe[i] - bRe[i];
        const double tIm = aIm[i] - bIm[i];
        aRe[i] = aRe[i] + bRe[i];
        aIm[i] = aIm[i] + bIm[i];
        bRe[i] = tRe * wRe[i] - tIm * wIm[i];
        bIm[i] = tRe * wIm[i] + tIm * wRe[i];
    }
}

// Several stages at once on long blocks of n points, seen as 2^stages rows.
class FusedStages
{
public:
    FusedStages(quint64 n, quint64 stages, const Element* rotations)
        : rows(quint64{1} << stages), columns(n / rows)
    {
        for (quint64 pairs = rows / 2; pairs > 0; pairs /= 2) {
            Element w(1.0, 0.0);
            for (quint64 pair = 0; pair < pairs; ++pair) {
                stretches.push_back({w, *rotations});
                if (pair + 1 < pairs) {
                    w = skipTwiddles(w, *rotations, columns);
                }
            }
            ++rotations;
        }
    }

    void run(Element* block, Workspace& work) const
    {
        std::vector<Stretch> running = stretches;
        for (quint64 first = 0; first < columns; first += tileColumns) {
            for (quint64 i = 0; i < running.size(); ++i) {
                running[i].w = fillTwiddles(running[i].w, running[i].rotation,
                                            work.twiddles().at(i * tileColumns), tileColumns);
            }
            runTile(block + first, work);
        }
    }

private:
    struct Stretch
    {
        Element w;
        Element rotation;
    };

    void runTile(Element* tile, Workspace& work) const
    {
        const Split values = work.values();
        for (quint64 row = 0; row < rows; ++row) {
            splitRun(tile + row * columns, values.at(row * tileColumns), tileColumns);
        }
        Split w = work.twiddles();
        for (quint64 pairs = rows / 2; pairs > 0; pairs /= 2) {
            // The rows of a half lie side by side, and so do their stretches of twiddles.
            for (quint64 row = 0; row < rows; row += 2 * pairs) {
                butterflies(values.at(row * tileColumns), values.at((row + pairs) * tileColumns), w,
                            pairs * tileColumns);
            }
            w = w.at(pairs * tileColumns);
        }
        for (quint64 row = 0; row < rows; ++row) {
            joinRun(values.at(row * tileColumns), tile + row * columns, tileColumns);
        }
    }

    quint64 rows;
    quint64 columns;
    std::vector<Stretch> stretches;
};

// All stages of a block that fits the workspace, whose twiddles are filled in.
void runShortBlock(Element* block, quint64 n, Workspace& work)
{
    const Split values = work.values();
    splitRun(block, values, n);
    Split w = work.twiddles();
    for (quint64 k = n / 2; k > 0; k /= 2) {
        for (quint64 first = 0; first < n; first += 2 * k) {
            butterflies(values.at(first), values.at(first + k), w, k);
        }
        w = w.at(k);
    }
    joinRun(values, block, n);
}

void fillShortBlockTwiddles(quint64 n, const Element* rotations, Workspace& work)
{
    Split w = work.twiddles();
    for (quint64 k = n / 2; k > 0; k /= 2) {
        fillTwiddles({1.0, 0.0}, *rotations, w, k);
        ++rotations;
        w = w.at(k);
    }
}

} // namespace

void runButterflyStages(Element* x, quint64 count)
{
    const std::vector<Element> rotations = stageRotations(count);
    const auto work = std::make_unique<Workspace>();
    const Element* rotation = rotations.data();

    quint64 n = count;
    while (n > shortBlock) {
        quint64 stages = 1;
        while (stages < maxFusedStages && (n >> stages) > shortBlock) {
            ++stages;
        }
        const FusedStages fused(n, stages, rotation);
        for (quint64 first = 0; first < count; first += n) {
            fused.run(x + first, *work);
        }
        rotation += stages;
        n >>= stages;
    }
    fillShortBlockTwiddles(n, rotation, *work);
    for (quint64 first = 0; first < count; first += n) {
        runShortBlock(x + first, n, *work);
    }
}
