// From the settings to the samples: the operations of MeasurementSetup and SignalData that make
// up a calculation, in the fixed order of their arithmetic.
#include "base/parallel.h"
#include "files/signal_input.h"
#include "setup/measurement_setup.h"
#include "signal/notch_operations.h"
#include "signal/phasor_memo.h"
#include "signal/sources.h"
#include "transform/transform.h"

#include <cmath>

namespace {

// The spectrum of the internal source. Deliberate: any phase mode but the four leaves the old
// spectrum in place, so that the later steps shape it once more. Configurations may carry one.
void synthesise(const MeasurementSetup& setup, SignalData& signal)
{
    const quint32 n = setup.fftLength();
    if (n > maxSignalLength) {
        signal = SignalData();
        return;
    }
    switch (setup.phaseMode) {
    case PhaseLaw::Seeded:
        signal = makeSeededPhases(n, setup.sinxCompensation, setup.seed);
        break;
    case PhaseLaw::Clock:
        signal = makeClockPhases(n, setup.sinxCompensation);
        break;
    case PhaseLaw::Parabolic:
        signal = makeParabolicPhases(n, setup.sinxCompensation);
        break;
    case PhaseLaw::Constant:
        signal = makeConstantPhases(n, setup.sinxCompensation);
        break;
    default:
        break;
    }
}

void runSource(const MeasurementSetup& setup, SignalData& signal)
{
    switch (setup.customSource) {
    case SignalSource::Internal:
        synthesise(setup, signal);
        break;
    case SignalSource::MagnitudePhaseFile:
        signal = loadMagnitudePhaseFile(setup.phaseMagFile);
        break;
    case SignalSource::IQFiles:
        signal = loadIQFiles(setup.iFile, setup.qFile);
        break;
    default:
        break;
    }
}

struct PolarBins
{
    const double* magnitude;
    const double* phase;
    double scale; // of the magnitudes

    PolarBins from(quint32 bin) const { return {magnitude + bin, phase + bin, scale}; }

    template <typename PhasorOf>
    void convert(quint64 first, quint64 last, double* re, double* im, PhasorOf phasorOf) const
    {
        for (quint64 i = first; i < last; ++i) {
            const double amplitude = scale * magnitude[i];
            const Phasor phasor = phasorOf(phase[i]);
            re[i] = phasor.cosine * amplitude;
            im[i] = phasor.sine * amplitude;
        }
    }
};

void toCartesian(const PolarBins& bins, quint64 count, double* re, double* im)
{
    constexpr quint64 worthRemembering = 131072; // bins, enough for angles to come again
    if (count < worthRemembering) {
        inRuns(count, [&](quint64 first, quint64 last) {
            bins.convert(first, last, re, im, PhasorMemo::compute);
        });
        return;
    }
    inParallel(runsOf(count), usefulThreads(), [&](Pieces& runs) {
        PhasorMemo memo;
        forEachRun(runs, count, [&](quint64 first, quint64 last) {
            bins.convert(first, last, re, im, [&memo](double angle) { return memo.at(angle); });
        });
    });
}

} // namespace

void MeasurementSetup::calculateSignal()
{
    runSource(*this, signal);
    if (signal.length == 0) {
        crestFactor = 0.0;
        return;
    }
    finishSpectrum(signal);
    crestFactor = signal.crestFactor();
}

void MeasurementSetup::finishSpectrum(SignalData& data) const
{
    if (compensate) {
        data.applyCompensation(compensationTrace);
    }
    suppressOutOfBand(data, *this);
    data.applyNotches(notches->rowsOnly(), notchOrCarrier == NotchOrCarrier::Carrier);
    data.buildTransformInput();
    // Quadrature first: that turns the sign of the exponent, so a bin above the carrier is a
    // positive frequency.
    inverseTransform(data.qSamples, data.iSamples, static_cast<quint32>(data.length));
}

void SignalData::applyCompensation(const QVector<double>& trace)
{
    if (trace.size() != magnitude.size() || length <= 0) {
        return;
    }
    double* bins = magnitude.data();
    const double* gains = trace.constData();
    inRuns(static_cast<quint64>(trace.size()), [=](quint64 first, quint64 last) {
        for (quint64 i = first; i < last; ++i) {
            bins[i] *= std::pow(10.0, gains[i] * 0.05);
        }
    });
}

void SignalData::buildTransformInput()
{
    const auto n = static_cast<quint32>(length);
    const quint32 half = n >> 1;
    const PolarBins bins{magnitude.constData(), phase.constData(), double(n)};
    double* re = iSamples.data();
    double* im = qSamples.data();
    // Frequency order to transform order: the carrier at half goes to 0, the lowest bin to half.
    // With an odd length, which only a file can bring, the lowest bin takes the place of the
    // highest one and the last place keeps what it held.
    toCartesian(bins.from(half), n - half, re, im);
    toCartesian(bins, half, re + half, im + half);
}

double SignalData::crestFactor() const
{
    const double* re = iSamples.constData();
    const double* im = qSamples.constData();
    double peak = 0.0;
    double sum = 0.0;
    for (int i = 0; i < length; ++i) {
        const double envelope = std::sqrt(im[i] * im[i] + re[i] * re[i]);
        if (envelope > peak) {
            peak = envelope;
        }
        sum += envelope * envelope; // the square of the root, rounding and all
    }
    const double rms = std::sqrt(sum / double(length));
    return 20.0 * std::log10(peak / rms);
}
