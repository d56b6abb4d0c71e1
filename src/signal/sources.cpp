#include "signal/sources.h"

#include "signal/runtime_random.h"

#include <cmath>
#include <ctime>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double twoPi = 6.283185307179586;
constexpr double quarterPi = 0.7853981633974483;

// A spectrum of n bins whose phases, in ascending bin order, are what law(bin) returns.
template <typename Law> SignalData makePhases(quint32 n, bool sinxCompensation, Law law)
{
    SignalData data(n);
    double* phase = data.phase.data();
    for (quint32 i = 0; i < n; ++i) {
        phase[i] = law(i);
    }
    data.setMagnitudes(sinxCompensation);
    return data;
}

} // namespace

// The two random laws differ in their scale on purpose: this one stays below pi, the clock's
// reaches it. The waveform of every stored seed relies on it.
SignalData makeSeededPhases(quint32 n, bool sinxCompensation, quint32 seed)
{
    RuntimeRandom random(seed);
    return makePhases(n, sinxCompensation,
                      [&random](quint32) { return random.next() * 3.0517578125e-05 * twoPi - pi; });
}

// Deliberate: seeded afresh at every call, although the form calls the row "continue". Nothing
// carries over from one calculation to the next.
SignalData makeClockPhases(quint32 n, bool sinxCompensation)
{
    RuntimeRandom random(static_cast<quint32>(std::time(nullptr)));
    return makePhases(n, sinxCompensation,
                      [&random](quint32) { return random.next() / 32767.0 * twoPi - pi; });
}

SignalData makeParabolicPhases(quint32 n, bool sinxCompensation)
{
    const double p = pi / n;
    return makePhases(n, sinxCompensation, [p](quint32 i) {
        const double v = i + 1.0;
        return quarterPi - v * p * v;
    });
}

SignalData makeConstantPhases(quint32 n, bool sinxCompensation)
{
    return makePhases(n, sinxCompensation, [](quint32) { return quarterPi; });
}

void SignalData::setMagnitudes(bool sinxCompensation)
{
    if (!sinxCompensation) {
        magnitude.fill(1.0);
        return;
    }
    const auto n = static_cast<quint32>(magnitude.size());
    const quint32 half = n >> 1;
    double* bins = magnitude.data();
    for (quint32 i = 0; i < n; ++i) {
        const double x = (double(i) - double(half)) / double(n) * pi;
        bins[i] = x / std::sin(x);
    }
    if (n > 0) {
        bins[half] = 1.0; // the loop left 0/0 at the carrier
    }
}
