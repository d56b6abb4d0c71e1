// Numbers off the front of plain text, surely or not at all. Where the text is of the common kind,
// digits with at most a minus, a point and an exponent, the value is the one that QString::toInt
// and QString::toDouble give, in a small part of their time: a correctly rounded conversion has but
// one value. Up to 19 digits that make a whole number below 2^53 are divided by an exact power of
// ten, which rounds once; others are left to std::from_chars. For any other text, and for values
// near the ends of the range, the functions return false and the caller asks Qt.
//
// They stop at the first byte that can't belong to the number; whether that may follow a number is
// the caller's to say.
#pragma once

#include <QtGlobal>

#include <array>
#include <charconv>
#include <cmath>

struct TextRange
{
    const char* begin;
    const char* end;

    qint64 size() const { return end - begin; }
    bool startsWith(char byte) const { return begin != end && *begin == byte; }
};

// Returns how many digits there were; value goes on modulo 2^64.
inline qint64 takeDigits(TextRange& text, quint64& value)
{
    const char* const first = text.begin;
    for (; text.begin != text.end; ++text.begin) {
        const auto digit = static_cast<unsigned char>(*text.begin - '0');
        if (digit > 9) {
            break;
        }
        value = value * 10 + digit;
    }
    return text.begin - first;
}

inline bool takeSureIndex(TextRange& text, int& value)
{
    constexpr qint64 mostDigits = 9; // fits an int whatever they are
    quint64 number = 0;
    const qint64 digits = takeDigits(text, number);
    value = static_cast<int>(number);
    return digits >= 1 && digits <= mostDigits;
}

inline bool takeByFromChars(TextRange& text, double& value)
{
#ifdef __cpp_lib_to_chars
    constexpr qint64 longest = 40;
    constexpr double smallest = 1e-290;
    constexpr double largest = 1e290;
    const std::from_chars_result result = std::from_chars(text.begin, text.end, value);
    const qint64 length = result.ptr - text.begin;
    text.begin = result.ptr;
    const double magnitude = std::abs(value);
    return result.ec == std::errc() && length <= longest && magnitude >= smallest &&
           magnitude <= largest;
#else
    Q_UNUSED(text)
    Q_UNUSED(value)
    return false;
#endif
}

inline bool takeSureDouble(TextRange& text, double& value)
{
    constexpr std::array<double, 20> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,
                                                    1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13,
                                                    1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
    constexpr qint64 mostDigits = 19; // fit 64 bits
    constexpr quint64 exactBelow = quint64{1} << 53;
    TextRange rest = text;
    const bool negative = rest.startsWith('-');
    rest.begin += negative ? 1 : 0;
    quint64 number = 0;
    qint64 decimals = 0;
    const qint64 whole = takeDigits(rest, number);
    if (whole == 0) {
        return false;
    }
    if (rest.startsWith('.')) {
        ++rest.begin;
        decimals = takeDigits(rest, number);
        if (decimals == 0) {
            return false;
        }
    }
    const bool hasExponent = rest.startsWith('e') || rest.startsWith('E');
    if (hasExponent || whole + decimals > mostDigits || number >= exactBelow) {
        return takeByFromChars(text, value);
    }
    text = rest;
    const double magnitude =
        static_cast<double>(static_cast<qint64>(number)) / powersOfTen[decimals];
    value = negative ? -magnitude : magnitude;
    return number != 0 || !negative; // a negative zero is Qt's to read
}
