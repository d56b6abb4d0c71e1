#include "recording/level_meter.h"

#include "transform/vector_clones.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

// Sums side by side, so that one addition needn't wait for the last.
struct Lanes
{
    EightDoubles squares{};
    EightDoubles largest{};
};
constexpr qint64 laneCount = 8;

VECTOR_CLONES
void addWholeLanes(const double* values, qint64 count, Lanes& lanes)
{
    for (qint64 k = 0; k + laneCount <= count; k += laneCount) {
        EightDoubles value;
        load(values + k, value);
        const EightDoubles size = value < 0.0 ? -value : value;
        lanes.squares += value * value;
        lanes.largest = size > lanes.largest ? size : lanes.largest;
    }
}

} // namespace

LevelSums::LevelSums(const SampleType& itsType)
    : type(&itsType),
      counts(itsType.integerBits > 0 ? std::size_t{1} << itsType.integerBits : std::size_t{0})
{
}

void LevelSums::add(const double* re, const double* im, qint64 count)
{
    addComponents(re, count);
    if (type->isComplex) {
        addComponents(im, count);
    }
    samples += count;
}

void LevelSums::addComponents(const double* values, qint64 count)
{
    Lanes lanes;
    addWholeLanes(values, count, lanes);
    for (int lane = 0; lane < laneCount; ++lane) {
        squares += lanes.squares[lane];
        largest = std::max(largest, lanes.largest[lane]);
    }
    for (qint64 k = count / laneCount * laneCount; k < count; ++k) {
        squares += values[k] * values[k];
        largest = std::max(largest, std::abs(values[k]));
    }
    if (!counts.empty()) {
        const int half = 1 << (type->integerBits - 1);
        for (qint64 k = 0; k < count; ++k) {
            ++counts[static_cast<std::size_t>(static_cast<qint64>(values[k] * half) + half)];
        }
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
