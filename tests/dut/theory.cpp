#include "dut/theory.h"

#include "kit/converter_theory.h"
#include "transform/transform.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int orderCount = 80;
constexpr double longestPower = 400.0; // where the last order's function has died away
constexpr int steps = 40000;
constexpr int widening = 8;

double ratio(double decibels)
{
    return std::pow(10.0, decibels / 10.0);
}

double sumOf(const LinePowers& lines, ChannelLines channel)
{
    const auto first = lines.begin() + lines.size() / 2 + channel.first;
    return std::accumulate(first, first + channel.count, 0.0);
}

// Density of signal (gain times the stimulus) and distortion in the one channel over that in the
// other, dB.
double theoreticalReading(const LinePowers& stimulus, double gain, const LinePowers& distortion,
                          ChannelLines reference, ChannelLines notch)
{
    const auto densityIn = [&](ChannelLines channel) {
        return (gain * sumOf(stimulus, channel) + sumOf(distortion, channel)) / channel.count;
    };
    return 10.0 * std::log10(densityIn(reference) / densityIn(notch));
}

// A line's power in transform order, on a grid of so many lines.
QVector<double> inTransformOrder(const LinePowers& lines, int count)
{
    QVector<double> ordered(count, 0.0);
    for (int k = 0; k < lines.size(); ++k) {
        ordered[(k - lines.size() / 2 + count) % count] = lines[k];
    }
    return ordered;
}

// The spectrum of a function of the autocorrelation (1 at lag 0) of the stimulus, on a grid of
// count lines.
template <typename Distorted>
LinePowers linesOf(const LinePowers& stimulus, int count, Distorted distorted)
{
    const double power = std::accumulate(stimulus.begin(), stimulus.end(), 0.0);
    QVector<double> re = inTransformOrder(stimulus, count);
    QVector<double> im(count, 0.0);
    forwardTransform(re, im, static_cast<quint32>(count));
    const double unit = std::sqrt(static_cast<double>(count)) / power;
    for (int lag = 0; lag < count; ++lag) {
        const std::complex<double> value = distorted({re[lag] * unit, im[lag] * unit});
        re[lag] = value.real();
        im[lag] = value.imag();
    }
    // The quadrature first: the opposite exponent leads back.
    forwardTransform(im, re, static_cast<quint32>(count));
    LinePowers lines(count);
    for (int k = 0; k < count; ++k) {
        lines[(k + count / 2) % count] = re[k] * power / std::sqrt(static_cast<double>(count));
    }
    return lines;
}

// Powers of the orders 1, 3, 5, ... of Hermite's polynomials in a normal value that is clipped at
// the loading; the last one holds all that follow.
QVector<double> clippingOrders(double loading)
{
    QVector<double> parts(orderCount, 0.0);
    double total = 0.0;
    constexpr double widest = 14.0;
    const double step = widest / steps;
    for (int k = 0; k < steps; ++k) { // both signs at once: the function is odd
        const double x = (k + 0.5) * step;
        const double y = 2.0 * std::min(x, loading) * normalDensity(x) * step;
        total += y * std::min(x, loading);
        double before = 1.0;
        double polynomial = x;
        for (int n = 1; n < 2 * orderCount; ++n) {
            if (n % 2 == 1) {
                parts[n / 2] += y * polynomial;
            }
            const double next =
                (x * polynomial - std::sqrt(double(n)) * before) / std::sqrt(n + 1.0);
            before = polynomial;
            polynomial = next;
        }
    }
    QVector<double> orders;
    for (const double part : parts) {
        orders << part * part;
    }
    orders << std::max(0.0, total - std::accumulate(orders.begin(), orders.end(), 0.0));
    return orders;
}

} // namespace

Gain rappGain(double backOff, double smoothness)
{
    const double saturation = ratio(backOff);
    return [=](double power) {
        return 1.0 / std::pow(1.0 + std::pow(power / saturation, smoothness), 0.5 / smoothness);
    };
}

Gain softLimiterGain(double backOff)
{
    const double saturation = ratio(backOff);
    return [=](double power) { return std::min(1.0, std::sqrt(saturation / power)); };
}

