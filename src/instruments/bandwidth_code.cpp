#include "instruments/bandwidth_code.h"

#include <limits>

namespace {

struct Decade
{
    quint64 unit;
    quint32 exponent;
};

// The decade as a whole number, so that 1000 is never taken for 999.99... as a
// truncated logarithm would.
Decade decadeOf(quint32 value)
{
    Decade decade{1, 0};
    while (decade.unit * 10 <= value) {
        decade.unit *= 10;
        ++decade.exponent;
    }
    return decade;
}

} // namespace

quint32 codeFromBandwidth(quint32 hertz)
{
    if (hertz == 0) {
        return 0;
    }
    const Decade decade = decadeOf(hertz);
    const auto digit = static_cast<quint32>(hertz / decade.unit);
    // Deliberate: every digit above 3 ends on the step 5. Saved configurations with
    // bandwidths between the steps rely on it.
    return 4 * decade.exponent + (digit <= 3 ? digit : 4);
}

quint32 bandwidthFromCode(quint32 code)
{
    if (code == 0) {
        return 0;
    }
    const quint32 step = (code - 1) % 4;
    quint64 bandwidth = step == 3 ? 5 : step + 1;
    for (quint32 decade = (code - 1) / 4; decade > 0; --decade) {
        bandwidth *= 10;
        if (bandwidth > std::numeric_limits<quint32>::max()) {
            return std::numeric_limits<quint32>::max();
        }
    }
    return static_cast<quint32>(bandwidth);
}
