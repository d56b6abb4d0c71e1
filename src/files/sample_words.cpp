#include "files/sample_words.h"

#include "transform/vector_clones.h"

#include <QtEndian>

#include <cmath>

namespace {

VECTOR_CLONES
bool allFitInts(const double* values, int count)
{
    constexpr double limit = 2147483647.0;
    int outside = 0;
    for (int i = 0; i < count; ++i) {
        outside |= static_cast<int>(!(std::abs(values[i]) < limit)); // not-a-number, too
    }
    return outside == 0;
}

VECTOR_CLONES
void truncateInts(const double* values, int count, char* words)
{
    for (int i = 0; i < count; ++i) {
        const auto word = static_cast<quint16>(static_cast<qint32>(values[i]));
        qToLittleEndian(word, words + qint64{2} * i);
    }
}

} // namespace

void truncateToWords(const double* values, int count, char* words)
{
    if (allFitInts(values, count)) {
        truncateInts(values, count, words);
        return;
    }
    for (int i = 0; i < count; ++i) {
        qToLittleEndian(truncatedWord(values[i]), words + qint64{2} * i);
    }
}
