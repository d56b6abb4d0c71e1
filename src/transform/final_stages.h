#pragma once

#include "transform/samples.h"
#include "transform/tile.h"

// The last five stages of the transform of count values, a power of two of at least 1024, the
// exchange of every value with the one of reversed index bits, and what finish does.
void finalStages(Samples x, quint64 count, const ComplexBuffer::Element* rotations,
                 const Finish& how, int threads);
