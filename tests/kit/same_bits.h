// Whether two arrays hold the same bytes: zeros of either sign differ, and a NaN is its own like.
#pragma once

#include <cstring>
#include <type_traits>

template <typename One, typename Other> bool sameBits(const One& one, const Other& other)
{
    static_assert(std::is_same_v<decltype(one.data()), decltype(other.data())>);
    const auto size = static_cast<std::size_t>(one.size());
    return size == static_cast<std::size_t>(other.size()) &&
           std::memcmp(one.data(), other.data(), size * sizeof(*one.data())) == 0;
}
