// What a chain must read in closed form, for the stimulus's own power spectrum with its notches,
// taken as Gaussian noise. No device and no reading uses this unit: it is what they are held
// against.
//
// Memoryless devices: Bussgang's decomposition of g(|x|^2) x in Laguerre polynomials,
//     c_m = 1/(m+1) times the integral over u of u exp(-u) g(P u) L_m^(1)(u),
// distortion of order m with the power (m+1) |c_m|^2 and the spectrum of R |R|^2m, R being the
// stimulus's autocorrelation. Converters: rounding is white, k^2 / (3 4^bits) of the signal's power
// for a full scale of k times the rms of a component; clipping is decomposed in Hermite
// polynomials, order n with the spectrum of (Re R)^n + j (Im R)^n, folded at the sample rate. Noise
// and what the source leaves in the notches are added. Rounding isn't white any more where a
// component spans less than a step or two.
//
// Powers are in milliwatts. Any thread.
#pragma once

#include "campaign/notch_rows.h"
#include "dut/level_sweep.h"

#include <optional>

struct SignalData;

class Theory
{
public:
    // The signal counts with its magnitudes alone. The chain's device is any that isIn().
    Theory(const SignalData& signal, double sampleRate, const Chain& chain,
           const QVector<NumberedNotch>& notches);

    // Whether there is a closed form of the device; a linear one needs none.
    static bool isIn(const DeviceSettings& device);

    // NPR in dB in each notch when the source is set to the level in dBm; none where the notch is
    // above the signal.
    QVector<std::optional<double>> at(double level) const;

private:
    using Powers = QVector<double>;

    void weighDistortion(const Powers& stimulus, double sampleRate);
    QVector<double> ordersAt(double power) const;
    double whiteAt(double power) const;

    Chain chain;
    QVector<ChannelBand> bands;   // reference and notch of each, in turns
    double gain = 0.0;            // power at the device over that at the source
    Powers stimulusIn;            // share of the stimulus's power in each band
    QVector<Powers> distortionIn; // share of each order's power in each band
    QVector<double> shareOfRate;  // of each band
};
