// Time that passes, by the system's cheap clock.
#pragma once

#include <ctime>

#include "BasicTypes.h"

namespace CoarseClock {

inline constexpr int64 Second = 1'000'000'000;

// Nanoseconds since some moment in the past, in steps of a few milliseconds; costs about 5 ns.
inline int64 Now() noexcept
{
#ifdef CLOCK_MONOTONIC_COARSE
    constexpr clockid_t clock = CLOCK_MONOTONIC_COARSE;
#else
    constexpr clockid_t clock = CLOCK_MONOTONIC;
#endif
    std::timespec now{};
    clock_gettime(clock, &now);
    return static_cast<int64>(now.tv_sec) * Second + now.tv_nsec;
}

} // namespace CoarseClock
