#include <gtest/gtest.h>

#include <algorithm>
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

// Inside a string and beyond, where other code looks.
TEST(Matching, FindsAMiddleAtEveryPlace)
{
    const std::string letters = "[wertyuiopasdfghjkl";
    for (std::size_t length = 1; length < 36; ++length)
        for (std::size_t size = 1; size <= std::min(length, letters.size()); ++size)
            for (std::size_t at = 0; at + size <= length; ++at) {
                const std::string middle = letters.substr(letters.size() - size);
                const CString spec = "*" + CString(middle).MakeUpper() + "*";
                std::string text = std::string(length - size, '.').insert(at, middle);
                ASSERT_TRUE(StringUtils::MatchSpec(CString(text), spec, false)) << text;
                text[at] = '.';
                ASSERT_FALSE(StringUtils::MatchSpec(CString(text), spec, false)) << text;
            }
}

} // namespace
