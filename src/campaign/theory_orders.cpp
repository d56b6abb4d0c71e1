#include "campaign/theory_orders.h"

#include "transform/pi.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int steps = 4000; // of the integrals, by middle sums

using Complex = std::complex<double>;

double decibelRatio(double decibels)
{
    return std::pow(10.0, 0.1 * decibels);
}

Complex rapp(const DeviceSettings& device, double power)
{
    const double over = power / decibelRatio(device.saturationPower);
    return 1.0 / std::pow(1.0 + std::pow(over, device.smoothness), 0.5 / device.smoothness);
}

Complex softLimiter(const DeviceSettings& device, double power)
{
    return std::min(1.0, std::sqrt(decibelRatio(device.saturationPower) / power));
}

Complex saleh(const DeviceSettings& device, double power)
{
    const double q = power / decibelRatio(device.saturationPower);
    return 2.1587 / (1.0 + 1.1517 * q) * std::exp(Complex(0.0, 4.0033 * q / (1.0 + 9.1040 * q)));
}

Complex cubic(const DeviceSettings& device, double power)
{
    return 1.0 - power / decibelRatio(device.thirdOrderIntercept);
}

struct NamedGain
{
    const char* name;
    DeviceGain gain;
};

const NamedGain gains[] = {
    {"rapp", rapp}, {"soft", softLimiter}, {"saleh", saleh}, {"cubic", cubic}};

// What the orders that were calculated leave of the total goes to one more.
template <typename Part> QVector<double> withRest(const QVector<Part>& parts, double total)
{
    QVector<double> orders;
    for (const Part& part : parts) {
        orders << std::norm(part);
    }
    return orders << std::max(0.0, total - std::accumulate(orders.begin(), orders.end(), 0.0));
}

} // namespace

DeviceGain gainOf(const DeviceSettings& device)
{
    const auto* found =
        std::find_if(std::begin(gains), std::end(gains), [&device](const NamedGain& row) {
            return device.name == QLatin1String(row.name);
        });
    return found == std::end(gains) ? nullptr : found->gain;
}

double loadingOf(const DeviceSettings& converter, double power)
{
    return converter.fullScale ? std::sqrt(2.0 * decibelRatio(*converter.fullScale) / power)
                               : converter.loadingFactor;
}

// Over the amplitude r, u = r^2, of the functions sqrt(u exp(-u) / (m+1)) L_m^(1)(u), which are
// orthonormal over u.
QVector<double> memorylessOrders(DeviceGain gain, const DeviceSettings& device, double power)
{
    constexpr double longest = 20.0; // where the last order's function has died away
    constexpr double step = longest / steps;
    QVector<Complex> parts(distortionOrderCount);
    double total = 0.0;
    for (int k = 0; k < steps; ++k) {
        const double r = (k + 0.5) * step;
        const double u = r * r;
        const double weight = r * std::exp(-0.5 * u);
        const Complex output = weight * gain(device, power * u);
        const Complex element = output * 2.0 * r * step;
        total += std::norm(output) * 2.0 * r * step;
        double before = 0.0;
        double laguerre = weight;
        for (int m = 0; m < distortionOrderCount; ++m) {
            parts[m] += element * laguerre / std::sqrt(m + 1.0);
            const double next = ((2.0 * m + 2.0 - u) * laguerre - (m + 1.0) * before) / (m + 1.0);
            before = laguerre;
            laguerre = next;
        }
    }
    return withRest(parts, total);
}

// Orders 1, 3, 5, ... of a normal value that is clipped at the loading; both signs at once.
QVector<double> clippingOrders(double loading)
{
    constexpr double widest = 14.0;
    constexpr double step = widest / steps;
    QVector<double> parts(distortionOrderCount, 0.0);
    double total = 0.0;
    for (int k = 0; k < steps; ++k) {
        const double x = (k + 0.5) * step;
        const double output = std::min(x, loading);
        const double element = 2.0 * output * std::exp(-0.5 * x * x) / std::sqrt(2.0 * pi) * step;
        total += element * output;
        double before = 1.0;
        double hermite = x;
        for (int n = 1; n < 2 * distortionOrderCount; ++n) {
            if (n % 2 == 1) {
                parts[n / 2] += element * hermite;
            }
            const double next = (x * hermite - std::sqrt(double(n)) * before) / std::sqrt(n + 1.0);
            before = hermite;
            hermite = next;
        }
    }
    return withRest(parts, total);
}
