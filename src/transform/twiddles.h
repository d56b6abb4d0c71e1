// The twiddle factors of the stages, by the recurrence whose rounding the samples carry. A stage
// begins at 1 and multiplies by its rotation, one value after the other; only different stages,
// or stretches of one whose beginnings are known, can go side by side.
#pragma once

#include "transform/samples.h"

#include <vector>

// The rotation of each stage of count points: that of 2 pi / count, doubled from stage to stage.
std::vector<ComplexBuffer::Element> stageRotations(quint64 count);

// A place on the way of a stage's twiddles.
struct Stretch
{
    ComplexBuffer::Element w;
    ComplexBuffer::Element rotation;
};

// Writes count twiddles from each place on, one row a place; the places move along.
void fillTwiddles(std::vector<Stretch>& places, Split out, quint64 count);

// The places of the stages that `stages` fused stages need, 2^stages rows of columns: for each
// pair of rows of each stage, in the order of runTileStages. One such set every columns / parts.
std::vector<std::vector<Stretch>> findStretches(const ComplexBuffer::Element* rotations,
                                                quint64 stages, quint64 columns, quint64 parts);
