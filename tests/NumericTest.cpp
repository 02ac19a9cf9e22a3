// KVTDouble, CPI, Prime, RandomNumberGen and TimingUtils; Statistics has a test of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <map>
#include <set>

#include "CPI.h"
#include "DateTime.h"
#include "KVTDouble.h"
#include "Prime.h"
#include "RandomNumberGen.h"
#include "TimingUtils.h"
#include "platform/Platform.h"
#include "support/Cases.h"
#include "support/RandomSource.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = std::numeric_limits<double>::max();
constexpr uint64 last64 = 18446744073709551615u;

TEST(TolerantComparison, IsStrictAndFalseForWhatHasNoDifference)
{
    for (const auto& cells : Cases<4>("tolerances")) {
        const auto number = [&](std::size_t cell) { return std::strtod(cells[cell].c_str(), nullptr); };
        EXPECT_EQ(KVTDouble::IsEqual(number(0), number(1), number(2)), cells[3] == "1")
            << testing::PrintToString(cells);
    }
    for (const double zero : {-0.0, -0.0009, std::nextafter(0.001, 0.0)})
        EXPECT_TRUE(KVTDouble::IsZero(zero)) << zero;
    for (const double other : {0.001, -0.001, nan})
        EXPECT_FALSE(KVTDouble::IsZero(other)) << other;
}

TEST(ClockAngles, KeepWholeTurnsAndNeedBothHalvesOfATime)
{
    constexpr double fullTurn = 6.283185307179586;
    const DateTime afternoon(2024, 2, 29, 13, 30, 36);
    const double rows[][2] = {{CPI::ConvertRadiansToDegrees(fullTurn), 360},
                              {CPI::ConvertDegreesToRadians(-90), -fullTurn / 4},
                              {CPI::ConvertRadiansToDegrees(-huge), -infinity},
                              {CPI::ConvertClockHourToRadians(4294967295), fullTurn * 357913941.25},
                              {CPI::ConvertClockMinsToRadians(4294967295), fullTurn * 71582788.25},
                              {CPI::ConvertHourTimeToRadians(afternoon), fullTurn * 405.3 / 360},
                              {CPI::ConvertMinsTimeToRadians(afternoon), fullTurn * 183.6 / 360}};
    for (const auto& [angle, expected] : rows)
        EXPECT_DOUBLE_EQ(angle, expected);
    DateTime noDate(afternoon), noTime(afternoon);
    noDate.SetInvalidDate();
    noTime.SetInvalidTime();
    for (const DateTime& half : {noDate, noTime})
        EXPECT_EQ(CPI::ConvertHourTimeToRadians(half) + CPI::ConvertMinsTimeToRadians(half), 0.0);
}

// ---- primes ---------------------------------------------------------------------------------------------

std::vector<uint64> PrimesInRange(uint64 lo, uint64 hi)
{
    std::vector<uint64> primes;
    Prime::GetPrimesInRange(lo, hi, primes);
    return primes;
}

TEST(Primes, OfTheLoopAndOfTheSieveAreTheSame)
{
    std::vector<uint64> looped;
    for (uint64 n = 0; n < 20000; ++n)
        if (Prime::IsPrime(n))
            looped.push_back(n);
    EXPECT_EQ(looped.size(), 2262u); // the published count
    RandomSource random;
    for (int round = 0; round < 300; ++round) {
        const uint64 lo = random() % 20000, hi = lo + random() % (20000 - lo);
        const auto first = std::lower_bound(looped.begin(), looped.end(), lo);
        const auto end = std::upper_bound(looped.begin(), looped.end(), hi);
        EXPECT_EQ(PrimesInRange(lo, hi), std::vector<uint64>(first, end)) << lo << " to " << hi;
    }
    for (const uint64 composite : {uint64{1000001}, uint64{4294967295}, last64 - 1, last64})
        EXPECT_FALSE(Prime::IsPrime(composite)) << composite;
}

