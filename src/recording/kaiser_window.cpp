#include "recording/kaiser_window.h"

#include "transform/pi.h"

#include <cmath>
#include <complex>
#include <cstddef>

namespace {

// Modified Bessel function of the first kind and order 0, by its power series.
double besselI0(double x)
{
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; term > 1e-18 * sum; ++k) {
        term *= x * x / (4.0 * k * k);
        sum += term;
    }
    return sum;
}

// Squared correlation of two values that are so many bins and samples apart.
double correlation(const std::vector<double>& window, double bins, int samples)
{
    const auto length = static_cast<int>(window.size());
    std::complex<double> sum;
    double squares = 0.0;
    for (int k = 0; k < length; ++k) {
        const double value = window[static_cast<std::size_t>(k)];
        squares += value * value;
        const std::size_t apart = static_cast<std::size_t>(k) + static_cast<std::size_t>(samples);
        if (apart < window.size()) {
            const double turn = 2.0 * pi * bins * k / length;
            sum += value * window[apart] * std::polar(1.0, turn);
        }
    }
    return std::norm(sum / squares);
}

} // namespace

std::vector<double> kaiserWindow(int length)
{
    std::vector<double> window;
    window.reserve(static_cast<std::size_t>(length));
    for (int k = 0; k < length; ++k) {
        const double place = 2.0 * k / length - 1.0;
        window.push_back(besselI0(kaiserBeta * std::sqrt(1.0 - place * place)) /
                         besselI0(kaiserBeta));
    }
    return window;
}

double independentCells(double bins, double segments, int hopDivisor)
{
    constexpr int length = 256;  // the correlations are those of any length
    constexpr int mostBins = 12; // beyond them there is none
    const std::vector<double> window = kaiserWindow(length);
    double sum = 0.0;
    for (int apart = 1 - hopDivisor; apart < hopDivisor; ++apart) {
        const double pairs = 1.0 - std::abs(apart) / segments;
        for (int m = -mostBins; m <= mostBins && pairs > 0.0; ++m) {
            const double both = pairs * (1.0 - std::abs(m) / bins);
            sum += both > 0.0 ? both * correlation(window, m, std::abs(apart) * length / hopDivisor)
                              : 0.0;
        }
    }
    return bins * segments / sum;
}
