// The ways in which files keep samples. All are little-endian; integers mean shares of full scale.
//
// To add one: its row in the table of sample_type.cpp.
#pragma once

#include <QString>
#include <QStringList>

struct SampleType
{
    const char* name;
    int bytes; // of a sample, both components
    bool isComplex;
    int integerBits; // of a component; 0 for floating point

    // Writes count samples as pairs of doubles, full scale at 1; the second of a pair is 0 for real
    // samples. raw may lie anywhere.
    void (*toPairs)(const char* raw, qint64 count, double* pairs);
};

// cf32, cf64, ci16, ci8, rf32, rf64 or ri16; null for another name.
const SampleType* sampleTypeOf(const QString& name);

QStringList sampleTypeNames();
