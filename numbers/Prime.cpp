#include "Prime.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr uint64 searchLimit = 4294967295; // GetNearestPrimeNumber looks at no candidate from here on

// The sieve works through a range in windows of this many odd numbers, one bit each.
constexpr uint64 windowSize = 1 << 17;

// Where the odd multiples of an odd divisor begin in a window, counted in odd numbers from its first one. The
// multiples below the square have a smaller divisor; leaving them out spares the divisor itself.
uint64 FirstMultiple(uint64 divisor, uint64 first)
{
    if (divisor > first / divisor)
        return (divisor * divisor - first) / 2;
    const uint64 remainder = first % divisor;
    const uint64 distance = remainder == 0 ? 0 : divisor - remainder;
    return (distance % 2 == 0 ? distance : distance + divisor) / 2;
}

// Appends the primes among `count` consecutive odd numbers from `first`, which is 3 or more.
void AppendOddPrimes(uint64 first, uint64 count, std::vector<uint64>& primes)
{
    const uint64 last = first + 2 * (count - 1);
    std::vector<bool> isComposite(static_cast<std::size_t>(count));
    uint64 unstruck = count;
    for (uint64 divisor = 3; divisor <= last / divisor && unstruck > 0; divisor += 2) {
        for (uint64 i = FirstMultiple(divisor, first); i < count; i += divisor) {
            unstruck -= isComposite[i] ? 0 : 1;
            isComposite[i] = true;
        }
    }
    for (uint64 i = 0; i < count; ++i) {
        if (!isComposite[i])
            primes.push_back(first + 2 * i);
    }
}

} // namespace

bool Prime::IsPrime(uint64 n)
{
    if (n < 4)
        return n >= 2;
    if (n % 2 == 0)
        return false;
    // The whole way to n - 1, not to the square root: required to stay the plain loop.
    for (uint64 divisor = 3; divisor < n; divisor += 2) {
        if (n % divisor == 0)
            return false;
    }
    return true;
}

uint64 Prime::GetNearestPrimeNumber(uint64 n)
{
    for (uint64 candidate = std::max<uint64>(n, 2); candidate < searchLimit; ++candidate) {
        if (IsPrime(candidate))
            return candidate;
    }
    return n;
}

uint64 Prime::CalculateHashTableSize(uint64 n)
{
    return GetNearestPrimeNumber(std::max<uint64>(n, 3) * 120 / 100);
}

void Prime::GetPrimesInRange(uint64 lo, uint64 hi, std::vector<uint64>& primes)
{
    if (lo <= 2 && hi >= 2)
        primes.push_back(2);
    const uint64 firstOdd = std::max<uint64>(lo, 3) | 1;
    if (firstOdd > hi)
        return;
    const uint64 odds = (hi - firstOdd) / 2 + 1;
    for (uint64 done = 0; done < odds; done += windowSize)
        AppendOddPrimes(firstOdd + 2 * done, std::min(windowSize, odds - done), primes);
}
