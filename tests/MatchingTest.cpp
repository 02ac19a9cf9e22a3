#include <gtest/gtest.h>

#include <climits>

#include "StringUtils.h"

namespace {

TEST(Matching, TakesLinearTimeOnTextsThatAlmostMatchEverywhere)
{
    const CString almost = CString('*') + CString('A', 100000) + "b*";
    EXPECT_FALSE(StringUtils::MatchSpec(CString('a', 3000000), almost, false));
}

TEST(Matching, CutsPartsAtTheEndsOfTheText)
{
    const std::string text = "hello";
    for (const int a : {INT_MIN, -5, -1, 0, 3, 4, 5, INT_MAX})
        for (const int b : {INT_MIN, -1, 0, 1, 2, 4, 5, 10, INT_MAX}) {
            SCOPED_TRACE(testing::Message() << a << ' ' << b);
            std::string part, middle;
            for (int i = 0; i < 5; ++i) {
                part += std::string(a >= 0 && i >= a && i - a < b, text[static_cast<std::size_t>(i)]);
                middle += std::string(i >= a && i <= b, text[static_cast<std::size_t>(i)]);
            }
            EXPECT_EQ(StringUtils::CopySubString(text, a, b), part);
            EXPECT_EQ(StringUtils::GetTextFromMiddle(text, a, b), middle);
        }
}

} // namespace
