// Numbers from plain text, surely or not at all. Where the text is of the common kind, digits with
// at most a minus, a point and an exponent, the value is the one that QString::toInt and
// QString::toDouble give, in a small part of their time: both conversions round correctly, so there
// is but one value. For any other text, and for values near the ends of the range, the functions
// return false and the caller asks Qt.
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <charconv>
#include <cmath>

struct TextRange
{
    const char* begin;
    const char* end;

    qint64 size() const { return end - begin; }
};

inline bool isDecimalDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

inline bool readSureIndex(TextRange text, int& value)
{
    constexpr qint64 mostDigits = 9; // fits an int whatever they are
    if (text.size() < 1 || text.size() > mostDigits) {
        return false;
    }
    value = 0;
    for (const char* at = text.begin; at != text.end; ++at) {
        if (!isDecimalDigit(*at)) {
            return false;
        }
        value = value * 10 + (*at - '0');
    }
    return true;
}

inline bool readSureDouble(TextRange text, double& value)
{
#ifdef __cpp_lib_to_chars
    constexpr qint64 longest = 40;
    constexpr double smallest = 1e-290;
    constexpr double largest = 1e290;
    const char* first = text.begin + (text.size() > 0 && *text.begin == '-' ? 1 : 0);
    if (first == text.end || text.size() > longest || !isDecimalDigit(*first)) {
        return false;
    }
    const char* point = std::find(first, text.end, '.');
    if (point != text.end && (point + 1 == text.end || !isDecimalDigit(point[1]))) {
        return false;
    }
    const std::from_chars_result result = std::from_chars(text.begin, text.end, value);
    if (result.ec != std::errc() || result.ptr != text.end) {
        return false;
    }
    const double magnitude = std::abs(value);
    const bool isPlainZero =
        magnitude == 0.0 && first == text.begin &&
        std::all_of(first, text.end, [](char byte) { return byte == '0' || byte == '.'; });
    return isPlainZero || (magnitude >= smallest && magnitude <= largest);
#else
    Q_UNUSED(text)
    Q_UNUSED(value)
    return false;
#endif
}
