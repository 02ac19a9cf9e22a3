#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "Statistics.h"
#include "support/Cases.h"
#include "support/RandomSource.h"

namespace {

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
