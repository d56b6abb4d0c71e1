#include "recording/bands.h"

#include <algorithm>
#include <cmath>

namespace {

void append(Bands& bands, FrequencyBand band)
{
    if (band.high > band.low) {
        bands << band;
    }
}

} // namespace

LineRange linesIn(FrequencyBand band, double spacing)
{
    return {static_cast<int>(std::ceil(band.low / spacing)),
            static_cast<int>(std::floor(band.high / spacing))};
}

Bands within(const Bands& bands, FrequencyBand limits)
{
    Bands left;
    for (const FrequencyBand& band : bands) {
        append(left, {std::max(band.low, limits.low), std::min(band.high, limits.high)});
    }
    return left;
}

Bands without(const Bands& bands, FrequencyBand gap)
{
    Bands left;
    for (const FrequencyBand& band : bands) {
        append(left, {band.low, std::min(band.high, gap.low)});
        append(left, {std::max(band.low, gap.high), band.high});
    }
    return left;
}

double widthOf(const Bands& bands)
{
    double sum = 0.0;
    for (const FrequencyBand& band : bands) {
        sum += band.width();
    }
    return sum;
}