Gain salehGain(double backOff)
{
    const double saturation = ratio(backOff);
    return [=](double power) {
        const double q = power / saturation;
        const std::complex<double> turn(0.0, 4.0033 * q / (1.0 + 9.1040 * q));
        return 2.1587 / (1.0 + 1.1517 * q) * std::exp(turn);
    };
}

Gain cubicGain(double backOff)
{
    const double intercept = ratio(backOff);
    return [=](double power) { return 1.0 - power / intercept; };
}

// Middle sums in the amplitude r, u = r^2, of the functions sqrt(u e^-u / (m+1)) L_m^(1)(u), which
// are orthonormal over u.
QVector<double> distortionOrders(const Gain& gain)
{
    QVector<std::complex<double>> parts(orderCount);
    double total = 0.0;
    const double step = std::sqrt(longestPower) / steps;
    for (int k = 0; k < steps; ++k) {
        const double r = (k + 0.5) * step;
        const double u = r * r;
        const double weight = r * std::exp(-0.5 * u);
        const std::complex<double> y = weight * gain(u) * 2.0 * r * step;
        total += std::norm(weight * gain(u)) * 2.0 * r * step;
        double before = 0.0;
        double laguerre = weight;
        for (int m = 0; m < orderCount; ++m) {
            parts[m] += y * laguerre / std::sqrt(m + 1.0);
            const double next = ((2.0 * m + 2.0 - u) * laguerre - (m + 1.0) * before) / (m + 1.0);
            before = laguerre;
            laguerre = next;
        }
    }
    QVector<double> orders;
    for (const std::complex<double>& part : parts) {
        orders << std::norm(part);
    }
    orders << std::max(0.0, total - std::accumulate(orders.begin(), orders.end(), 0.0));
    return orders;
}

LinePowers distortionLines(const LinePowers& stimulus, const QVector<double>& orders)
{
    const auto distorted = [&orders](std::complex<double> r) {
        double sum = 0.0;
        for (int m = orders.size() - 1; m > 0; --m) { // Horner's rule in |R|^2
            sum = (sum + orders[m]) * std::norm(r);
        }
        return sum * r;
    };
    return linesOf(stimulus, widening * stimulus.size(), distorted);
}

LinePowers converterDistortionLines(const LinePowers& stimulus, int bits, double loading)
{
    const QVector<double> orders = clippingOrders(loading);
    const auto power = [&orders](double r) {
        double sum = 0.0;
        for (int n = orders.size() - 1; n > 0; --n) { // orders 3, 5, 7, ...
            sum = (sum + orders[n]) * r * r;
        }
        return sum * r;
    };
    const auto distorted = [&power](std::complex<double> r) {
        return std::complex<double>(power(r.real()), power(r.imag()));
    };
    LinePowers lines = linesOf(stimulus, stimulus.size(), distorted);
    const double rounding = converterNoise(bits, loading).rounding *
                            std::accumulate(stimulus.begin(), stimulus.end(), 0.0);
    for (double& line : lines) {
        line += rounding / lines.size();
    }
    return lines;
}

double converterGain(double loading)
{
    return clippingOrders(loading)[0];
}

double deviceReading(const LinePowers& stimulus, const QVector<double>& orders,
                     ChannelLines reference, ChannelLines notch)
{
    return theoreticalReading(stimulus, orders[0], distortionLines(stimulus, orders), reference,
                              notch);
}

double converterReading(const LinePowers& stimulus, int bits, double loading,
                        ChannelLines reference, ChannelLines notch)
{
    return theoreticalReading(stimulus, converterGain(loading),
                              converterDistortionLines(stimulus, bits, loading), reference, notch);
}

double bestLoading(int bits)
{
    const auto npr = [bits](double loading) { return converterNoise(bits, loading).npr(); };
    double best = 1.0;
    for (int hundredths = 100; hundredths < 800; ++hundredths) {
        const double k = hundredths / 100.0;
        best = npr(k) > npr(best) ? k : best;
    }
    return best;
}
