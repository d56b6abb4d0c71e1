#include "signal/between_samples.h"

#include "base/parallel.h"
#include "setup/signal_data.h"
#include "transform/pi.h"
#include "transform/transform.h"

void shiftSamples(SignalData& to, const SignalData& from, double samples)
{
    to = from;
    const auto n = static_cast<quint32>(from.length);
    const double turn = turnOfShift(from, samples);
    const double carrier = n / 2; // NOLINT(bugprone-integer-division): n is a power of two
    double* phase = to.phase.data();
    inRuns(n, [=](quint64 first, quint64 last) {
        for (quint64 i = first; i < last; ++i) {
            phase[i] += (double(i) - carrier) * turn;
        }
    });
    to.buildTransformInput();
    // Quadrature first: that turns the sign of the exponent, so a bin above the carrier is a
    // positive frequency.
    inverseTransform(to.qSamples, to.iSamples, n);
}

double turnOfShift(const SignalData& signal, double samples)
{
    return 2.0 * pi * samples / signal.length;
}
