// KVTDouble, CPI, Prime, RandomNumberGen, TimingUtils and Statistics.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <set>

#include "CPI.h"
#include "DateTime.h"
#include "KVTDouble.h"
#include "Prime.h"
#include "RandomNumberGen.h"
#include "Statistics.h"
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
    std::set<std::vector<int>> orders;
    std::vector<int> none, three = {1, 2, 3};
    RandomNumberGen::RandomShuffle(none);
    for (int round = 0; round < 100000 && orders.size() < 6; ++round) {
        RandomNumberGen::RandomShuffle(three);
        orders.insert(three);
    }
    EXPECT_EQ(orders.size(), 6u);
    for (const auto& order : orders)
        EXPECT_TRUE(std::is_permutation(order.begin(), order.end(), three.begin()));
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

// ---- samples --------------------------------------------------------------------------------------------

using Sample = std::vector<double>;

Sample Values(const std::string& cell)
{
    Sample values;
    for (const std::string& value : CellsOf(cell, ' '))
        if (!value.empty())
            values.push_back(std::strtod(value.c_str(), nullptr));
    return values;
}

TEST(Statistics, AreThoseOfTheTable)
{
    for (const auto& cells : Cases<7>("sample")) {
        SCOPED_TRACE(cells[0]);
        const Sample sample = Values(cells[0]);
        double minimum = -1, maximum = -1;
        Statistics::GetSampleRange(sample, minimum, maximum);
        std::size_t cell = 0;
        for (const double result : {Statistics::GetSumTotal(sample), Statistics::GetSampleMean(sample),
                                    Statistics::GetSampleMedian(sample),
                                    Statistics::GetSampleStandardDeviation(sample), minimum, maximum}) {
            const double expected = std::strtod(cells[++cell].c_str(), nullptr);
            EXPECT_EQ(std::isnan(result), std::isnan(expected)) << cell;
            EXPECT_DOUBLE_EQ(std::isnan(result) ? 0 : result, std::isnan(expected) ? 0 : expected) << cell;
        }
    }
}

TEST(SampleMode, CutsTowardZeroAndTheFirstMetWinsATie)
{
    std::size_t count = 77;
    for (const auto& [values, mode, occurrence] : Cases<3>("mode")) {
        EXPECT_EQ(Statistics::GetSampleMode(Values(values), count), std::stoi(mode)) << values;
        EXPECT_EQ(count, std::stoull(occurrence)) << values;
    }
}

TEST(TrimSample, TakesAsManyFromBothEnds)
{
    for (const auto& [values, percent, kept] : Cases<3>("trim")) {
        Sample sample = Values(values);
        Statistics::TrimSample(sample, std::stoull(percent));
        EXPECT_EQ(sample, Values(kept)) << values << " by " << percent;
    }
    // With a NaN, only sorted.
    Sample sample(100, std::nan(""));
    for (std::size_t i = 0; i < sample.size(); i += 3)
        sample[i] = static_cast<double>(sample.size() - i);
    Statistics::TrimSample(sample, 20);
    ASSERT_EQ(sample.size(), 100u);
    EXPECT_TRUE(std::is_sorted(sample.begin(), sample.begin() + 34));
    EXPECT_TRUE(sample[33] == 100 && std::isnan(sample[34]));
}

} // namespace
