#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "NumberTextConv.h"
#include "support/Cases.h"
#include "support/UserSettings.h"

namespace {

class NumberText : public testing::Test {
protected:
    void Use(const char* decimal, const char* thousands)
    {
        LocaleUtils::m_csDecimalSeparator = decimal;
        LocaleUtils::m_csThousandsSeparator = thousands;
    }

    UserSettings m_user;
};

TEST_F(NumberText, InGroupsReadsBack)
{
    for (unsigned power = 1; power != 0; power *= 2)
        for (const unsigned bits : {power, ~power, power - 1}) {
            const int value = static_cast<int>(bits);
            EXPECT_EQ(NumberTextConv::GetNumberFromString(NumberTextConv::NumberToString(value, true)),
                      value);
        }
}

TEST_F(NumberText, OfManyDigits)
{
    EXPECT_EQ(NumberTextConv::NumberToString(1, false, 1'000'000, "ab").GetLength(), 1'000'001);
    EXPECT_EQ(NumberTextConv::ConvertFromHex("0x" + CString('F', 1'000'000)), 0x7FFFFFFF);
    const CString digits = CString('9', 999'999) + "3";
    EXPECT_EQ(NumberTextConv::GetNumber64FromString(digits), -7); // one less than what is 0 in 64 bits
    EXPECT_EQ(NumberTextConv::GetDoubleFromString(digits, false), HUGE_VAL);
}

// At most four characters of a separator are written, however many digits it stands between.
TEST_F(NumberText, InGroupsTakesFourCharactersOfASeparator)
{
    m_user.Use("sGrouping", "1;0");
    Use(".", "<1234>");
    EXPECT_EQ(NumberTextConv::NumberToString(-127, true), "-1<1232<1237");
    EXPECT_EQ(NumberTextConv::NumberToString(uint64{ULLONG_MAX}, true).GetLength(), 20 + 19 * 4);
}

TEST_F(NumberText, LosesItsDecimalZeroes)
{
    m_user.Use("sDecimal", ""); // the user has none
    for (const auto& [decimal, before, after] : Cases<3>("decimal zeroes")) {
        Use(decimal.c_str(), ",");
        CString text = before;
        NumberTextConv::RemoveDecimalZeroes(text);
        EXPECT_EQ(text, after) << before;
    }
}

} // namespace
