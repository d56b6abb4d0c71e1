#pragma once

#include "transform/samples.h"

// The stages of the transform of count values, a power of two of at least 1024, down to blocks
// of 32 points; the rest belongs to finalStages. The rotations are those of stageRotations. With
// conjugated the values that are read are taken with the sign of their imaginary parts turned.
void butterflyStages(Samples x, quint64 count, const ComplexBuffer::Element* rotations,
                     bool conjugated, int threads);
