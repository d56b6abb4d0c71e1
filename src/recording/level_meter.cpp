#include "recording/level_meter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr int lanes = 8; // sums side by side, so that one addition needn't wait for the last

} // namespace

LevelSums::LevelSums(const SampleType& itsType)
    : type(&itsType),
      counts(itsType.integerBits > 0 ? std::size_t{1} << itsType.integerBits : std::size_t{0})
{
}

void LevelSums::add(const double* pairs, qint64 count)
{
    double sums[lanes] = {};
    double peaks[lanes] = {};
    const qint64 values = 2 * count;
    qint64 k = 0;
    for (; k + lanes <= values; k += lanes) {
        for (int l = 0; l < lanes; ++l) {
            sums[l] += pairs[k + l] * pairs[k + l];
            peaks[l] = std::max(peaks[l], std::abs(pairs[k + l]));
        }
    }
    for (int l = 0; k < values; ++k, ++l) {
        sums[l] += pairs[k] * pairs[k];
        peaks[l] = std::max(peaks[l], std::abs(pairs[k]));
    }
    for (int l = 0; l < lanes; ++l) {
        squares += sums[l];
        largest = std::max(largest, peaks[l]);
    }
    samples += count;
    if (!counts.empty()) {
        this->count(pairs, count);
    }
}

void LevelSums::count(const double* pairs, qint64 sampleCount)
{
    const int half = 1 << (type->integerBits - 1);
    const int step = type->isComplex ? 1 : 2;
    for (qint64 k = 0; k < 2 * sampleCount; k += step) {
        ++counts[static_cast<std::size_t>(static_cast<int>(pairs[k] * half) + half)];
    }
}

LevelSums& LevelSums::operator+=(const LevelSums& other)
{
    squares += other.squares;
    largest = std::max(largest, other.largest);
    samples += other.samples;
    for (std::size_t k = 0; k < counts.size(); ++k) {
        counts[k] += other.counts[k];
    }
    return *this;
}

bool LevelSums::isFinite() const
{
    return std::isfinite(squares);
}

double LevelSums::power() const
{
    const double mean = squares / static_cast<double>(samples);
    return type->isComplex ? mean : 2.0 * mean;
}

double LevelSums::peak() const
{
    return largest;
}

double LevelSums::clippedShare() const
{
    constexpr quint64 heap = 2; // times the next value's count
    const auto isThere = [](quint64 count) { return count > 0; };
    if (std::count_if(counts.begin(), counts.end(), isThere) < 3) {
        return 0.0; // so few values tell nothing
    }
    const auto first = std::find_if(counts.begin(), counts.end(), isThere);
    const auto last = std::find_if(counts.rbegin(), counts.rend(), isThere);
    const auto inward = std::find_if(first + 1, counts.end(), isThere);
    const auto downward = std::find_if(last + 1, counts.rend(), isThere);
    const quint64 low = *first > heap * *inward ? *first : 0;
    const quint64 high = *last > heap * *downward ? *last : 0;
    const double components = static_cast<double>(samples) * (type->isComplex ? 2.0 : 1.0);
    return static_cast<double>(low + high) / components;
}
