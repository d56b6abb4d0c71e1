#include "recording/sample_type.h"

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

template <typename Word> void componentsToPairs(const char* raw, qint64 count, double* pairs)
{
    for (qint64 k = 0; k < 2 * count; ++k) {
        const Word word = qFromLittleEndian<Word>(raw + k * qint64{sizeof(Word)});
        pairs[k] = static_cast<double>(word) * unitOf<Word>();
    }
}

template <typename Word> void realsToPairs(const char* raw, qint64 count, double* pairs)
{
    for (qint64 k = 0; k < count; ++k) {
        const Word word = qFromLittleEndian<Word>(raw + k * qint64{sizeof(Word)});
        pairs[2 * k] = static_cast<double>(word) * unitOf<Word>();
        pairs[2 * k + 1] = 0.0;
    }
}

const SampleType sampleTypes[] = {
    {"cf32", 8, true, 0, componentsToPairs<float>},
    {"cf64", 16, true, 0, componentsToPairs<double>},
    {"ci16", 4, true, 16, componentsToPairs<qint16>},
    {"ci8", 2, true, 8, componentsToPairs<qint8>},
    {"rf32", 4, false, 0, realsToPairs<float>},
    {"rf64", 8, false, 0, realsToPairs<double>},
    {"ri16", 2, false, 16, realsToPairs<qint16>},
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
