// Many comparisons at once: the samples are dealt out to lanes, and the extremes of the lanes are
// compared at the end. Each lane begins at the same start and yields only to what lies beyond, so
// the order of the samples doesn't matter for the result, not even for not-a-number.
#include "files/extremes.h"

#include "transform/vector_clones.h"

#include <array>

VECTOR_CLONES
Extremes extremesOf(const double* samples, int count, Extremes start)
{
    constexpr int lanes = 32;
    std::array<double, lanes> smallest{};
    std::array<double, lanes> largest{};
    smallest.fill(start.smallest);
    largest.fill(start.largest);
    int i = 0;
    for (; i + lanes <= count; i += lanes) {
        for (int lane = 0; lane < lanes; ++lane) {
            const double sample = samples[i + lane];
            smallest[lane] = sample < smallest[lane] ? sample : smallest[lane];
            largest[lane] = sample > largest[lane] ? sample : largest[lane];
        }
    }
    Extremes all = start;
    const auto include = [&all](double low, double high) {
        all.smallest = low < all.smallest ? low : all.smallest;
        all.largest = high > all.largest ? high : all.largest;
    };
    for (int lane = 0; lane < lanes; ++lane) {
        include(smallest[lane], largest[lane]);
    }
    for (; i < count; ++i) {
        include(samples[i], samples[i]);
    }
    return all;
}
