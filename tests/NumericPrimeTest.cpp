#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "Prime.h"

namespace {

constexpr uint64 highest = 18446744073709551615u;

std::vector<uint64> PrimesInRange(uint64 lo, uint64 hi)
{
    std::vector<uint64> primes;
    Prime::GetPrimesInRange(lo, hi, primes);
    return primes;
}

TEST(Primes, OfTheLoopAndOfTheSieveAreTheSame)
{
    std::vector<uint64> looped;
    for (uint64 n = 0; n < 20000; ++n) {
        if (Prime::IsPrime(n))
            looped.push_back(n);
    }
    EXPECT_EQ(looped.size(), 2262u); // the published count
    EXPECT_EQ(looped, PrimesInRange(0, 19999));

    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        const uint64 lo = random() % 20000;
        const uint64 hi = lo + random() % (20000 - lo);
        const auto first = std::lower_bound(looped.begin(), looped.end(), lo);
        const auto last = std::upper_bound(looped.begin(), looped.end(), hi);
        EXPECT_EQ(PrimesInRange(lo, hi), std::vector<uint64>(first, last)) << lo << " to " << hi;
    }
}

TEST(Primes, OfLargeNumbersAreKnown)
{
    EXPECT_TRUE(Prime::IsPrime(1000003));
    for (const uint64 composite : {uint64{561}, uint64{1000001}, uint64{4294967295}, highest - 1, highest})
        EXPECT_FALSE(Prime::IsPrime(composite)) << composite;
    EXPECT_EQ(PrimesInRange(0, 10000000).size(), 664579u); // the published count; many windows of the sieve
    EXPECT_EQ(PrimesInRange(4294967270, 4294967320),
              (std::vector<uint64>{4294967279, 4294967291, 4294967311}));
    EXPECT_EQ(PrimesInRange(999999999989, 999999999989), std::vector<uint64>{999999999989});
    EXPECT_EQ(PrimesInRange(4295098368, 4295098370).size(), 0u); // 65537 squared is among them
}

TEST(Primes, InARangeAreAppendedUpToTheEndOfTheType)
{
    std::vector<uint64> primes = {42};
    Prime::GetPrimesInRange(3, 2, primes);
    Prime::GetPrimesInRange(highest, 0, primes);
    Prime::GetPrimesInRange(0, 1, primes);
    Prime::GetPrimesInRange(highest - 4, highest, primes);
    Prime::GetPrimesInRange(24, 28, primes);
    EXPECT_EQ(primes, std::vector<uint64>{42});
    Prime::GetPrimesInRange(2, 3, primes);
    EXPECT_EQ(primes, (std::vector<uint64>{42, 2, 3}));
}

TEST(NearestPrime, IsSearchedBelowALimitAndOtherwiseTheNumberItself)
{
    const struct {
        uint64 n, nearest;
    } rows[] = {
        {0, 2},
        {1, 2},
        {2, 2},
        {3, 3},
        {4, 5},
        {14, 17},
        {90, 97},
        {1000000, 1000003},
        {4294967292, 4294967292},
        {4294967294, 4294967294},
        {4294967295, 4294967295},
        {4294967296, 4294967296},
        {4294967311, 4294967311},
        {highest, highest},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Prime::GetNearestPrimeNumber(row.n), row.nearest) << row.n;
}

TEST(HashTableSize, IsAFifthMoreAndWrapsAtTheEndOfTheType)
{
    const struct {
        uint64 entries, size;
    } rows[] = {
        {0, 3},
        {3, 3},
        {4, 5},
        {7, 11},
        {100, 127},
        {3579139410, 4294967292},
        {153722867280912930, 184467440737095516},
        {153722867280912931, 2},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Prime::CalculateHashTableSize(row.entries), row.size) << row.entries;
}

} // namespace
