// The textbook loop that defines every bit of the transform, literal and unoptimised: the
// order of the operations here is the order of the arithmetic that the program promises.
// Tests compare the production kernel with it bit for bit. Not to be improved.
#pragma once

#include <QVector>

#include <cmath>
#include <complex>
#include <utility>
#include <vector>

namespace reference {

using Complex = std::complex<double>;

inline Complex product(Complex t, Complex w)
{
    return {t.real() * w.real() - t.imag() * w.imag(), t.real() * w.imag() + t.imag() * w.real()};
}

inline quint32 reverseBits(quint32 a)
{
    a = ((a & 0xAAAAAAAAU) >> 1) | ((a & 0x55555555U) << 1);
    a = ((a & 0xCCCCCCCCU) >> 2) | ((a & 0x33333333U) << 2);
    a = ((a & 0xF0F0F0F0U) >> 4) | ((a & 0x0F0F0F0FU) << 4);
    a = ((a & 0xFF00FF00U) >> 8) | ((a & 0x00FF00FFU) << 8);
    return (a >> 16) | (a << 16);
}

inline void fft(std::vector<Complex>& x)
{
    const std::size_t N = x.size();
    if (N == 0) {
        return;
    }
    const double theta = 3.141592653589793 / static_cast<double>(N);
    double c = std::cos(theta);
    double s = std::sin(theta);
    std::size_t k = N;
    while (k > 1) {
        const std::size_t n = k;
        k /= 2;
        const double squaredC = c * c - s * s;
        const double squaredS = 2 * c * s;
        c = squaredC;
        s = squaredS;
        Complex w(1.0, 0.0);
        for (std::size_t l = 0; l < k; ++l) {
            for (std::size_t a = l; a < N; a += n) {
                const std::size_t b = a + k;
                if (b >= N) { // only where N is no power of two
                    continue;
                }
                const Complex t = x[a] - x[b];
                x[a] = x[a] + x[b];
                x[b] = product(t, w);
            }
            w = Complex(w.real() * c - w.imag() * s, w.imag() * c + w.real() * s);
        }
    }
    const auto m = static_cast<quint32>(std::log2(static_cast<double>(N)));
    for (quint32 a = 0; a < N; ++a) {
        const quint32 b = reverseBits(a) >> ((32 - m) % 32);
        if (b > a) {
            std::swap(x[a], x[b]);
        }
    }
    const double f = 1.0 / std::sqrt(static_cast<double>(N));
    for (Complex& element : x) {
        element = {element.real() * f - element.imag() * 0.0,
                   element.imag() * f + element.real() * 0.0};
    }
}

inline std::vector<Complex> joined(const QVector<double>& re, const QVector<double>& im)
{
    std::vector<Complex> x;
    x.reserve(static_cast<std::size_t>(re.size()));
    for (int i = 0; i < re.size(); ++i) {
        x.emplace_back(re[i], im[i]);
    }
    return x;
}

inline void forwardTransform(QVector<double>& re, QVector<double>& im)
{
    std::vector<Complex> x = joined(re, im);
    fft(x);
    for (int i = 0; i < re.size(); ++i) {
        re[i] = x[static_cast<std::size_t>(i)].real();
        im[i] = x[static_cast<std::size_t>(i)].imag();
    }
}

inline void inverseTransform(QVector<double>& re, QVector<double>& im)
{
    std::vector<Complex> x = joined(re, im);
    for (Complex& element : x) {
        element = std::conj(element);
    }
    fft(x);
    const auto n = static_cast<double>(x.size());
    for (int i = 0; i < re.size(); ++i) {
        const Complex element = std::conj(x[static_cast<std::size_t>(i)]);
        // The division by (n, 0.0) in Smith's form.
        re[i] = (element.real() + element.imag() * 0.0) / n;
        im[i] = (element.imag() - element.real() * 0.0) / n;
    }
}

} // namespace reference
