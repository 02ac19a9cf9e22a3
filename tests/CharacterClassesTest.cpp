#include <gtest/gtest.h>

#include "StringUtils.h"

namespace {

struct Orderings {
    const char *a, *b;
    bool lessNoCase, greaterNoCase, lessCase, greaterCase;
};

TEST(CharacterOrderings, AreThoseOfTheRuleWithItsOddities)
{
    const Orderings rows[] = {
        {"", "", false, false, false, false},      {"", "a", true, false, true, false},
        {"abc", "ABCD", true, false, true, false}, {"ABC", "abc", false, false, false, true},
        {"a", "A", false, false, true, false},     {"A", "a", false, false, false, true},
        {"bx", "Ay", false, true, true, true},     {"1b", "1a", false, true, true, true},
        {"1a", "1b", true, false, true, true},     {"\xE9", "\xFC", false, false, false, false},
        {"\xE9", " ", true, false, true, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.a) + " against " + row.b);
        EXPECT_EQ(StringUtils::IsLessThanNoCase(row.a, row.b), row.lessNoCase);
        EXPECT_EQ(StringUtils::IsGreaterThanNoCase(row.a, row.b), row.greaterNoCase);
        EXPECT_EQ(StringUtils::IsLessThanCase(row.a, row.b), row.lessCase);
        EXPECT_EQ(StringUtils::IsGreaterThanCase(row.a, row.b), row.greaterCase);
    }
}

} // namespace
