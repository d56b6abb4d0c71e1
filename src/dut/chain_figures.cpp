#include "dut/chain_figures.h"

namespace {

constexpr double mostDecibels = 300.0;

} // namespace

bool ChainFigure::allows(double value) const
{
    // A comparison that not-a-number fails too.
    return value >= lowest && value <= highest && (!whole || value == std::floor(value));
}

const std::vector<ChainFigure>& chainFigures()
{
    static const std::vector<ChainFigure> figures{
        {"saturation", "DBM",
         "rapp, soft, saleh: level in dBm at which the model's normalised input is 1; rapp and "
         "soft "
         "give at most this (default 10).",
         -mostDecibels, mostDecibels, false,
         [](Chain& c, double v) { c.device.saturationPower = v; }},
        {"smoothness", "P",
         "rapp: smoothness of the bend, 0.1 to 100, larger is harder (default 2).", 0.1, 100.0,
         false, [](Chain& c, double v) { c.device.smoothness = v; }},
        {"intercept", "DBM",
         "cubic: third-order intercept, power of one of two tones, in dBm (default 20).",
         -mostDecibels, mostDecibels, false,
         [](Chain& c, double v) { c.device.thirdOrderIntercept = v; }},
        {"bits", "N", "adc: resolution in bits, 1 to 24 (default 12).", 1.0, 24.0, true,
         [](Chain& c, double v) { c.device.bits = static_cast<int>(v); }},
        {"full-scale", "DBM",
         "adc: full scale, as the level in dBm of a carrier whose components just reach it; a "
         "sweep "
         "of the level then shows rounding and clipping.",
         -mostDecibels, mostDecibels, false, [](Chain& c, double v) { c.device.fullScale = v; }},
        {"loading", "K",
         "adc: full scale as K times the rms of one component of whatever comes, 0.01 to 1000 "
         "(default 5, without full-scale; not both).",
         0.01, 1000.0, false, [](Chain& c, double v) { c.device.loadingFactor = v; }},
        {"device-noise", "DBM_HZ", "Noise at the device's output in dBm/Hz (default: none).",
         -mostDecibels, mostDecibels, false, [](Chain& c, double v) { c.deviceNoise = v; }},
        {"noise-floor", "DBM_HZ", "Noise of the analyzer in dBm/Hz (default: none).", -mostDecibels,
         mostDecibels, false, [](Chain& c, double v) { c.noiseFloor = v; }},
        {"source-notch", "DB",
         "Depth of notch that the generator reaches, in dB below the signal (default: any).", 0.0,
         mostDecibels, false, [](Chain& c, double v) { c.sourceNotch = v; }},
    };
    return figures;
}

std::optional<Ripple> rippleOf(const QString& text, char separator)
{
    const QStringList parts = text.split(QLatin1Char(separator));
    bool hasHeight = false;
    bool hasPeriod = false;
    const Ripple ripple{parts.value(0).toDouble(&hasHeight), parts.value(1).toDouble(&hasPeriod)};
    const bool good = parts.size() == 2 && hasHeight && hasPeriod && ripple.peakToPeak > 0.0 &&
                      ripple.peakToPeak <= mostDecibels && ripple.period > 0.0 &&
                      std::isfinite(ripple.period);
    return good ? std::make_optional(ripple) : std::nullopt;
}
