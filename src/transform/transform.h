// The discrete Fourier transform of the signal engine. No state: any number of threads may
// transform separate data at once.
//
// The samples are fixed to the bit: the twiddle factors come from a recurrence and carry its
// rounding, so they are never taken from a table or another library. The textbook loop that
// defines every bit stands in tests/transform/reference_transform.h.
//
// Lengths are meant to be powers of two. Any other length gives no meaningful result but
// stays inside its data.
#pragma once

#include "transform/samples.h"

#include <QVector>

#include <memory>

class LongTransform;

// In place: element k becomes 1/sqrt(N) times the sum over n of x[n] exp(+j 2 pi n k / N).
// Positive exponent, unitary scaling.
// Long transforms use several cores, at most the given number of threads; the bits are the same
// for any number.
void fft(ComplexBuffer& buffer);
void fft(ComplexBuffer& buffer, int threads);

// fft for many runs of values of one length, real and imaginary parts apart: the twiddle factors
// are computed once, which takes as long as a short transform. Any number of threads may run one
// object at once.
class PreparedTransform
{
public:
    explicit PreparedTransform(quint64 count, int threads = 1);
    ~PreparedTransform();

    void run(Split values) const; // in place

private:
    const quint64 count;
    const std::unique_ptr<const LongTransform> longOne; // null for a length that has none
};

// In place on two vectors of at least n elements: the transform of re + j im by fft, with
// the factor 1/sqrt(n) and no other. Throws std::bad_alloc when memory runs out.
void forwardTransform(QVector<double>& re, QVector<double>& im, quint32 n);

// In place on two vectors of at least n elements: 1/(n sqrt(n)) times the sum over m of
// (re[m] + j im[m]) exp(-j 2 pi m k / n). Called with the quadrature vector first it turns
// the exponent's sign, so that a positive bin is a positive frequency. Deliberate: the
// scaling is doubled, for SignalData::buildTransformInput multiplies by N beforehand.
void inverseTransform(QVector<double>& re, QVector<double>& im, quint32 n);
