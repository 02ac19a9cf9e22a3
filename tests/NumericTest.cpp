// KVTDouble, CPI, Prime, RandomNumberGen and TimingUtils; Statistics has a test of its own.
#include <gtest/gtest.h>

#include <algorithm>
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
#include "support/RandomSource.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = std::numeric_limits<double>::max();
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr uint64 last64 = 18446744073709551615u;

TEST(TolerantComparison, IsStrictAndFalseForWhatHasNoDifference)
{
    const struct {
        double a, b, tolerance;
        bool equal;
    } rows[] = {{1.0, 1.5, 0.5, false},        {1.0, 1.5, 0.500001, true},
                {1.5, 1.0, 0.500001, true},    {2.0, 2.0, 0.0, false},
                {2.0, 2.0, 5e-324, true},      {nan, nan, infinity, false},
                {1.0, 1.0, nan, false},        {infinity, infinity, infinity, false},
                {huge, -huge, infinity, false}};
    for (const auto& row : rows)
        EXPECT_EQ(KVTDouble::IsEqual(row.a, row.b, row.tolerance), row.equal)
            << row.a << ' ' << row.tolerance;
    for (const double zero : {-0.0, 0.0009, -0.0009, std::nextafter(0.001, 0.0)})
        EXPECT_TRUE(KVTDouble::IsZero(zero)) << zero;
    for (const double other : {0.001, -0.001, infinity, nan})
        EXPECT_FALSE(KVTDouble::IsZero(other)) << other;
}

TEST(ClockAngles, KeepWholeTurnsAndNeedBothHalvesOfATime)
{
    constexpr double fullTurn = 6.283185307179586;
    const DateTime afternoon(2024, 2, 29, 13, 30, 36);
    const struct {
        double angle, expected;
    } rows[] = {{CPI::ConvertRadiansToDegrees(fullTurn), 360},
                {CPI::ConvertDegreesToRadians(-90), -fullTurn / 4},
                {CPI::ConvertRadiansToDegrees(-huge), -infinity},
                {CPI::ConvertClockHourToRadians(13), fullTurn * 13 / 12},
                {CPI::ConvertClockHourToRadians(4294967295), fullTurn * 357913941.25},
                {CPI::ConvertClockMinsToRadians(75), fullTurn * 1.25},
                {CPI::ConvertClockMinsToRadians(4294967295), fullTurn * 71582788.25},
                {CPI::ConvertHourTimeToRadians(afternoon), fullTurn * 405.3 / 360},
                {CPI::ConvertMinsTimeToRadians(afternoon), fullTurn * 183.6 / 360}};
    for (const auto& row : rows)
        EXPECT_DOUBLE_EQ(row.angle, row.expected);
    DateTime noDate(afternoon), noTime(afternoon);
    noDate.SetInvalidDate();
    noTime.SetInvalidTime();
    for (const DateTime& half : {noDate, noTime}) {
        EXPECT_EQ(CPI::ConvertHourTimeToRadians(half), 0.0);
        EXPECT_EQ(CPI::ConvertMinsTimeToRadians(half), 0.0);
    }
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
    Prime::GetPrimesInRange(3, 2, primes);
    Prime::GetPrimesInRange(last64, 0, primes);
    Prime::GetPrimesInRange(last64 - 4, last64, primes);
    Prime::GetPrimesInRange(4295098368, 4295098370, primes); // 65537 squared
    EXPECT_EQ(primes, std::vector<uint64>{42});
    Prime::GetPrimesInRange(2, 3, primes);
    Prime::GetPrimesInRange(4294967270, 4294967320, primes);
    Prime::GetPrimesInRange(999999999989, 999999999989, primes);
    EXPECT_EQ(primes, (std::vector<uint64>{42, 2, 3, 4294967279, 4294967291, 4294967311, 999999999989}));
    EXPECT_EQ(PrimesInRange(0, 10000000).size(), 664579u); // the published count; many windows of the sieve
}

std::vector<uint64> Each(uint64 (*function)(uint64), std::vector<uint64> numbers)
{
    std::transform(numbers.begin(), numbers.end(), numbers.begin(), function);
    return numbers;
}

TEST(Primes, AreSearchedBelowALimitAndForTablesAFifthFurther)
{
    EXPECT_EQ(Each(Prime::GetNearestPrimeNumber, {0, 1, 2, 3, 4, 14, 90, 1000000}),
              (std::vector<uint64>{2, 2, 2, 3, 5, 17, 97, 1000003}));
    const std::vector<uint64> beyond = {4294967292, 4294967296, last64};
    EXPECT_EQ(Each(Prime::GetNearestPrimeNumber, beyond), beyond);
    EXPECT_EQ(Each(Prime::CalculateHashTableSize, {0, 3, 4, 7, 100, 3579139410}),
              (std::vector<uint64>{3, 3, 5, 11, 127, 4294967292}));
    EXPECT_EQ(Each(Prime::CalculateHashTableSize, {153722867280912930, 153722867280912931}),
              (std::vector<uint64>{184467440737095516, 2})); // the product wraps
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
    const int ranges[][2] = {{lowest, -1}, {0, highest}, {lowest, lowest}, {highest - 1, highest}, {5, 5}};
    for (const auto& [lo, hi] : ranges)
        for (int draw = 0; draw < 50; ++draw) {
            const int value = RandomNumberGen::Get(lo, hi);
            EXPECT_TRUE(lo <= value && value <= hi) << value << " of " << lo << " to " << hi;
        }
    EXPECT_EQ(RandomNumberGen::Get(3, 2), 3);
    std::set<int> values;
    for (int draw = 0; draw < 100; ++draw)
        values.insert(RandomNumberGen::Get(lowest, highest));
    EXPECT_TRUE(values.size() > 95 && *values.begin() < 0 && *values.rbegin() > 0);
}

TEST(RandomNumbers, ShuffleIntoEveryOrder)
{
    std::vector<int> none;
    RandomNumberGen::RandomShuffle(none);
    EXPECT_TRUE(none.empty());
    std::set<std::vector<int>> all, orders;
    std::vector<int> three = {1, 2, 3};
    do
        all.insert(three);
    while (std::next_permutation(three.begin(), three.end()));
    for (int round = 0; round < 100000 && orders.size() < all.size(); ++round) {
        RandomNumberGen::RandomShuffle(three);
        orders.insert(three);
    }
    EXPECT_EQ(orders, all);
}

TEST(TimingUtils, MeasuresFromTheLastStartOnceEach)
{
    TimingUtils watch;
    EXPECT_EQ(watch.Stop(), 0u);
    watch.Start();
    const auto wait = [](DWORD milliseconds) {
        const DWORD first = GetTickCount();
        while (GetTickCount() - first < milliseconds) {
        }
        return GetTickCount();
    };
    const DWORD beforeStart = wait(20);
    watch.Start();
    const DWORD afterStart = GetTickCount(), beforeStop = wait(5);
    const unsigned int elapsed = watch.Stop();
    EXPECT_GE(elapsed, beforeStop - afterStart);
    EXPECT_LE(elapsed, GetTickCount() - beforeStart);
    EXPECT_EQ(watch.Stop(), 0u);
}

} // namespace
