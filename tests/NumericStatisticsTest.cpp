#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Statistics.h"
#include "support/RandomSource.h"

namespace {

using Sample = std::vector<double>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = std::numeric_limits<double>::max();
constexpr int lowest = std::numeric_limits<int>::min();

// Equal, or both a NaN.
void ExpectSame(double got, double expected)
{
    if (std::isnan(expected))
        EXPECT_TRUE(std::isnan(got)) << got;
    else
        EXPECT_DOUBLE_EQ(got, expected);
}

TEST(Statistics, AreThoseOfTheTable)
{
    const struct {
        Sample sample;
        double sum, mean, median, deviation, minimum, maximum;
    } rows[] = {
        {{}, 0, 0, 0, 0, 0, 0},
        {{7}, 7, 7, 7, 0, 7, 7},
        {{4, 1, 3, 2}, 10, 2.5, 3, 1.2909944487358056, 1, 4}, // the upper one in the middle
        {{2, 4, 4, 4, 5, 5, 7, 9}, 40, 5, 5, 2.1380899352993952, 2, 9},
        {{3, 3, 3}, 9, 3, 3, 0, 3, 3},
        {{1e16, 1, 1, -1e16}, 0, 0, 1, 8164965809277260, -1e16, 1e16}, // added in this order
        {{1, 1, 1e16, -1e16}, 2, 0.5, 1, 8164965809277260, -1e16, 1e16},
        {{huge, huge}, infinity, infinity, huge, infinity, huge, huge},
        {{nan, 1, nan, 3, 2}, nan, nan, 3, 0, 1, 3}, // NaNs come last
        {{-nan, -infinity, 5}, nan, nan, 5, 0, -infinity, 5},
        {{infinity, -infinity, nan, 0}, nan, nan, infinity, 0, -infinity, infinity},
        {{nan, 1}, nan, nan, nan, 0, 1, 1},
        {{nan, nan}, nan, nan, nan, 0, nan, nan},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.sample));
        double minimum = -1, maximum = -1;
        Statistics::GetSampleRange(row.sample, minimum, maximum);
        ExpectSame(Statistics::GetSumTotal(row.sample), row.sum);
        ExpectSame(Statistics::GetSampleMean(row.sample), row.mean);
        ExpectSame(Statistics::GetSampleMedian(row.sample), row.median);
        ExpectSame(Statistics::GetSampleStandardDeviation(row.sample), row.deviation);
        ExpectSame(minimum, row.minimum);
        ExpectSame(maximum, row.maximum);
    }
}

TEST(SampleMode, CutsTowardZeroAndTheFirstMetWinsATie)
{
    const struct {
        Sample sample;
        int mode;
        std::size_t count;
    } rows[] = {{{}, 0, 0},
                {{1.9, 1.2, 2.0, 2.5}, 1, 2},
                {{2.0, 1.9, 1.2, 2.5}, 2, 2},
                {{-0.9, 0.9, -1.5}, 0, 2},
                {{2147483647.9, 2147483647.1, 1}, 2147483647, 2},
                {{-2147483648.9, -2147483648.0, 1}, lowest, 2},
                {{1, nan, -nan, infinity, -infinity, 2147483648.0, -2147483649.0, huge}, lowest, 7}};
    std::size_t count = 77;
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.sample));
        EXPECT_EQ(Statistics::GetSampleMode(row.sample, count), row.mode);
        EXPECT_EQ(count, row.count);
    }
    RandomSource random; // against counting each value
    for (int round = 0; round < 2000; ++round) {
        Sample sample(static_cast<std::size_t>(random.From(1, 12)));
        std::generate(sample.begin(), sample.end(), [&] { return random.From(-3, 2); });
        const auto occurrences = [&](double value) {
            return std::count(sample.begin(), sample.end(), value);
        };
        const double expected = *std::max_element(sample.begin(), sample.end(), [&](double a, double b) {
            return occurrences(a) < occurrences(b);
        });
        EXPECT_EQ(Statistics::GetSampleMode(sample, count), expected) << testing::PrintToString(sample);
        EXPECT_EQ(count, static_cast<std::size_t>(occurrences(expected)));
    }
}

TEST(TrimSample, TakesAsManyFromBothEnds)
{
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    const struct {
        Sample sample;
        std::size_t percent;
        Sample trimmed;
    } rows[] = {
        {{}, 20, {}},
        {{3, 1, 2}, 0, {3, 1, 2}},
        {{3, 1, 2}, 100, {}},
        {{-3, -1, -2}, 100, {}},
        {{10, 2, 8, 4, 6, 5, 7, 3, 9, 1}, 20, {4, 5, 6, 7}},
        {{1, 2, 9, 10}, 20, {}}, // just half of them
        {{1, 2, 9, 10, 3}, 20, {3}},
        {{5}, 1, {}},
        {{-1, -3, -2}, 20, {-3, -2, -1}},
        {{0, -1, -2}, 20, {-1}},
        {{-9, 2, -3, -8, -4}, 200, {-8, -4, -3}},
        {{-1, -3, -2}, 150, {-3, -2, -1}},
        {{3, infinity, 1}, 20, {3}},
        {{3, infinity, 1}, 101, {}},
        {{3, 1, 2}, most, {}},
    };
    for (const auto& row : rows) {
        Sample sample = row.sample;
        Statistics::TrimSample(sample, row.percent);
        EXPECT_EQ(sample, row.trimmed) << testing::PrintToString(row.sample) << ", " << row.percent;
    }
    // With a NaN, only sorted.
    Sample sample(100, nan);
    for (std::size_t i = 0; i < sample.size(); i += 3)
        sample[i] = static_cast<double>(sample.size() - i);
    Statistics::TrimSample(sample, 20);
    ASSERT_EQ(sample.size(), 100u);
    EXPECT_TRUE(std::is_sorted(sample.begin(), sample.begin() + 34));
    EXPECT_TRUE(sample[33] == 100 && std::isnan(sample[34]));
}

} // namespace
