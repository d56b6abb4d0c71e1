// The ways in which files keep samples. All are little-endian; integers mean shares of full scale.
//
// To add one: its row in the table of sample_type.cpp.
#pragma once

#include "transform/samples.h"

#include <QString>
#include <QStringList>

struct SampleType
{
    const char* name;
    int bytes; // of a sample, both components
    bool isComplex;
    int integerBits; // of a component; 0 for floating point

    // Writes the parts of count samples as doubles, full scale at 1; imaginary parts of real
    // samples are 0. raw may lie anywhere.
    void (*toParts)(const char* raw, qint64 count, Split parts);
};

// cf32, cf64, ci16, ci8, rf32, rf64 or ri16; null for another name.
const SampleType* sampleTypeOf(const QString& name);

QStringList sampleTypeNames();
