#pragma once

#include "transform/samples.h"
#include "transform/tile.h"

#include <vector>

// The last five stages of the transform of count values, a power of two of at least 1024, the
// exchange of every value with the one of reversed index bits, and what finish does. Prepared once
// for any number of runs, several at once too.
class FinalStages
{
public:
    FinalStages(quint64 count, const ComplexBuffer::Element* rotations);

    void run(Samples x, const Finish& how, int threads) const;

private:
    quint32 middleBits = 0;
    std::vector<double> twiddlesRe; // of the stages, as runTileStages takes them
    std::vector<double> twiddlesIm;
};
