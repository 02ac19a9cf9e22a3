#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "CByteArray.h"
#include "NumberTextConv.h"
#include "support/Cases.h"
#include "support/RandomTexts.h"
#include "support/UserSettings.h"

namespace {

class NumberText : public testing::Test {
protected:
    void Use(const char* decimal, const char* thousands)
    {
        LocaleUtils::m_csDecimalSeparator = decimal;
        LocaleUtils::m_csThousandsSeparator = thousands;
    }
    // And texts of the characters that the rules speak of and some more.
    std::vector<CString> AndRandom(std::vector<CString> texts)
    {
        const std::string characters("01234567890123456789--().,, a\0\xE9\xB2", 33);
        for (int i = 0; i < 20000; ++i)
            texts.push_back(m_random.Make(characters, m_random.Below(30)));
        return texts;
    }

    UserSettings m_user;
    RandomTexts m_random;
};

TEST_F(NumberText, PadsWithWholePads)
{
    for (const auto& [value, minWidth, pad, text] : Cases<4>("pads"))
        EXPECT_EQ(NumberTextConv::NumberToString(std::stoi(value), false, std::stoi(minWidth), pad), text);
    EXPECT_EQ(NumberTextConv::NumberToString(1, false, 1'000'000, "ab").GetLength(), 1'000'001);
}

TEST_F(NumberText, OfAllWidthsReadsBackAndHasItsDigits)
{
    std::vector<uint64> values = {0, 0x7FFFFFFF, 0x80000000, uint64{1} << 63, (uint64{1} << 63) - 1};
    for (uint64 power = 1, digits = 1; digits <= 20; power *= 10, ++digits)
        values.insert(values.end(), {power - 1, power, 0 - power, 1 - power});
    for (int i = 0; i < 20000; ++i)
        values.push_back((uint64{m_random.Engine()()} << 32 | m_random.Engine()()) >> m_random.Below(64));
    for (const uint64 wide : values) {
        const int value = static_cast<int>(wide);
        const CString text(std::to_string(value)), wideText(std::to_string(wide));
        EXPECT_EQ(NumberTextConv::NumberToString(value), text);
        EXPECT_EQ(NumberTextConv::NumberToString(wide), wideText);
        EXPECT_EQ(NumberTextConv::GetNumberFromString(NumberTextConv::NumberToString(value, true)), value);
        bool isNegative = value >= 0;
        EXPECT_EQ(NumberTextConv::GetDigitCount(value, isNegative), text.GetLength() - (value < 0));
        EXPECT_EQ(isNegative, value < 0);
        EXPECT_EQ(NumberTextConv::GetDigitCount(wide), wideText.GetLength());
    }
}

// At most four characters of a separator are written, however many digits it stands between.
TEST_F(NumberText, InGroupsTakesFourCharactersOfASeparator)
{
    m_user.Use("sGrouping", "1;0");
    Use(".", "<1234>");
    EXPECT_EQ(NumberTextConv::NumberToString(-127, true), "-1<1232<1237");
    EXPECT_EQ(NumberTextConv::NumberToString(uint64{ULLONG_MAX}, true).GetLength(), 20 + 19 * 4);
}

// From the last character to the first with a place value; in 64 bits, of which the caller takes the lower
// ones.
uint64 PlaceByPlace(const CString& s)
{
    uint64 total = 0, place = 1;
    bool isNegative = false;
    for (int i = s.GetLength(); i-- > 0;) {
        isNegative = isNegative || s[i] == '(' || s[i] == '-';
        if (s[i] >= '0' && s[i] <= '9') {
            total += static_cast<uint64>(s[i] - '0') * place;
            place *= 10;
        }
    }
    return isNegative ? 0 - total : total;
}

TEST_F(NumberText, ReadsIntegersAsTheRuleDoes)
{
    const CString digits(m_random.Make(std::string("0123456789"), 1'000'000));
    for (const CString& text : AndRandom({"", "-", "NaN", "4294967297", "-0", "2147483648", digits,
                                          "\xB2"
                                          "7"})) {
        EXPECT_EQ(NumberTextConv::GetNumber64FromString(text), static_cast<int64>(PlaceByPlace(text)));
        EXPECT_EQ(NumberTextConv::GetNumberFromString(text), static_cast<int>(PlaceByPlace(text)));
    }
}

// Step by step as the rule says it, down to the replacement of a result near zero.
double StepByStep(const CString& s, char decimal, char thousands, bool parenthesesNegative)
{
    double result = 0, scale = 10;
    bool started = false, negative = false;
    for (const char c : s) {
        const bool isDigit = c >= '0' && c <= '9';
        const bool isSign = !started && (c == '-' || (c == '(' && parenthesesNegative));
        started = started || isDigit;
        if (isSign) {
            negative = true;
        } else if (started && c == thousands) {
            continue;
        } else if (c == decimal && (started || !isDigit)) {
            scale = 0.1;
        } else if (started && !isDigit) {
            break;
        } else if (isDigit && scale < 1) {
            volatile double part = scale * (c - '0'); // rounded by itself
            result += part;
            scale *= 0.1;
        } else if (isDigit) {
            result = result > -0.001 && result < 0.001 ? c - '0' : result * 10 + (c - '0');
        }
    }
    return negative ? -result : result;
}

TEST_F(NumberText, ReadsDecimalsBitForBitAsTheRuleDoes)
{
    const auto texts = AndRandom({"", ".", "-.", "--5", "NaN", "-0", "1.2.3", "0.1234567890123456789",
                                  CString('9', 400), CString('0', 100) + ".1"});
    const char* const separators[][2] = {{".", ","},    {",", "."}, {"::", "''''"},
                                         {",", "\xA0"}, {"-", "5"}, {".", "."}};
    for (const auto& [decimal, thousands] : separators) {
        Use(decimal, thousands);
        for (const CString& text : texts)
            for (const bool parentheses : {false, true}) {
                const double expected = StepByStep(text, decimal[0], thousands[0], parentheses);
                const double read = NumberTextConv::GetDoubleFromString(text, parentheses);
                ASSERT_EQ(std::memcmp(&expected, &read, sizeof read), 0)
                    << text << ' ' << expected << ' ' << read;
            }
    }
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

TEST_F(NumberText, ReadsHexadecimalInThirtyTwoBits)
{
    for (const auto& [text, value] : Cases<2>("hexadecimal"))
        EXPECT_EQ(NumberTextConv::ConvertFromHex(text), std::stol(value)) << text;
    EXPECT_EQ(NumberTextConv::ConvertFromHex("0x" + CString('F', 1'000'000)), 0x7FFFFFFF);
}

TEST_F(NumberText, OfBytesIsReadAndWritten)
{
    CByteArray read;
    CString text;
    for (const auto& [before, expected] : Cases<2>("byte arrays")) {
        NumberTextConv::ConvertStringToByteArray(before, read);
        NumberTextConv::ConvertByteArrayToString(read, text);
        EXPECT_EQ(text, expected) << before;
    }
}

} // namespace
