#include "signal/sources.h"

#include "base/parallel.h"
#include "signal/runtime_random.h"
#include "transform/pi.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace {

constexpr double twoPi = 2.0 * pi;
constexpr double quarterPi = 0.25 * pi;

// A spectrum of n bins whose phases, in ascending bin order, are what the law returns.
// lawFrom(bin) makes the law as it stands at that bin.
template <typename LawFrom> SignalData makePhases(quint32 n, bool sinxCompensation, LawFrom lawFrom)
{
    SignalData data(n);
    double* phase = data.phase.data();
    inRuns(n, [=](quint64 first, quint64 last) {
        auto law = lawFrom(static_cast<quint32>(first));
        for (quint64 i = first; i < last; ++i) {
            phase[i] = law(static_cast<quint32>(i));
        }
    });
    data.setMagnitudes(sinxCompensation);
    return data;
}

// The generator after one draw for each bin below the given one.
RuntimeRandom randomAt(quint32 seed, quint32 bin)
{
    RuntimeRandom random(seed);
    random.skip(bin);
    return random;
}

} // namespace

// Deliberate: the two random laws differ in their scale. This one stays below pi, the clock's
// reaches it. The waveform of every stored seed relies on it.
SignalData makeSeededPhases(quint32 n, bool sinxCompensation, quint32 seed)
{
    return makePhases(n, sinxCompensation, [seed](quint32 bin) {
        return [random = randomAt(seed, bin)](quint32) mutable {
            return random.next() * 3.0517578125e-05 * twoPi - pi;
        };
    });
}

// Deliberate: seeded afresh at every call, although the form calls the row "continue". Nothing
// carries over from one calculation to the next.
SignalData makeClockPhases(quint32 n, bool sinxCompensation)
{
    const auto seed = static_cast<quint32>(std::time(nullptr));
    return makePhases(n, sinxCompensation, [seed](quint32 bin) {
        return [random = randomAt(seed, bin)](quint32) mutable {
            return random.next() / 32767.0 * twoPi - pi;
        };
    });
}

SignalData makeParabolicPhases(quint32 n, bool sinxCompensation)
{
    const double p = pi / n;
    return makePhases(n, sinxCompensation, [p](quint32) {
        return [p](quint32 i) {
            const double v = i + 1.0;
            return quarterPi - v * p * v;
        };
    });
}

SignalData makeConstantPhases(quint32 n, bool sinxCompensation)
{
    return makePhases(n, sinxCompensation,
                      [](quint32) { return [](quint32) { return quarterPi; }; });
}

void SignalData::setMagnitudes(bool sinxCompensation)
{
    const auto n = static_cast<quint64>(magnitude.size());
    const quint64 half = n >> 1;
    double* bins = magnitude.data();
    inRuns(n, [=](quint64 first, quint64 last) {
        if (!sinxCompensation) {
            std::fill(bins + first, bins + last, 1.0);
            return;
        }
        for (quint64 i = first; i < last; ++i) {
            const double x = (double(i) - double(half)) / double(n) * pi;
            bins[i] = x / std::sin(x);
        }
    });
    if (n > 0) {
        bins[half] = 1.0; // with compensation the loop left 0/0 at the carrier
    }
}
