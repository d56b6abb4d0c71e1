#include "signal/crest_factor_trim.h"

#include "base/parallel.h"
#include "setup/signal_data.h"
#include "signal/between_samples.h"
#include "transform/decibels.h"
#include "transform/transform.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

double powerOf(const SignalData& signal, int i)
{
    const double re = signal.iSamples.at(i);
    const double im = signal.qSamples.at(i);
    return re * re + im * im;
}

double meanPower(const SignalData& signal)
{
    double sum = 0.0;
    for (int i = 0; i < signal.length; ++i) {
        sum += powerOf(signal, i);
    }
    return sum / signal.length;
}

// Envelopes above the level are put on it.
void clip(SignalData& signal, double level)
{
    double* re = signal.iSamples.data();
    double* im = signal.qSamples.data();
    inRuns(static_cast<quint64>(signal.length), [=](quint64 first, quint64 last) {
        for (quint64 i = first; i < last; ++i) {
            const double envelope = std::sqrt(re[i] * re[i] + im[i] * im[i]);
            if (envelope > level) {
                re[i] *= level / envelope;
                im[i] *= level / envelope;
            }
        }
    });
}

// The lines, in frequency order, of a signal that is known a part of a sample distance at a time.
// Those of all parts, each turned back by its shift, add up to the lines of the signal at the
// higher rate; beyond half the lower rate they aren't wanted.
class Lines
{
public:
    explicit Lines(int length) : re(std::size_t(length), 0.0), im(std::size_t(length), 0.0) {}

    // samples become their transform.
    void add(SignalData& part, double turn)
    {
        const auto n = static_cast<quint32>(part.length);
        forwardTransform(part.qSamples, part.iSamples, n); // quadrature first, as on the way here
        const double* partRe = part.iSamples.constData();
        const double* partIm = part.qSamples.constData();
        const quint32 half = n / 2;
        inRuns(n, [=](quint64 first, quint64 last) {
            for (quint64 i = first; i < last; ++i) {
                const quint64 from = i < half ? i + half : i - half; // transform order
                const double angle = -turn * (double(i) - double(half));
                const double c = std::cos(angle);
                const double s = std::sin(angle);
                re[i] += partRe[from] * c - partIm[from] * s;
                im[i] += partRe[from] * s + partIm[from] * c;
            }
        });
    }

    // A line without power leaves the phase as it is.
    void givePhases(SignalData& signal) const
    {
        double* phase = signal.phase.data();
        inRuns(re.size(), [=](quint64 first, quint64 last) {
            for (quint64 i = first; i < last; ++i) {
                if (re[i] != 0.0 || im[i] != 0.0) {
                    phase[i] = std::atan2(im[i], re[i]);
                }
            }
        });
    }

private:
    std::vector<double> re;
    std::vector<double> im;
};

double partOf(int part)
{
    return double(part) / envelopeInterpolation;
}

// The signal with its peaks above the level cut, its magnitudes restored; returns the peak power
// that it had before.
double cutPeaks(SignalData& signal, double level)
{
    Lines lines(signal.length);
    double peakPower = 0.0;
    SignalData part;
    for (int i = 0; i < envelopeInterpolation; ++i) {
        shiftSamples(part, signal, partOf(i));
        for (int k = 0; k < part.length; ++k) {
            peakPower = std::max(peakPower, powerOf(part, k));
        }
        clip(part, level);
        lines.add(part, turnOfShift(signal, partOf(i)));
    }
    lines.givePhases(signal);
    return peakPower;
}

} // namespace

TrimResult trimCrestFactor(SignalData& signal, double target, const TrimProgress& goOn)
{
    constexpr int mostRounds = 500;
    constexpr int patience = 30;    // rounds
    constexpr double worth = 0.001; // dB
    constexpr double deeper = 0.4;  // dB below the target, for restoring lifts the peaks again
    const double mean = meanPower(signal);
    const double level = std::sqrt(mean) * std::pow(10.0, (target - deeper) / 20.0);
    TrimResult best;
    double worthwhile = 0.0; // peak of the last round that brought something
    int since = 0;
    SignalData trimmed = signal;
    for (int round = 0; round <= mostRounds && since <= patience; ++round) {
        const QVector<double> phase = trimmed.phase;
        const double peak = decibels(cutPeaks(trimmed, level) / mean);
        if (round == 0 || peak < best.peak) {
            best = {peak, round, peak <= target};
            signal.phase = phase;
        }
        const bool isWorth = round == 0 || peak < worthwhile - worth;
        worthwhile = isWorth ? peak : worthwhile;
        since = isWorth ? 0 : since + 1;
        if (best.isReached || !goOn(round, peak)) {
            break;
        }
    }
    if (best.rounds > 0) {
        shiftSamples(signal, SignalData(signal), 0.0);
    }
    return best;
}
