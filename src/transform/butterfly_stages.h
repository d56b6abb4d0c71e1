// The butterfly stages of the transform: decimation in frequency, in place, result in
// bit-reversed order and unscaled.
#pragma once

#include "transform/complex_buffer.h"

// count is a power of two of at least 1. Throws std::bad_alloc for its small workspace.
void runButterflyStages(ComplexBuffer::Element* x, quint64 count);
