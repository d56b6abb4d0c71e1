#pragma once

#include "transform/samples.h"

#include <vector>

// The stages of the transform of count values, a power of two of at least 1024, down to blocks
// of 32 points; the rest belongs to FinalStages. Prepared once for any number of runs, several at
// once too.
class ButterflyStages
{
public:
    // The rotations are those of stageRotations; threads are those that a run may use. All samples
    // of its runs lie as told.
    ButterflyStages(quint64 itsCount, const ComplexBuffer::Element* rotations, int itsThreads,
                    Parts parts);
    ~ButterflyStages();

    // With conjugated the values that are read are taken with the sign of their imaginary parts
    // turned.
    void run(Samples x, bool conjugated) const;

private:
    class Pass;
    struct Workspace;

    void runFrom(std::size_t pass, Samples x, quint64 points, bool conjugated,
                 Workspace& work) const;

    const quint64 count;
    const int threads;
    std::vector<Pass> passes;
};
