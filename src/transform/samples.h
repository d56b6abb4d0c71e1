// Where the complex values of a transform lie: in one array of pairs, or in two arrays.
#pragma once

#include "transform/complex_buffer.h"

// Real and imaginary parts of runs of values, each contiguous.
struct Split
{
    double* re;
    double* im;

    Split at(quint64 offset) const { return {re + offset, im + offset}; }
};

enum class Parts { InPairs, Apart };

struct Samples
{
    double* re;
    double* im;
    quint64 stride; // doubles from one value to the next: 2 for pairs, 1 for two arrays

    static Samples pairs(ComplexBuffer::Element* x)
    {
        auto* parts = reinterpret_cast<double*>(x); // the layout that std::complex promises
        return {parts, parts + 1, 2};
    }
    static Samples arrays(double* re, double* im) { return {re, im, 1}; }

    Samples at(quint64 index) const { return {re + index * stride, im + index * stride, stride}; }
};
