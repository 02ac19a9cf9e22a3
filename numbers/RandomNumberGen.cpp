#include "RandomNumberGen.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <random>
#include <ratio>

namespace {

std::uint32_t ClockSeed()
{
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<Ticks>(sinceEpoch).count());
}

std::uint32_t DeviceSeed()
{
    try {
        return std::random_device()();
    } catch (const std::exception&) { // the system has no random device
        return ClockSeed();
    }
}

} // namespace

int RandomNumberGen::Get(int lo, int hi)
{
    if (lo > hi)
        return lo;
    std::mt19937 generator(DeviceSeed());
    return std::uniform_int_distribution<int>(lo, hi)(generator);
}

void RandomNumberGen::RandomShuffle(std::vector<int>& values)
{
    if (values.empty())
        return;
    std::mt19937 generator(ClockSeed());
    std::shuffle(values.begin(), values.end(), generator);
}
