#include <gtest/gtest.h>

#include "NumberTextConv.h"
#include "support/Cases.h"
#include "support/UserSettings.h"

namespace {

std::string Formatted(const std::string& digits, const NUMBERFMTA& format)
{
    const int size = GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, nullptr, 0);
    if (size == 0)
        return "ERROR " + std::to_string(GetLastError());
    std::string text(static_cast<std::size_t>(size), '#');
    EXPECT_EQ(GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, text.data(), size - 1), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(GetNumberFormatA(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, text.data(), size), size);
    EXPECT_EQ(text.back(), '\0');
    text.pop_back();
    return text;
}

UINT Number(const std::string& cell)
{
    return static_cast<UINT>(std::stoul(cell));
}

TEST(NumberFormat, IsTheRecordedOne)
{
    int compared = 0;
    for (const auto& cells : RecordedRows("numberformat-answers.tsv")) {
        if (cells[6] != "yes")
            continue;
        ++compared;
        const std::string decimal = Unescaped(cells[3]), thousands = Unescaped(cells[4]);
        const NUMBERFMTA format = {
            0, 0, Number(cells[1]), decimal.c_str(), thousands.c_str(), Number(cells[2])};
        EXPECT_EQ(Formatted(Unescaped(cells[0]), format), Unescaped(cells[5]))
            << testing::PrintToString(cells);
    }
    EXPECT_EQ(compared, 370);
    for (const auto& [digits, places, zero, grouping, result] : Cases<5>("format"))
        EXPECT_EQ(Formatted(digits, {Number(places), Number(zero), Number(grouping), ".", ",", 1}), result)
            << digits << " by " << grouping;
}

class GroupedText : public testing::Test, public UserSettings {};

TEST_F(GroupedText, StaysWithinFourCharactersOfASeparatorAndPlainWhereTheFormIsNone)
{
    LocaleUtils::m_csThousandsSeparator = "<12345>";
    EXPECT_EQ(NumberTextConv::NumberToString(-1234567, true), "-1<123234<123567");
    Use("sGrouping", "1;0");
    EXPECT_EQ(NumberTextConv::NumberToString(uint64{18446744073709551615u}, true).GetLength(), 20 + 19 * 4);
    Use("iNegNumber", "7");
    EXPECT_EQ(NumberTextConv::NumberToString(-1234567, true), "-1234567");
    EXPECT_EQ(NumberTextConv::NumberToString(12, true), "1<1232");
}

TEST_F(GroupedText, FollowsTheSettingsAtEachCallButKeepsTheSeparators)
{
    Set("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(NumberTextConv::NumberToString(1234567, true), "1.234.567");
    Set("LC_ALL", "hi_IN.UTF-8");
    EXPECT_EQ(NumberTextConv::NumberToString(1234567, true), "12.34.567");
    Use("sGrouping", "0");
    EXPECT_EQ(NumberTextConv::NumberToString(1234567, true), "1234567");
    EXPECT_EQ(NumberTextConv::NumberToString(0, true), "0");
    EXPECT_EQ(NumberTextConv::NumberToString(-7, true, 5, "*"), "***-7");
}

} // namespace
