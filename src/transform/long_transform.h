// The transform of lengths that are worth tiles: powers of two from 1024 on.
#pragma once

#include "transform/butterfly_stages.h"
#include "transform/final_stages.h"

// The factor of every transform of count values.
double unitaryScale(quint64 count);

// Prepared once for any number of runs, several at once too.
class LongTransform
{
public:
    static bool suits(quint64 count);

    // Of a count that suits; a run uses several threads where that is worth it.
    LongTransform(quint64 itsCount, int itsThreads, Parts parts);

    // Samples lie as told before. With inverse, what inverseTransform tells of.
    void run(Samples x, bool inverse) const;

private:
    LongTransform(quint64 itsCount, int itsThreads, Parts parts,
                  const std::vector<ComplexBuffer::Element>& rotations);

    const quint64 count;
    const int threads;
    const ButterflyStages butterflies;
    const FinalStages last;
};
