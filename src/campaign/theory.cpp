#include "campaign/theory.h"

#include "campaign/theory_orders.h"
#include "setup/signal_data.h"
#include "transform/decibels.h"
#include "transform/transform.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numeric>

namespace {

// Distortion is smooth over the frequency: so many lines tell it.
constexpr int mostCoarseLines = 8192;
// Room for what a memoryless device makes beyond the sample rate.
constexpr int widening = 8;

using Powers = QVector<double>;

double sumOf(const Powers& powers)
{
    return std::accumulate(powers.begin(), powers.end(), 0.0);
}

void normalise(Powers& powers)
{
    const double sum = sumOf(powers);
    for (double& power : powers) {
        power /= sum;
    }
}

// Lines of the stimulus as the source puts it out, as shares of its power, carrier in the middle.
Powers sourceLines(const SignalData& signal, double sourceNotch)
{
    Powers lines;
    for (int k = 0; k < signal.length; ++k) {
        lines << signal.magnitude.at(k) * signal.magnitude.at(k);
    }
    constexpr double weakest = 1e-4; // a line that is weaker isn't the signal's
    const double threshold = weakest * *std::max_element(lines.begin(), lines.end());
    double strong = 0.0;
    int count = 0;
    for (const double line : qAsConst(lines)) {
        strong += line >= threshold ? line : 0.0;
        count += line >= threshold ? 1 : 0;
    }
    const double filling = strong / count * milliwatts(-sourceNotch);
    for (double& line : lines) {
        line += filling;
    }
    normalise(lines);
    return lines;
}

void shapeByRipple(Powers& lines, const Ripple& ripple, double spacing)
{
    if (ripple.peakToPeak > 0.0) {
        const int carrier = lines.size() / 2;
        for (int k = 0; k < lines.size(); ++k) {
            lines[k] *= milliwatts(ripple.gain((k - carrier) * spacing));
        }
    }
}

Powers coarse(const Powers& lines)
{
    const int count = std::min(lines.size(), mostCoarseLines);
    Powers sums(count, 0.0);
    for (int k = 0; k < lines.size(); ++k) {
        sums[static_cast<int>(qint64{k} * count / lines.size())] += lines.at(k);
    }
    return sums;
}

// Power of lines, spacing apart with the carrier in the middle, in a band; those at its edges count
// as far as they are in it.
double powerIn(const Powers& lines, double spacing, ChannelBand band)
{
    const double low =
        std::clamp(band.low / spacing + lines.size() / 2.0, 0.0, double(lines.size()));
    const double high =
        std::clamp(band.high / spacing + lines.size() / 2.0, 0.0, double(lines.size()));
    double sum = 0.0;
    for (int k = static_cast<int>(low); k < high; ++k) {
        sum += lines.at(k) * (std::min(high, k + 1.0) - std::max(low, double(k)));
    }
    return sum;
}

double exactPowerIn(const Powers& lines, double spacing, ChannelBand band)
{
    const SomeLines::Range range = linesWithin(band, spacing, lines.size());
    const auto first = lines.begin() + lines.size() / 2 + range.first;
    return std::accumulate(first, first + range.count, 0.0);
}

// An autocorrelation, or what a distortion makes of it.
struct Correlation
{
    QVector<double> re;
    QVector<double> im;
};

Correlation correlationOf(const Powers& lines, int count)
{
    Correlation r{QVector<double>(count, 0.0), QVector<double>(count, 0.0)};
    for (int k = 0; k < lines.size(); ++k) {
        r.re[(k - lines.size() / 2 + count) % count] = lines.at(k);
    }
    forwardTransform(r.re, r.im, static_cast<quint32>(count));
    const double unit = std::sqrt(double(count)) / sumOf(lines);
    for (int lag = 0; lag < count; ++lag) {
        r.re[lag] *= unit;
        r.im[lag] *= unit;
    }
    return r;
}

Powers spectrumOf(Correlation r)
{
    const int count = r.re.size();
    // The quadrature first: the opposite exponent leads back.
    forwardTransform(r.im, r.re, static_cast<quint32>(count));
    Powers lines(count);
    for (int k = 0; k < count; ++k) {
        lines[(k + count / 2) % count] = r.re.at(k) / std::sqrt(double(count));
    }
    return lines;
}

bool isConverter(const DeviceSettings& device)
{
    return device.name == QLatin1String("adc");
}

} // namespace

