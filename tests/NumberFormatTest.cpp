#include <gtest/gtest.h>

#include "NumberTextConv.h"
#include "support/Agreement.h"
#include "support/UserSettings.h"

namespace {

std::string Formatted(const std::string& digits, const NUMBERFMTA& format)
{
    const int size = GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, nullptr, 0);
    if (size == 0)
        return "ERROR " + std::to_string(GetLastError());
    std::string text(static_cast<std::size_t>(size), '#');
    EXPECT_EQ(GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, text.data(), size), size);
    EXPECT_EQ(GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, text.data(), size - 1), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(text.back(), '\0');
    text.pop_back();
    return text;
}

TEST(NumberFormat, IsTheRecordedOne)
{
    const auto number = [](const std::string& cell) { return static_cast<UINT>(std::stoul(cell)); };
    Agreement::Comparison comparison("number formats", "number format exceptions");
    for (const auto& cells : RecordedRows("numberformat-answers.tsv")) {
        std::string decimal = Unescaped(cells[3]), thousands = Unescaped(cells[4]);
        if (cells[6] == "yes")
            comparison.Check("recorded", cells[0] + " by " + cells[1],
                             Formatted(Unescaped(cells[0]), {0, 0, number(cells[1]), decimal.data(),
                                                             thousands.data(), number(cells[2])}),
                             Unescaped(cells[5]));
    }
    char decimal[] = ".", thousands[] = ",";
    for (const auto& [digits, places, zero, grouping, result] : Cases<5>("format"))
        comparison.Check(
            "asserted", digits + " by " + grouping,
            Formatted(digits, {number(places), number(zero), number(grouping), decimal, thousands, 1}),
            result);
}

class GroupedText : public testing::Test, public UserSettings {};

TEST_F(GroupedText, FollowsTheSettingsAtEachCallButKeepsTheSeparators)
{
    EXPECT_EQ(NumberTextConv::NumberToString(1234567, true), "1,234,567");
    Use("sThousand", ".");
    Use("sGrouping", "3;2;0");
    EXPECT_EQ(NumberTextConv::NumberToString(1234567, true), "12,34,567");
    Use("sGrouping", "0");
    EXPECT_EQ(NumberTextConv::NumberToString(1234567, true), "1234567");
    EXPECT_EQ(NumberTextConv::NumberToString(0, true), "0");
    EXPECT_EQ(NumberTextConv::NumberToString(-7, true, 5, "*"), "***-7");
    Use("sGrouping", "3;0");
    Use("iNegNumber", "7"); // no form
    EXPECT_EQ(NumberTextConv::NumberToString(-1234567, true), "-1234567");
}

} // namespace
