#include "transform/tile.h"

#include "transform/vector_clones.h"

#include <algorithm>

namespace {

// Two stages at once on four runs of rows, which halves the trips between registers and cache:
// first a with c and b with d, then a with b and c with d.
VECTOR_CLONES
void doubleButterflies(Split a, quint64 distance, Split wac, Split wab, quint64 count)
{
    double* __restrict aRe = a.re;
    double* __restrict aIm = a.im;
    double* __restrict bRe = a.re + distance;
    double* __restrict bIm = a.im + distance;
    double* __restrict cRe = a.re + 2 * distance;
    double* __restrict cIm = a.im + 2 * distance;
    double* __restrict dRe = a.re + 3 * distance;
    double* __restrict dIm = a.im + 3 * distance;
    const double* __restrict uRe = wac.re;
    const double* __restrict uIm = wac.im;
    const double* __restrict vRe = wac.re + distance;
    const double* __restrict vIm = wac.im + distance;
    const double* __restrict wRe = wab.re;
    const double* __restrict wIm = wab.im;
    for (quint64 i = 0; i < count; ++i) {
        const double acRe = aRe[i] - cRe[i];
        const double acIm = aIm[i] - cIm[i];
        const double bdRe = bRe[i] - dRe[i];
        const double bdIm = bIm[i] - dIm[i];
        const double a1Re = aRe[i] + cRe[i];
        const double a1Im = aIm[i] + cIm[i];
        const double b1Re = bRe[i] + dRe[i];
        const double b1Im = bIm[i] + dIm[i];
        const double c1Re = acRe * uRe[i] - acIm * uIm[i];
        const double c1Im = acRe * uIm[i] + acIm * uRe[i];
        const double d1Re = bdRe * vRe[i] - bdIm * vIm[i];
        const double d1Im = bdRe * vIm[i] + bdIm * vRe[i];
        const double abRe = a1Re - b1Re;
        const double abIm = a1Im - b1Im;
        const double cdRe = c1Re - d1Re;
        const double cdIm = c1Im - d1Im;
        aRe[i] = a1Re + b1Re;
        aIm[i] = a1Im + b1Im;
        bRe[i] = abRe * wRe[i] - abIm * wIm[i];
        bIm[i] = abRe * wIm[i] + abIm * wRe[i];
        cRe[i] = c1Re + d1Re;
        cIm[i] = c1Im + d1Im;
        dRe[i] = cdRe * wRe[i] - cdIm * wIm[i];
        dIm[i] = cdRe * wIm[i] + cdIm * wRe[i];
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

VECTOR_CLONES
void loadPairs(const double* from, quint64 rowDistance, TileShape shape, Split tile)
{
    for (quint64 row = 0; row < shape.rows; ++row) {
        const double* __restrict pairs = from + 2 * row * rowDistance;
        double* __restrict re = tile.re + row * shape.columns;
        double* __restrict im = tile.im + row * shape.columns;
        for (quint64 i = 0; i < shape.columns; ++i) {
            re[i] = pairs[2 * i];
            im[i] = pairs[2 * i + 1];
        }
    }
}

VECTOR_CLONES
void storePairs(Split tile, TileShape shape, double* to, quint64 rowDistance)
{
    for (quint64 row = 0; row < shape.rows; ++row) {
        double* __restrict pairs = to + 2 * row * rowDistance;
        const double* __restrict re = tile.re + row * shape.columns;
        const double* __restrict im = tile.im + row * shape.columns;
        for (quint64 i = 0; i < shape.columns; ++i) {
            pairs[2 * i] = re[i];
            pairs[2 * i + 1] = im[i];
        }
    }
}

} // namespace

void loadTile(Samples from, quint64 rowDistance, TileShape shape, Split tile)
{
    if (from.stride == 2) {
        loadPairs(from.re, rowDistance, shape, tile);
        return;
    }
    for (quint64 row = 0; row < shape.rows; ++row) {
        std::copy_n(from.re + row * rowDistance, shape.columns, tile.re + row * shape.columns);
        std::copy_n(from.im + row * rowDistance, shape.columns, tile.im + row * shape.columns);
    }
}

void storeTile(Split tile, TileShape shape, Samples to, quint64 rowDistance)
{
    if (to.stride == 2) {
        storePairs(tile, shape, to.re, rowDistance);
        return;
    }
    for (quint64 row = 0; row < shape.rows; ++row) {
        std::copy_n(tile.re + row * shape.columns, shape.columns, to.re + row * rowDistance);
        std::copy_n(tile.im + row * shape.columns, shape.columns, to.im + row * rowDistance);
    }
}

VECTOR_CLONES
void conjugate(Split tile, TileShape shape)
{
    for (quint64 i = 0; i < shape.rows * shape.columns; ++i) {
        tile.im[i] = -tile.im[i];
    }
}

// The rows of a half lie side by side, and so do their twiddles: a stage of a whole group of
// rows is one long run.
void runTileStages(Split tile, TileShape shape, Split w)
{
    const quint64 count = shape.rows * shape.columns;
    quint64 distance = count / 2;
    for (; distance > shape.columns; distance /= 4) {
        const Split next = w.at(distance);
        for (quint64 first = 0; first < count; first += 2 * distance) {
            doubleButterflies(tile.at(first), distance / 2, w, next, distance / 2);
        }
        w = next.at(distance / 2);
    }
    if (distance == shape.columns) {
        for (quint64 first = 0; first < count; first += 2 * distance) {
            butterflies(tile.at(first), tile.at(first + distance), w, distance);
        }
    }
}

VECTOR_CLONES
void finish(Split tile, quint64 count, const Finish& how)
{
    double* __restrict outRe = tile.re;
    double* __restrict outIm = tile.im;
    const double factor = how.factor;
    // The product with the complex number (factor, 0), signs of zeros and all.
    for (quint64 i = 0; i < count; ++i) {
        const double re = outRe[i];
        const double im = outIm[i];
        outRe[i] = re * factor - im * 0.0;
        outIm[i] = im * factor + re * 0.0;
    }
    if (!how.inverse) {
        return;
    }
    // The conjugate divided by the complex number (divisor, 0) in Smith's form. Multiplying by
    // the reciprocal of a power of two gives the same bits.
    const double reciprocal = 1.0 / how.divisor;
    for (quint64 i = 0; i < count; ++i) {
        const double x = outRe[i];
        const double y = -outIm[i];
        outRe[i] = (x + y * 0.0) * reciprocal;
        outIm[i] = (y - x * 0.0) * reciprocal;
    }
}
