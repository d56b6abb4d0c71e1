// Values of options, checked. A failure names the option, what it takes and what came.
#pragma once

#include "cli/arguments.h"

#include <QVector>

// What an option's number may be; both ends count.
struct Range
{
    double lowest;
    double highest;
    const char* unit; // as in "dB"; empty for a plain number
};

// A finite number in the C locale. what names it in the failure, as in "--target".
double numberOf(const QString& text, const QString& what, const Range& range);
int wholeNumberOf(const QString& text, const QString& what, int lowest, int highest);

// A ratio in dB of "--threshold".
double thresholdOf(const QString& text);

// That of an option, or the other value when it isn't given.
double numberOr(const Arguments& arguments, const QString& option, const Range& range,
                double otherwise);
int wholeNumberOr(const Arguments& arguments, const QString& option, int lowest, int highest,
                  int otherwise);
