#include "recording/sample_type.h"

#include "transform/vector_clones.h"

#include <QtEndian>

#include <algorithm>
#include <type_traits>

namespace {

template <typename Word> constexpr double unitOf()
{
    if constexpr (std::is_integral_v<Word>) {
        return 1.0 / static_cast<double>(1 << (8 * sizeof(Word) - 1));
    }
    return 1.0;
}

template <typename Word> double numberAt(const char* raw, qint64 index)
{
    const Word word = qFromLittleEndian<Word>(raw + index * qint64{sizeof(Word)});
    return static_cast<double>(word) * unitOf<Word>();
}

template <typename Word> void complexToParts(const char* raw, qint64 count, Split parts)
{
    double* const re = parts.re;
    double* const im = parts.im;
    IN_ANY_ORDER
    for (qint64 k = 0; k < count; ++k) {
        re[k] = numberAt<Word>(raw, 2 * k);
        im[k] = numberAt<Word>(raw, 2 * k + 1);
    }
}

// The type that most recorders write; a template can't be cloned.
VECTOR_CLONES
void floatsToParts(const char* raw, qint64 count, Split parts)
{
    complexToParts<float>(raw, count, parts);
}

template <typename Word> void realToParts(const char* raw, qint64 count, Split parts)
{
    for (qint64 k = 0; k < count; ++k) {
        parts.re[k] = numberAt<Word>(raw, k);
    }
    std::fill_n(parts.im, count, 0.0);
}

const SampleType sampleTypes[] = {
    {"cf32", 8, true, 0, floatsToParts},           {"cf64", 16, true, 0, complexToParts<double>},
    {"ci16", 4, true, 16, complexToParts<qint16>}, {"ci8", 2, true, 8, complexToParts<qint8>},
    {"rf32", 4, false, 0, realToParts<float>},     {"rf64", 8, false, 0, realToParts<double>},
    {"ri16", 2, false, 16, realToParts<qint16>},
};

} // namespace

const SampleType* sampleTypeOf(const QString& name)
{
    const auto* const found =
        std::find_if(std::begin(sampleTypes), std::end(sampleTypes),
                     [&name](const SampleType& type) { return name == QLatin1String(type.name); });
    return found == std::end(sampleTypes) ? nullptr : found;
}

QStringList sampleTypeNames()
{
    QStringList names;
    for (const SampleType& type : sampleTypes) {
        names << type.name;
    }
    return names;
}
