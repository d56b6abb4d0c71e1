// The models that the simulated instruments can be: whose words they know, what they allow, which
// options they have.
//
// To add a model: its row in instrument_types.cpp; for a generator with words of its own also a
// dialect here and in the rows of command_table.cpp.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

// Both ends belong to the range.
struct Range
{
    double lowest;
    double highest;

    // False for not-a-number too.
    bool holds(double value) const { return value >= lowest && value <= highest; }
};

// What an instrument allows; base units. A generator has frequencies, levels and attenuations only.
struct Ranges
{
    Range frequency;
    Range level; // an analyzer's reference level
    Range attenuation;
    Range span;
    Range bandwidth; // resolution and video
    Range sweepTime;
};

// Whose words a command is, one bit a dialect. One model knows one dialect or, where nobody chose
// a model, all of them.
namespace Dialect {
constexpr quint32 rigl = 1U << 0;
constexpr quint32 lyr = 1U << 1;
constexpr quint32 altair = 1U << 2;
constexpr quint32 denb = 1U << 3; // ORI and PHD(A) too
constexpr quint32 phdB = 1U << 4;
constexpr quint32 cyg = 1U << 5;
constexpr quint32 kauA = 1U << 6;
constexpr quint32 kauB = 1U << 7;
constexpr quint32 tau = 1U << 8;
constexpr quint32 zub = 1U << 9;
constexpr quint32 all = ~0U;
} // namespace Dialect

struct InstrumentType
{
    const char* name; // empty for the one that nobody chose
    quint32 dialects;
    Ranges ranges;
    const char* options; // the answer to "*OPT?"
};

// The first row is the one that nobody chose: all words, the widest ranges.
const std::vector<InstrumentType>& generatorTypes();
const std::vector<InstrumentType>& microwaveTypes();
const std::vector<InstrumentType>& analyzerTypes();

// Null when there is none of the name; an empty name finds the first row.
const InstrumentType* findType(const std::vector<InstrumentType>& types, const QString& name);

// The names that can be chosen.
QStringList typeNames(const std::vector<InstrumentType>& types);
