#include <gtest/gtest.h>

#include "NumberTextConv.h"
#include "support/Agreement.h"
#include "support/UserSettings.h"

namespace {

std::string Formatted(const std::string& digits, const NUMBERFMTA& format)
{
    char text[128];
    const auto write = [&](char* buffer, int size) {
        return GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, buffer, size);
    };
    const int size = write(text, sizeof text);
    if (size == 0)
        return "ERROR " + std::to_string(GetLastError());
    if (size > 1) {
        EXPECT_EQ(write(text, size - 1), 0);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    }
    EXPECT_EQ(write(text, size), size);
    EXPECT_EQ(text[size - 1], '\0');
    return text;
}

TEST(NumberFormat, IsTheRecordedOne)
{
    const auto number = [](const std::string& cell) { return static_cast<UINT>(std::stoul(cell)); };
    Agreement::Comparison comparison("number formats", "number format exceptions");
    for (const auto& cells : RecordedRows("numberformat-answers.tsv")) {
        std::string decimal = Unescaped(cells[3]), thousands = Unescaped(cells[4]);
        const NUMBERFMTA format = {
            0, 0, number(cells[1]), decimal.data(), thousands.data(), number(cells[2])};
        if (cells[6] == "yes")
            comparison.Check("recorded", cells[0] + " by " + cells[1], Formatted(Unescaped(cells[0]), format),
                             Unescaped(cells[5]));
    }
    char decimal[] = ".", thousands[] = ",";
    for (const auto& [digits, places, zero, grouping, result] : Cases<5>("format")) {
        const NUMBERFMTA format = {number(places), number(zero), number(grouping), decimal, thousands, 1};
        comparison.Check("asserted", digits + " by " + grouping, Formatted(digits, format), result);
    }
    const NUMBERFMTA format = {0, 0, 3, decimal, thousands, 1};
    const int room = GetNumberFormatA(LOCALE_USER_DEFAULT, 0, "12345", &format, nullptr, 0);
    comparison.Check("room", "12345", std::to_string(room), "7");
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
    EXPECT_EQ(NumberTextConv::NumberToString(-7, true, 5, "*"), "***-7");
    Use("sGrouping", "3;0");
    Use("iNegNumber", "7"); // no form
    EXPECT_EQ(NumberTextConv::NumberToString(-1234567, true), "-1234567");
}

} // namespace
