// The last step of the transform: from bit-reversed to natural order, with the scaling.
#pragma once

#include "transform/complex_buffer.h"

// In place: element a gets factor times the element whose index has a's low bits reversed, as
// many bits as log2(count) truncated. With a count that is no power of two, elements whose
// exchange would not be mutual are exchanged in ascending order of a, as the plain loop does.
void reorderAndScale(ComplexBuffer::Element* x, quint64 count, double factor);
