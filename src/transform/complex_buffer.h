// A contiguous, owned array of complex numbers for the transform: pairs of doubles, real
// part first, zero when made.
#pragma once

#include "base/large_pages.h"

#include <complex>
#include <new>
#include <vector>

class ComplexBuffer
{
public:
    using Element = std::complex<double>;

    // Throws std::bad_alloc above 2^60 - 1 elements or when memory runs out.
    explicit ComplexBuffer(quint64 count)
    {
        elements.reserve(checked(count));
        preferLargePages(elements.data(), count * sizeof(Element));
        elements.resize(count);
    }

    quint64 size() const { return elements.size(); }
    Element* data() { return elements.data(); }
    const Element* data() const { return elements.data(); }
    Element& operator[](quint64 index) { return elements[index]; }
    const Element& operator[](quint64 index) const { return elements[index]; }

private:
    static quint64 checked(quint64 count)
    {
        constexpr quint64 largestCount = (quint64{1} << 60) - 1;
        if (count > largestCount) {
            throw std::bad_alloc();
        }
        return count;
    }

    std::vector<Element> elements;
};

// The plain complex product, with none of the checks for infinities that the library's own
// operator makes: these operations, in this order, are what the samples' bits rest on.
inline ComplexBuffer::Element plainProduct(ComplexBuffer::Element t, ComplexBuffer::Element w)
{
    return {t.real() * w.real() - t.imag() * w.imag(), t.real() * w.imag() + t.imag() * w.real()};
}
