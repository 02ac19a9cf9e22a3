// Signed 32-bit sums and products that wrap around, without undefined behaviour.
#pragma once

#include <cstdint>

namespace Wrapping {

inline int Sum(int a, int b) noexcept
{
    return static_cast<int>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

inline int Product(int a, int b) noexcept
{
    return static_cast<int>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

} // namespace Wrapping
