// A tile: some rows of values, side by side in the first cache, on which several stages of
// butterflies run before anything goes back to memory. Rows are split into real and imaginary
// parts, so that one instruction works on many columns; which instructions, the processor that
// runs it decides.
#pragma once

#include "transform/samples.h"

struct TileShape
{
    quint64 rows;    // a power of two
    quint64 columns; // a multiple of 16
};

// Row r of the tile is the run of columns that begins at r * rowDistance.
void loadTile(Samples from, quint64 rowDistance, TileShape shape, Split tile);
void storeTile(Split tile, TileShape shape, Samples to, quint64 rowDistance);

// Fills a square of side, a multiple of 4, with the columns of some rows as its rows: value (c, r)
// of it is the value c of the run that begins at order[r] * rowDistance.
void transposeInto(double* tile, const double* from, quint64 rowDistance, const quint64* order,
                   quint64 side);

// Asks for the memory of a tile that is wanted soon. Rows lie far apart, so that the processor
// doesn't foresee them by itself.
void prefetchTile(Samples from, quint64 rowDistance, TileShape shape);

// Turns the sign of all imaginary parts.
void conjugate(Split tile, TileShape shape);

// All stages that pair rows: first those half the rows apart, at last neighbours. w holds a run
// of twiddles a pair of rows, for rows / 2 pairs of the first stage, then for rows / 4 ...
void runTileStages(Split tile, TileShape shape, Split w);

// What becomes of each value at the very end. An inverse transform is the conjugate, divided by
// a power of two.
struct Finish
{
    double factor;
    double divisor;
    bool inverse;
};
void finish(Split tile, quint64 count, const Finish& how);
