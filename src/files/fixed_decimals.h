// Numbers as text with six decimals, the bytes of QString::number(value, 'f', 6) in a twentieth of
// its time. A value times a million, rounded to a whole number, has the digits that are wanted,
// unless the rounding of the product could have moved it over the middle between two such numbers.
// There, and for everything large or odd, Qt's own conversion is asked.
#pragma once

#include <QString>

#include <array>
#include <cmath>
#include <cstring>

constexpr int longestFixedDecimals = 400; // bytes; a double has at most 309 digits before the point

namespace fixed_decimals {

using Pairs = std::array<char, 200>;

constexpr Pairs makePairs()
{
    Pairs pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}

constexpr Pairs pairs = makePairs(); // "00" to "99"

inline char* putPair(quint32 value, char* to)
{
    std::memcpy(to, pairs.data() + std::size_t{2} * value, 2);
    return to + 2;
}

// At most four digits, without leading zeros.
inline char* putWhole(quint32 value, char* to)
{
    if (value >= 10) {
        to = putWhole(value / 10, to);
    }
    *to = static_cast<char>('0' + value % 10);
    return to + 1;
}

inline char* putSlowly(double value, char* to)
{
    const QByteArray text = QString::number(value, 'f', 6).toLatin1();
    std::memcpy(to, text.constData(), static_cast<std::size_t>(text.size()));
    return to + text.size();
}

} // namespace fixed_decimals

// Writes the text, without a terminator, and returns where it ends.
inline char* putFixedDecimals(double value, char* to)
{
    using namespace fixed_decimals;
    constexpr double limit = 1000.0;
    constexpr double million = 1e6;
    constexpr double doubt = 1e-6; // many times the rounding of a product below 1e9
    const double scaled = std::abs(value) * million;
    if (!(scaled < limit * million)) { // not-a-number, too
        return putSlowly(value, to);
    }
    const auto below = static_cast<quint32>(scaled);
    const double fraction = scaled - below;
    const quint32 digits = below + (fraction > 0.5 ? 1 : 0);
    if (std::abs(fraction - 0.5) < doubt || digits == 0) { // a zero has a sign to think about
        return putSlowly(value, to);
    }
    if (value < 0.0) {
        *to++ = '-';
    }
    const quint32 decimals = digits % 1000000;
    to = putWhole(digits / 1000000, to);
    *to++ = '.';
    to = putPair(decimals / 10000, to);
    to = putPair(decimals / 100 % 100, to);
    return putPair(decimals % 100, to);
}
