// Decimal digits of unsigned numbers.
#pragma once

#include <array>
#include <bit>
#include <cstring>

#include "BasicTypes.h"

namespace Digits {

inline constexpr int MaxCount = 20; // of 64 bits

inline constexpr auto PowersOfTen = [] {
    std::array<uint64, MaxCount> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}();

// "00" to "99" in a row.
inline constexpr auto Pairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

// 1 for 0. The number of bits times the logarithm of 2, about 1233 / 4096, is right or one too low.
constexpr int Count(uint64 value)
{
    const uint64 nonZero = value | 1; // no power of ten but 1 is odd
    const int count = static_cast<int>(std::bit_width(nonZero)) * 1233 >> 12;
    return count + (nonZero >= PowersOfTen[static_cast<std::size_t>(count)] ? 1 : 0);
}

// Returns the end.
template <class Unsigned>
char* Write(char* to, Unsigned value)
{
    char* const end = to + Count(value);
    char* at = end;
    for (; value >= 100; value /= 100)
        std::memcpy(at -= 2, &Pairs[value % 100 * 2], 2);
    if (value >= 10)
        std::memcpy(to, &Pairs[value * 2], 2);
    else
        *to = static_cast<char>('0' + value);
    return end;
}

} // namespace Digits
