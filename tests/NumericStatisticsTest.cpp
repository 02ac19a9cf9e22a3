#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "Statistics.h"

namespace {

using Sample = std::vector<double>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = std::numeric_limits<double>::max();
constexpr int lowest = std::numeric_limits<int>::min();

TEST(Statistics, OfAnEmptySampleAreZero)
{
    double minimum = 1;
    double maximum = 1;
    std::size_t count = 1;
    Statistics::GetSampleRange({}, minimum, maximum);
    EXPECT_EQ(minimum, 0);
    EXPECT_EQ(maximum, 0);
    EXPECT_EQ(Statistics::GetSampleMode({}, count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Statistics::GetSumTotal({}), 0);
    EXPECT_EQ(Statistics::GetSampleMean({}), 0);
    EXPECT_EQ(Statistics::GetSampleMedian({}), 0);
    EXPECT_EQ(Statistics::GetSampleStandardDeviation({}), 0);
}

TEST(Statistics, MeanAndDeviationFollowTheOrderOfAddition)
{
    EXPECT_EQ(Statistics::GetSumTotal({1e16, 1, 1, -1e16}), 0);
    EXPECT_EQ(Statistics::GetSumTotal({1, 1, 1e16, -1e16}), 2);
    EXPECT_EQ(Statistics::GetSampleMean({1, 2, 4.5}), 2.5);
    EXPECT_TRUE(std::isnan(Statistics::GetSampleMean({infinity, -infinity})));

    EXPECT_DOUBLE_EQ(Statistics::GetSampleStandardDeviation({2, 4, 4, 4, 5, 5, 7, 9}), 2.1380899352993952);
    EXPECT_EQ(Statistics::GetSampleStandardDeviation({huge, huge}), infinity);
    for (const Sample& flat : {Sample{7}, Sample{3, 3, 3}, Sample{nan, 1}, Sample{infinity, 1, 2}})
        EXPECT_EQ(Statistics::GetSampleStandardDeviation(flat), 0) << ::testing::PrintToString(flat);
}

TEST(SampleMedian, IsTheUpperMiddleWithNaNsLast)
{
    const struct {
        Sample sample;
        double median;
    } rows[] = {
        {{4, 1, 3, 2}, 3},
        {{9, 1, 5}, 5},
        {{7}, 7},
        {{2, 1}, 2},
        {{nan, 1, nan, 3, 2}, 3},
        {{-nan, -infinity, 5}, 5},
        {{infinity, -infinity, nan, 0}, infinity},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Statistics::GetSampleMedian(row.sample), row.median)
            << ::testing::PrintToString(row.sample);
    EXPECT_TRUE(std::isnan(Statistics::GetSampleMedian({nan, 1})));
}

TEST(SampleMode, CutsTowardZeroAndTheFirstMetWinsATie)
{
    const struct {
        Sample sample;
        int mode;
        std::size_t count;
    } rows[] = {
        {{1.9, 1.2, 2.0, 2.5}, 1, 2},
        {{2.0, 1.9, 1.2, 2.5}, 2, 2},
        {{1, 2, 2, 1}, 1, 2},
        {{5, 1, 2, 2, 1, 3}, 1, 2},
        {{9, 1, 1}, 1, 2},
        {{-0.9, 0.9, -1.5}, 0, 2},
        {{2147483647.9, 2147483647.1, 1}, 2147483647, 2},
        {{-2147483648.9, -2147483648.0, 1}, lowest, 2},
        {{1, nan, -nan, infinity, -infinity, 2147483648.0, -2147483649.0, huge}, lowest, 7},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.sample));
        std::size_t count = 0;
        EXPECT_EQ(Statistics::GetSampleMode(row.sample, count), row.mode);
        EXPECT_EQ(count, row.count);
    }
}

TEST(SampleMode, IsTheOneThatCountingEachValueFinds)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 2000; ++round) {
        Sample sample(1 + random() % 12);
        for (double& value : sample)
            value = static_cast<double>(random() % 6) - 3;
        double expected = 0;
        std::ptrdiff_t most = 0;
        for (const double value : sample) {
            const auto occurrences = std::count(sample.begin(), sample.end(), value);
            expected = occurrences > most ? value : expected;
            most = std::max(most, occurrences);
        }
        std::size_t count = 0;
        EXPECT_EQ(Statistics::GetSampleMode(sample, count), expected) << ::testing::PrintToString(sample);
        EXPECT_EQ(count, static_cast<std::size_t>(most));
    }
}

TEST(SampleRange, PassesOverNaNs)
{
    const struct {
        Sample sample;
        double minimum, maximum;
    } rows[] = {
        {{3, -1, 7, 2}, -1, 7},
        {{5}, 5, 5},
        {{nan, 4, nan, 2, nan}, 2, 4},
        {{infinity, -infinity, huge}, -infinity, infinity},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.sample));
        double minimum = 0;
        double maximum = 0;
        Statistics::GetSampleRange(row.sample, minimum, maximum);
        EXPECT_EQ(minimum, row.minimum);
        EXPECT_EQ(maximum, row.maximum);
    }
    double minimum = 0;
    double maximum = 0;
    Statistics::GetSampleRange({nan, nan}, minimum, maximum);
    EXPECT_TRUE(std::isnan(minimum) && std::isnan(maximum));
}

TEST(TrimSample, TakesAsManyFromBothEnds)
{
    const struct {
        Sample sample;
        std::size_t percent;
        Sample trimmed;
    } rows[] = {
        {{}, 20, {}},
        {{3, 1, 2}, 0, {3, 1, 2}},
        {{3, 1, 2}, 100, {}},
        {{10, 2, 8, 4, 6, 5, 7, 3, 9, 1}, 20, {4, 5, 6, 7}},
        {{1, 2, 3, 10}, 20, {2, 3}},
        {{1, 2, 9, 10}, 20, {}},
        {{1, 2, 9, 10, 3}, 20, {3}},
        {{5}, 1, {}},
        {{-1, -3, -2}, 20, {-3, -2, -1}},
        {{0, -1, -2}, 20, {-1}},
        {{3, 1, 2}, 150, {}},
        {{-9, -4, 2, 1, 0}, 200, {}},
        {{-9, 2, -3, -8, -4}, 200, {-8, -4, -3}},
        {{-1, -3, -2}, 150, {-3, -2, -1}},
        {{3, infinity, 1}, 20, {3}},
        {{3, infinity, 1}, 101, {}},
        {{3, 1, 2}, std::numeric_limits<std::size_t>::max(), {}},
    };
    for (const auto& row : rows) {
        Sample sample = row.sample;
        Statistics::TrimSample(sample, row.percent);
        EXPECT_EQ(sample, row.trimmed) << ::testing::PrintToString(row.sample) << ", " << row.percent;
    }
}

TEST(TrimSample, OnlySortsWhereANaNIsTheLargest)
{
    Sample sample(100, nan);
    for (std::size_t i = 0; i < sample.size(); i += 3)
        sample[i] = static_cast<double>(sample.size() - i);
    Statistics::TrimSample(sample, 20);
    ASSERT_EQ(sample.size(), 100u);
    EXPECT_TRUE(std::is_sorted(sample.begin(), sample.begin() + 34));
    EXPECT_EQ(sample[33], 100);
    EXPECT_TRUE(std::isnan(sample[34]));
}

} // namespace
