#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include "Statistics.h"
#include "support/RandomSource.h"
#include "support/Table.h"

namespace {

using Sample = std::vector<double>;

Sample Values(const std::string& cell)
{
    Sample values;
    std::istringstream stream(cell);
    for (std::string value; stream >> value;)
        values.push_back(std::strtod(value.c_str(), nullptr));
    return values;
}

TEST(Statistics, AreThoseOfTheTable)
{
    for (const auto& cells : Table::Section("sample")) {
        const Sample sample = Values(cells[0]);
        double minimum = -1, maximum = -1;
        Statistics::GetSampleRange(sample, minimum, maximum);
        const double results[] = {Statistics::GetSumTotal(sample),
                                  Statistics::GetSampleMean(sample),
                                  Statistics::GetSampleMedian(sample),
                                  Statistics::GetSampleStandardDeviation(sample),
                                  minimum,
                                  maximum};
        for (std::size_t i = 0; i < std::size(results); ++i) {
            SCOPED_TRACE(testing::PrintToString(cells) + " " + std::to_string(i));
            const double expected = std::strtod(cells[i + 1].c_str(), nullptr);
            const bool areNone = std::isnan(results[i]) && std::isnan(expected);
            EXPECT_DOUBLE_EQ(areNone ? 0 : results[i], areNone ? 0 : expected);
        }
    }
}

TEST(SampleMode, CutsTowardZeroAndTheFirstMetWinsATie)
{
    std::size_t count = 77;
    for (const auto& cells : Table::Section("mode")) {
        SCOPED_TRACE(cells[0]);
        EXPECT_EQ(Statistics::GetSampleMode(Values(cells[0]), count), std::stoi(cells[1]));
        EXPECT_EQ(count, std::stoull(cells[2]));
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
    for (const auto& cells : Table::Section("trim")) {
        Sample sample = Values(cells[0]);
        Statistics::TrimSample(sample, std::stoull(cells[1]));
        EXPECT_EQ(sample, Values(cells[2])) << testing::PrintToString(cells);
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
