#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <set>

#include "RandomNumberGen.h"

namespace {

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

TEST(RandomNumbers, AreEquallyLikelyFromBoundToBound)
{
    std::array<int, 7> counts{};
    for (int draw = 0; draw < 7000; ++draw)
        ++counts.at(static_cast<std::size_t>(RandomNumberGen::Get(-3, 3) + 3));
    for (const int count : counts) // 300 is ten standard deviations
        EXPECT_NEAR(count, 1000, 300);
}

TEST(RandomNumbers, KeepToEveryRangeOfInt)
{
    const struct {
        int lo, hi;
    } rows[] = {{lowest, highest}, {lowest, -1},           {0, highest}, {lowest, lowest},
                {-1, highest},     {highest - 1, highest}, {5, 5},       {lowest, lowest + 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.lo << " to " << row.hi);
        for (int draw = 0; draw < 50; ++draw) {
            const int value = RandomNumberGen::Get(row.lo, row.hi);
            EXPECT_TRUE(row.lo <= value && value <= row.hi) << value;
        }
    }
    EXPECT_EQ(RandomNumberGen::Get(3, 2), 3);
    EXPECT_EQ(RandomNumberGen::Get(highest, lowest), highest);
}

TEST(RandomNumbers, OfTheFullRangeReachBothHalvesAndDoNotRepeat)
{
    std::set<int> values;
    for (int draw = 0; draw < 100; ++draw)
        values.insert(RandomNumberGen::Get(lowest, highest));
    EXPECT_GT(values.size(), 95u);
    EXPECT_LT(*values.begin(), 0);
    EXPECT_GT(*values.rbegin(), 0);
}

TEST(RandomShuffle, KeepsTheValuesAndReachesEveryOrder)
{
    std::vector<int> none;
    RandomNumberGen::RandomShuffle(none);
    EXPECT_TRUE(none.empty());

    std::vector<int> many(1000);
    std::iota(many.begin(), many.end(), 0);
    std::vector<int> shuffled = many;
    RandomNumberGen::RandomShuffle(shuffled);
    EXPECT_NE(shuffled, many);
    std::sort(shuffled.begin(), shuffled.end());
    EXPECT_EQ(shuffled, many);

    std::set<std::vector<int>> orders;
    for (int round = 0; round < 100000 && orders.size() < 6; ++round) {
        std::vector<int> three = {1, 2, 3};
        RandomNumberGen::RandomShuffle(three);
        orders.insert(three);
    }
    EXPECT_EQ(orders.size(), 6u);
}

} // namespace
