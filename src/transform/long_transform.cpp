#include "transform/long_transform.h"

#include "transform/twiddles.h"

#include <cmath>

namespace {

int threadsFor(quint64 count, int threads)
{
    constexpr quint64 worthSharing = 32768;
    return count < worthSharing ? 1 : threads;
}

} // namespace

double unitaryScale(quint64 count)
{
    return 1.0 / std::sqrt(static_cast<double>(count));
}

bool LongTransform::suits(quint64 count)
{
    constexpr quint64 shortest = 1024; // what the tiles are made for
    return count >= shortest && (count & (count - 1)) == 0;
}

LongTransform::LongTransform(quint64 itsCount, int itsThreads, Parts parts)
    : LongTransform(itsCount, threadsFor(itsCount, itsThreads), parts, stageRotations(itsCount))
{
}

LongTransform::LongTransform(quint64 itsCount, int itsThreads, Parts parts,
                             const std::vector<ComplexBuffer::Element>& rotations)
    : count(itsCount),
      threads(itsThreads),
      butterflies(count, rotations.data(), threads, parts),
      last(count, rotations.data() + rotations.size() - 5)
{
}

void LongTransform::run(Samples x, bool inverse) const
{
    butterflies.run(x, inverse);
    last.run(x, {unitaryScale(count), static_cast<double>(count), inverse}, threads);
}