bool Theory::isIn(const DeviceSettings& device)
{
    return isConverter(device) || gainOf(device) != nullptr;
}

Theory::Theory(const SignalData& signal, double sampleRate, const Chain& itsChain,
               const QVector<NumberedNotch>& notches)
    : chain(itsChain), bands(bandsOf(notches))
{
    const double spacing = sampleRate / signal.length;
    Powers lines = sourceLines(signal, chain.sourceNotch);
    shapeByRipple(lines, chain.ripple, spacing);
    gain = sumOf(lines);
    normalise(lines);
    for (const ChannelBand& band : qAsConst(bands)) {
        stimulusIn << exactPowerIn(lines, spacing, band);
        shareOfRate << (band.high - band.low) / sampleRate;
    }
    weighDistortion(coarse(lines), sampleRate);
}

// The spectrum of each order, order by order: the correlation of the next is that of the one before
// times the square of the stimulus's.
void Theory::weighDistortion(const Powers& stimulus, double sampleRate)
{
    const bool isFolded = isConverter(chain.device);
    const int count = isFolded ? stimulus.size() : widening * stimulus.size();
    const double spacing = sampleRate / stimulus.size();
    const Correlation r = correlationOf(stimulus, count);
    Correlation order = r;
    for (int m = 1; m <= distortionOrderCount; ++m) {
        for (int lag = 0; lag < count; ++lag) {
            const double re = r.re[lag] * r.re[lag];
            const double im = r.im[lag] * r.im[lag];
            order.re[lag] *= isFolded ? re : re + im;
            order.im[lag] *= isFolded ? im : re + im;
        }
        const Powers lines = spectrumOf(order);
        Powers shares;
        for (const ChannelBand& band : qAsConst(bands)) {
            shares << powerIn(lines, spacing, band);
        }
        distortionIn << shares;
    }
}

// At a power at the device's input: shares of it that the orders 0, 1, 2, ... put out.
QVector<double> Theory::ordersAt(double power) const
{
    return isConverter(chain.device) ? clippingOrders(loadingOf(chain.device, power))
                                     : memorylessOrders(gainOf(chain.device), chain.device, power);
}

// White noise over the whole rate, as a share of the power at the input.
double Theory::whiteAt(double power) const
{
    if (!isConverter(chain.device)) {
        return 0.0;
    }
    const double loading = loadingOf(chain.device, power);
    return loading * loading / (3.0 * std::pow(4.0, chain.device.bits));
}

QVector<std::optional<double>> Theory::at(double level) const
{
    const double power = milliwatts(level) * gain;
    const QVector<double> orders = ordersAt(power);
    const double white = whiteAt(power);
    const double density = milliwatts(chain.deviceNoise) + milliwatts(chain.noiseFloor);
    Powers inBands;
    for (int band = 0; band < bands.size(); ++band) {
        double share = orders[0] * stimulusIn[band] + white * shareOfRate[band];
        for (int m = 1; m < orders.size(); ++m) {
            share += orders[m] * distortionIn[m - 1][band];
        }
        inBands << power * share + density * (bands[band].high - bands[band].low);
    }
    QVector<std::optional<double>> ratios;
    for (int k = 0; k < inBands.size(); k += 2) {
        const double signal = inBands[k] - inBands[k + 1];
        ratios << (signal > 0.0 ? std::make_optional(decibels(signal / inBands[k + 1]))
                                : std::nullopt);
    }
    return ratios;
}
