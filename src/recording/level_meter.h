// How far a recording drives its range. Powers are relative to a carrier whose components just
// reach full scale; of a real recording, to a sine that does (0 dBFS).
#pragma once

#include "recording/sample_type.h"

#include <vector>

// Of some samples; those of several parts add up to those of the whole.
class LevelSums
{
public:
    explicit LevelSums(const SampleType& itsType);

    // Parts as SampleType::toParts writes them.
    void add(const double* re, const double* im, qint64 count);
    LevelSums& operator+=(const LevelSums& other);

    // False where a sample is no finite number, or its square isn't.
    bool isFinite() const;

    double power() const;                                    // mean, 1 at full scale
    double peak() const;                                     // largest component, 1 at full scale
    bool hasClippedShare() const { return !counts.empty(); } // integers only
    // Of the components, those at the lowest and the highest value that occur, where they heap up
    // to more than twice their neighbours: noise that isn't clipped gets rarer towards its ends.
    double clippedShare() const;

private:
    void addComponents(const double* values, qint64 count);

    const SampleType* type;
    double squares = 0.0;
    double largest = 0.0;
    qint64 samples = 0;
    std::vector<quint64> counts; // of each value of a component of an integer type, ascending
};