TEST(Primes, InARangeAreAppendedUpToTheEndOfTheType)
{
    std::vector<uint64> primes = {42};
    // None for the first three, though 4295098369 is 65537 squared.
    const uint64 ranges[][2] = {{last64, 0}, {last64 - 4, last64},     {4295098368, 4295098370},
                                {2, 3},      {4294967270, 4294967320}, {999999999989, 999999999989}};
    for (const auto& [lo, hi] : ranges)
        Prime::GetPrimesInRange(lo, hi, primes);
    EXPECT_EQ(primes, (std::vector<uint64>{42, 2, 3, 4294967279, 4294967291, 4294967311, 999999999989}));
    EXPECT_EQ(PrimesInRange(0, 10000000).size(), 664579u); // the published count; many windows of the sieve
}

TEST(Primes, AreSearchedBelowALimitAndForTablesAFifthFurther)
{
    for (const auto& [from, prime] : Cases<2>("nearest primes"))
        EXPECT_EQ(Prime::GetNearestPrimeNumber(std::stoull(from)), std::stoull(prime)) << from;
    for (const auto& [count, size] : Cases<2>("table sizes"))
        EXPECT_EQ(Prime::CalculateHashTableSize(std::stoull(count)), std::stoull(size)) << count;
}

// ---- random numbers, and the stopwatch ------------------------------------------------------------------

TEST(RandomNumbers, AreEquallyLikelyAndKeepToEveryRangeOfInt)
{
    std::map<int, int> counts;
    for (int draw = 0; draw < 7000; ++draw)
        ++counts[RandomNumberGen::Get(-3, 3)];
    EXPECT_EQ(counts.size(), 7u);
    for (const auto& [value, count] : counts) // 300 is ten standard deviations
        EXPECT_NEAR(count, 1000, 300) << value;
    const int ranges[][2] = {{INT_MIN, -1}, {0, INT_MAX}, {INT_MAX - 1, INT_MAX}, {5, 5}, {INT_MIN, INT_MAX}};
    for (const auto& [lo, hi] : ranges) {
        std::set<int> values;
        for (int draw = 0; draw < 100; ++draw)
            values.insert(RandomNumberGen::Get(lo, hi));
        EXPECT_TRUE(lo <= *values.begin() && *values.rbegin() <= hi) << lo << " to " << hi;
        EXPECT_EQ(values.size() > 90, hi - int64{lo} > 1000) << lo << " to " << hi;
    }
    EXPECT_EQ(RandomNumberGen::Get(3, 2), 3);
}

TEST(RandomNumbers, ShuffleIntoEveryOrder)
{
    std::vector<int> none;
    RandomNumberGen::RandomShuffle(none);
    EXPECT_TRUE(none.empty());
    std::set<std::vector<int>> orders;
    const std::vector<int> sorted = {1, 2, 3};
    std::vector<int> three = sorted;
    for (int round = 0; round < 100000 && orders.size() < 6; ++round) {
        RandomNumberGen::RandomShuffle(three);
        orders.insert(three);
        EXPECT_TRUE(std::is_permutation(three.begin(), three.end(), sorted.begin()));
    }
    EXPECT_EQ(orders.size(), 6u);
}

TEST(TimingUtils, MeasuresFromTheLastStartOnceEach)
{
    TimingUtils watch;
    EXPECT_EQ(watch.Stop(), 0u);
    watch.Start();
    Sleep(20);
    const DWORD beforeStart = GetTickCount();
    watch.Start();
    const DWORD afterStart = GetTickCount();
    Sleep(5);
    const DWORD beforeStop = GetTickCount();
    const unsigned int elapsed = watch.Stop();
    EXPECT_GE(elapsed, beforeStop - afterStart);
    EXPECT_LE(elapsed, GetTickCount() - beforeStart);
    EXPECT_EQ(watch.Stop(), 0u);
}

} // namespace
