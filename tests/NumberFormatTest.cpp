#include <gtest/gtest.h>

#include "NumberTextConv.h"
#include "support/Table.h"
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

UINT Number(const std::string& cell)
{
    return static_cast<UINT>(std::stoul(cell));
}

struct Recorded {
    std::string digits, decimal, thousands, result;
    UINT grouping, order;
};

std::vector<Recorded> TrustedRows()
{
    using Table::Unescaped;
    std::vector<Recorded> rows;
    for (const auto& cells : Table::Read("numberformat-answers.tsv"))
        if (cells[6] == "yes")
            rows.push_back({Unescaped(cells[0]), Unescaped(cells[3]), Unescaped(cells[4]),
                            Unescaped(cells[5]), Number(cells[1]), Number(cells[2])});
    return rows;
}

TEST(NumberFormat, IsTheRecordedOne)
{
    const std::vector<Recorded> rows = TrustedRows();
    EXPECT_EQ(rows.size(), 370u);
    for (const Recorded& row : rows)
        EXPECT_EQ(Formatted(row.digits,
                            {0, 0, row.grouping, row.decimal.c_str(), row.thousands.c_str(), row.order}),
                  row.result)
            << row.digits << " by " << row.grouping;
}

TEST(NumberFormat, OfEmptyGroupsFractionsAndZeros)
{
    for (const auto& cells : Table::Section("format")) {
        const NUMBERFMTA format = {Number(cells[1]), Number(cells[2]), Number(cells[3]), ".", ",", 1};
        EXPECT_EQ(Formatted(cells[0], format), cells[4]) << testing::PrintToString(cells);
    }
    // Nothing depends on the length of the number.
    const std::string text = Formatted(std::string(1'000'000, '7'), {0, 0, 1, ".", ",", 1});
    EXPECT_EQ(text.size(), 1'999'999u);
    EXPECT_EQ(text.substr(0, 5), "7,7,7");
}

class GroupedText : public testing::Test, public UserSettings {};

std::string GroupingText(UINT grouping)
{
    std::string text;
    for (const char digit : std::to_string(grouping))
        text += std::string(text.empty() ? "" : ";") + digit;
    return text;
}

// All recorded rows that the two writers can be brought to write through the user's own settings.
TEST_F(GroupedText, IsTheRecordedOneByTheUsersSettings)
{
    int compared = 0;
    for (const Recorded& row : TrustedRows()) {
        const bool isZero = row.digits.find_first_not_of("-0") == std::string::npos;
        const bool isPlain = row.digits.find_first_not_of("-0123456789") == std::string::npos && !isZero &&
                             row.digits.find_first_of("123456789") == (row.digits[0] == '-' ? 1u : 0u);
        if (!isPlain || GroupingText(row.grouping).find_first_of("09") != std::string::npos ||
            row.decimal.empty() || row.thousands.empty() || row.result.starts_with("ERROR"))
            continue;
        Use("sGrouping", GroupingText(row.grouping));
        Use("iNegNumber", std::to_string(row.order));
        LocaleUtils::m_csDecimalSeparator = row.decimal;
        LocaleUtils::m_csThousandsSeparator = row.thousands;
        const CString text = row.digits[0] == '-'
                                 ? NumberTextConv::NumberToString(std::stoi(row.digits), true)
                                 : NumberTextConv::NumberToString(uint64{std::stoull(row.digits)}, true);
        EXPECT_EQ(text, row.result.c_str()) << row.digits << " by " << row.grouping;
        ++compared;
    }
    EXPECT_GT(compared, 200);
}

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
