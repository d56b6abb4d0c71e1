#include "transform/transform.h"

#include "base/parallel.h"
#include "transform/long_transform.h"
#include "transform/pi.h"

#include <cmath>
#include <utility>

namespace {

using Element = ComplexBuffer::Element;

quint32 reversedWord(quint32 value)
{
    value = ((value >> 1) & 0x55555555U) | ((value & 0x55555555U) << 1);
    value = ((value >> 2) & 0x33333333U) | ((value & 0x33333333U) << 2);
    value = ((value >> 4) & 0x0F0F0F0FU) | ((value & 0x0F0F0F0FU) << 4);
    value = ((value >> 8) & 0x00FF00FFU) | ((value & 0x00FF00FFU) << 8);
    return (value >> 16) | (value << 16);
}

// Stages, reordering and scaling as told by the textbook, for short lengths and for those that
// are no power of two. There the last butterfly of a stage can miss its partner; it is left out,
// which keeps the loop inside the buffer.
void transformPlainly(ComplexBuffer& x)
{
    const quint64 count = x.size();
    const double theta = pi / static_cast<double>(count);
    Element rotation(std::cos(theta), std::sin(theta));
    for (quint64 n = count; n > 1; n /= 2) {
        const quint64 k = n / 2;
        rotation = {rotation.real() * rotation.real() - rotation.imag() * rotation.imag(),
                    2 * rotation.real() * rotation.imag()};
        Element w(1.0, 0.0);
        for (quint64 l = 0; l < k; ++l) {
            for (quint64 a = l; a + k < count; a += n) {
                const Element t = x[a] - x[a + k];
                x[a] += x[a + k];
                x[a + k] = plainProduct(t, w);
            }
            w = plainProduct(w, rotation);
        }
    }
    const auto bits = static_cast<quint32>(std::log2(static_cast<double>(count)));
    for (quint32 a = 0; a < count; ++a) {
        // The shift count is taken modulo 32, so that 0 bits leave a 0 as it is.
        const quint32 b = reversedWord(a) >> ((32 - bits) % 32);
        if (b > a) {
            std::swap(x[a], x[b]);
        }
    }
    const double factor = unitaryScale(count);
    for (quint64 i = 0; i < count; ++i) {
        // The product with the complex number (factor, 0), signs of zeros and all.
        const Element value = x[i];
        x[i] = {value.real() * factor - value.imag() * 0.0,
                value.imag() * factor + value.real() * 0.0};
    }
}

} // namespace

void fft(ComplexBuffer& buffer)
{
    fft(buffer, usefulThreads());
}

void fft(ComplexBuffer& buffer, int threads)
{
    const quint64 count = buffer.size();
    if (LongTransform::suits(count)) {
        LongTransform(count, threads, Parts::InPairs).run(Samples::pairs(buffer.data()), false);
    } else if (count > 0) {
        transformPlainly(buffer);
    }
}

PreparedTransform::PreparedTransform(quint64 itsCount, int threads)
    : count(itsCount),
      longOne(LongTransform::suits(count)
                  ? std::make_unique<LongTransform>(count, threads, Parts::Apart)
                  : nullptr)
{
}

PreparedTransform::~PreparedTransform() = default;

void PreparedTransform::run(Split values) const
{
    if (longOne != nullptr) {
        longOne->run(Samples::arrays(values.re, values.im), false);
        return;
    }
    ComplexBuffer buffer(count);
    for (quint64 i = 0; i < count; ++i) {
        buffer[i] = {values.re[i], values.im[i]};
    }
    fft(buffer);
    for (quint64 i = 0; i < count; ++i) {
        values.re[i] = buffer[i].real();
        values.im[i] = buffer[i].imag();
    }
}

void forwardTransform(QVector<double>& re, QVector<double>& im, quint32 n)
{
    PreparedTransform(n, usefulThreads()).run({re.data(), im.data()});
}

// Conjugate, transform, conjugate, divide: the conjugates are taken while the values are read
// and written, so that no pass over memory is theirs.
void inverseTransform(QVector<double>& re, QVector<double>& im, quint32 n)
{
    double* real = re.data();
    double* imag = im.data();
    if (LongTransform::suits(n)) {
        LongTransform(n, usefulThreads(), Parts::Apart).run(Samples::arrays(real, imag), true);
        return;
    }
    ComplexBuffer buffer(n);
    for (quint32 i = 0; i < n; ++i) {
        buffer[i] = {real[i], -imag[i]};
    }
    fft(buffer);
    const double divisor = n;
    for (quint32 i = 0; i < n; ++i) {
        const double x = buffer[i].real();
        const double y = -buffer[i].imag();
        // Division by the complex number (n, 0) in Smith's form.
        real[i] = (x + y * 0.0) / divisor;
        imag[i] = (y - x * 0.0) / divisor;
    }
}
