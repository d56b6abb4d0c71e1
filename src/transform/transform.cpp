#include "transform/transform.h"

#include "transform/bit_reversal.h"
#include "transform/butterfly_stages.h"

#include <cmath>

namespace {

using Element = ComplexBuffer::Element;

constexpr double pi = 3.141592653589793;

bool isPowerOfTwo(quint64 count)
{
    return (count & (count - 1)) == 0;
}

// The stages for a length that is no power of two. The last butterfly of a stage can then
// miss its partner; it is left out, which keeps the loop inside the buffer.
void runPlainStages(ComplexBuffer& x)
{
    const quint64 count = x.size();
    const double theta = pi / static_cast<double>(count);
    Element rotation(std::cos(theta), std::sin(theta));
    for (quint64 n = count; n > 1; n /= 2) {
        const quint64 k = n / 2;
        rotation = plainProduct(rotation, rotation);
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
}

} // namespace

void fft(ComplexBuffer& buffer)
{
    const quint64 count = buffer.size();
    if (count == 0) {
        return;
    }
    if (isPowerOfTwo(count)) {
        runButterflyStages(buffer.data(), count);
    } else {
        runPlainStages(buffer);
    }
    reorderAndScale(buffer.data(), count, 1.0 / std::sqrt(static_cast<double>(count)));
}

void forwardTransform(QVector<double>& re, QVector<double>& im, quint32 n)
{
    ComplexBuffer buffer(n);
    double* real = re.data();
    double* imag = im.data();
    for (quint32 i = 0; i < n; ++i) {
        buffer[i] = {real[i], imag[i]};
    }
    fft(buffer);
    for (quint32 i = 0; i < n; ++i) {
        real[i] = buffer[i].real();
        imag[i] = buffer[i].imag();
    }
}

// Conjugate, transform, conjugate, divide: the conjugates are taken while the buffer is filled
// and emptied, so that one buffer serves.
void inverseTransform(QVector<double>& re, QVector<double>& im, quint32 n)
{
    ComplexBuffer buffer(n);
    double* real = re.data();
    double* imag = im.data();
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
