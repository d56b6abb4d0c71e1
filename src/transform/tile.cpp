#include "transform/tile.h"

#include "transform/vector_clones.h"

namespace {

// Two stages at once on four runs of rows, which halves the trips between registers and cache:
// first a with c and b with d, then a with b and c with d.
VECTOR_CLONES
void doubleButterflies(Split a, quint64 distance, Split wac, Split wab, quint64 count)
{
    double* aRe = a.re;
    double* aIm = a.im;
    double* bRe = a.re + distance;
    double* bIm = a.im + distance;
    double* cRe = a.re + 2 * distance;
    double* cIm = a.im + 2 * distance;
    double* dRe = a.re + 3 * distance;
    double* dIm = a.im + 3 * distance;
    const double* uRe = wac.re;
    const double* uIm = wac.im;
    const double* vRe = wac.re + distance;
    const double* vIm = wac.im + distance;
    const double* wRe = wab.re;
    const double* wIm = wab.im;
    IN_ANY_ORDER
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
    double* aRe = a.re;
    double* aIm = a.im;
    double* bRe = b.re;
    double* bIm = b.im;
    const double* wRe = w.re;
    const double* wIm = w.im;
    IN_ANY_ORDER
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
        const double* pairs = from + 2 * row * rowDistance;
        double* re = tile.re + row * shape.columns;
        double* im = tile.im + row * shape.columns;
        IN_ANY_ORDER
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
        double* pairs = to + 2 * row * rowDistance;
        const double* re = tile.re + row * shape.columns;
        const double* im = tile.im + row * shape.columns;
        IN_ANY_ORDER
        for (quint64 i = 0; i < shape.columns; ++i) {
            pairs[2 * i] = re[i];
            pairs[2 * i + 1] = im[i];
        }
    }
}

// Rows are short and of a known length: no call of the library's own copying is worth its while.
VECTOR_CLONES
void copyRows(const double* from, quint64 fromDistance, TileShape shape, double* to,
              quint64 toDistance)
{
    constexpr quint64 atOnce = 16;
    for (quint64 row = 0; row < shape.rows; ++row) {
        for (quint64 i = 0; i < shape.columns; i += atOnce) {
            EightDoubles one;
            EightDoubles other;
            load(from + i, one);
            load(from + i + atOnce / 2, other);
            store(one, to + i);
            store(other, to + i + atOnce / 2);
        }
        from += fromDistance;
        to += toDistance;
    }
}

using FourDoubles = double __attribute__((vector_size(4 * sizeof(double))));

// Four values of four rows, by two rounds of exchanges, to four columns.
void transposeFour(const double* const rows[4], double* to, quint64 side)
{
    FourDoubles a;
    FourDoubles b;
    FourDoubles c;
    FourDoubles d;
    __builtin_memcpy(&a, rows[0], sizeof(a));
    __builtin_memcpy(&b, rows[1], sizeof(b));
    __builtin_memcpy(&c, rows[2], sizeof(c));
    __builtin_memcpy(&d, rows[3], sizeof(d));
    const FourDoubles evenOfAB = __builtin_shufflevector(a, b, 0, 4, 2, 6);
    const FourDoubles oddOfAB = __builtin_shufflevector(a, b, 1, 5, 3, 7);
    const FourDoubles evenOfCD = __builtin_shufflevector(c, d, 0, 4, 2, 6);
    const FourDoubles oddOfCD = __builtin_shufflevector(c, d, 1, 5, 3, 7);
    a = __builtin_shufflevector(evenOfAB, evenOfCD, 0, 1, 4, 5);
    b = __builtin_shufflevector(oddOfAB, oddOfCD, 0, 1, 4, 5);
    c = __builtin_shufflevector(evenOfAB, evenOfCD, 2, 3, 6, 7);
    d = __builtin_shufflevector(oddOfAB, oddOfCD, 2, 3, 6, 7);
    __builtin_memcpy(to, &a, sizeof(a));
    __builtin_memcpy(to + side, &b, sizeof(b));
    __builtin_memcpy(to + 2 * side, &c, sizeof(c));
    __builtin_memcpy(to + 3 * side, &d, sizeof(d));
}

} // namespace

VECTOR_CLONES
void transposeInto(double* tile, const double* from, quint64 rowDistance, const quint64* order,
                   quint64 side)
{
    constexpr quint64 atOnce = 4;
    for (quint64 row = 0; row < side; row += atOnce) {
        for (quint64 column = 0; column < side; column += atOnce) {
            const double* const rows[atOnce] = {from + order[row] * rowDistance + column,
                                                from + order[row + 1] * rowDistance + column,
                                                from + order[row + 2] * rowDistance + column,
                                                from + order[row + 3] * rowDistance + column};
            transposeFour(rows, tile + column * side + row, side);
        }
    }
}

void loadTile(Samples from, quint64 rowDistance, TileShape shape, Split tile)
{
    if (from.stride == 2) {
        loadPairs(from.re, rowDistance, shape, tile);
        return;
    }
    copyRows(from.re, rowDistance, shape, tile.re, shape.columns);
    copyRows(from.im, rowDistance, shape, tile.im, shape.columns);
}

void storeTile(Split tile, TileShape shape, Samples to, quint64 rowDistance)
{
    if (to.stride == 2) {
        storePairs(tile, shape, to.re, rowDistance);
        return;
    }
    copyRows(tile.re, shape.columns, shape, to.re, rowDistance);
    copyRows(tile.im, shape.columns, shape, to.im, rowDistance);
}

void prefetchTile(Samples from, quint64 rowDistance, TileShape shape)
{
#ifdef __GNUC__
    constexpr quint64 lineDoubles = 8;
    for (quint64 row = 0; row < shape.rows; ++row) {
        const Samples run = from.at(row * rowDistance);
        for (quint64 i = 0; i < shape.columns * from.stride; i += lineDoubles) {
            __builtin_prefetch(run.re + i, 1, 2);
            if (from.stride == 1) {
                __builtin_prefetch(run.im + i, 1, 2);
            }
        }
    }
#endif
}

VECTOR_CLONES
void conjugate(Split tile, TileShape shape)
{
    IN_ANY_ORDER
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
    double* outRe = tile.re;
    double* outIm = tile.im;
    const double factor = how.factor;
    // The product with the complex number (factor, 0), signs of zeros and all.
    IN_ANY_ORDER
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
    IN_ANY_ORDER
    for (quint64 i = 0; i < count; ++i) {
        const double x = outRe[i];
        const double y = -outIm[i];
        outRe[i] = (x + y * 0.0) * reciprocal;
        outIm[i] = (y - x * 0.0) * reciprocal;
    }
}
