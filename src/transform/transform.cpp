#include "transform/transform.h"

#include <algorithm>
#include <cmath>

namespace {

using Element = ComplexBuffer::Element;

constexpr double pi = 3.141592653589793;

// One stage of butterflies at distance k = n/2, with the twiddle advancing by rotation.
void runStage(ComplexBuffer& x, quint64 n, Element rotation)
{
    const quint64 count = x.size();
    const quint64 k = n / 2;
    Element w(1.0, 0.0);
    for (quint64 l = 0; l < k; ++l) {
        for (quint64 a = l; a + k < count; a += n) {
            const Element t = x[a] - x[a + k];
            x[a] += x[a + k];
            x[a + k] = {t.real() * w.real() - t.imag() * w.imag(),
                        t.real() * w.imag() + t.imag() * w.real()};
        }
        w = {w.real() * rotation.real() - w.imag() * rotation.imag(),
             w.imag() * rotation.real() + w.real() * rotation.imag()};
    }
}

quint32 reversedBits(quint32 value)
{
    value = ((value >> 1) & 0x55555555U) | ((value & 0x55555555U) << 1);
    value = ((value >> 2) & 0x33333333U) | ((value & 0x33333333U) << 2);
    value = ((value >> 4) & 0x0F0F0F0FU) | ((value & 0x0F0F0F0FU) << 4);
    value = ((value >> 8) & 0x00FF00FFU) | ((value & 0x00FF00FFU) << 8);
    return (value >> 16) | (value << 16);
}

void reorder(ComplexBuffer& x)
{
    const auto bits = static_cast<quint32>(std::log2(static_cast<double>(x.size())));
    const quint32 shift = (32 - bits) % 32;
    for (quint32 a = 0; a < x.size(); ++a) {
        const quint32 b = reversedBits(a) >> shift;
        if (b > a) {
            std::swap(x[a], x[b]);
        }
    }
}

void scale(ComplexBuffer& x)
{
    const double f = 1.0 / std::sqrt(static_cast<double>(x.size()));
    for (quint64 i = 0; i < x.size(); ++i) {
        x[i] = {x[i].real() * f - x[i].imag() * 0.0, x[i].imag() * f + x[i].real() * 0.0};
    }
}

} // namespace

void fft(ComplexBuffer& buffer)
{
    if (buffer.size() == 0) {
        return;
    }
    const double theta = pi / static_cast<double>(buffer.size());
    double c = std::cos(theta);
    double s = std::sin(theta);
    for (quint64 n = buffer.size(); n > 1; n /= 2) {
        const double doubledSine = 2 * c * s;
        c = c * c - s * s;
        s = doubledSine;
        runStage(buffer, n, {c, s});
    }
    reorder(buffer);
    scale(buffer);
}

void forwardTransform(QVector<double>& re, QVector<double>& im, quint32 n)
{
    ComplexBuffer buffer(n);
    const int end = static_cast<int>(n);
    for (int i = 0; i < end; ++i) {
        buffer[static_cast<quint64>(i)] = {re.at(i), im.at(i)};
    }
    fft(buffer);
    for (int i = 0; i < end; ++i) {
        re[i] = buffer[static_cast<quint64>(i)].real();
        im[i] = buffer[static_cast<quint64>(i)].imag();
    }
}

void inverseTransform(QVector<double>& re, QVector<double>& im, quint32 n)
{
    ComplexBuffer buffer(n);
    const int end = static_cast<int>(n);
    for (int i = 0; i < end; ++i) {
        buffer[static_cast<quint64>(i)] = {re.at(i), -im.at(i)};
    }
    fft(buffer);
    const double divisor = n;
    for (int i = 0; i < end; ++i) {
        const double real = buffer[static_cast<quint64>(i)].real();
        const double imag = -buffer[static_cast<quint64>(i)].imag();
        re[i] = (real + imag * 0.0) / divisor;
        im[i] = (imag - real * 0.0) / divisor;
    }
}
