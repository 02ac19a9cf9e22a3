#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>

#include "CByteArray.h"
#include "NumberTextConv.h"
#include "support/UserSettings.h"

namespace {

class NumberText : public testing::Test {
protected:
    void Use(const char* decimal, const char* thousands)
    {
        LocaleUtils::m_csDecimalSeparator = decimal;
        LocaleUtils::m_csThousandsSeparator = thousands;
    }
    // A text of the characters that the rules speak of, and some others.
    CString RandomText()
    {
        static constexpr char Characters[] = "01234567890123456789--().,, a\0\xE9\xB2";
        std::string text(m_random() % 30, ' ');
        for (char& c : text)
            c = Characters[m_random() % (sizeof Characters - 1)];
        return CString(text);
    }

    UserSettings m_user;
    unsigned int m_seed = std::random_device{}();
    std::mt19937 m_random{m_seed};
};

TEST_F(NumberText, PadsWithWholePads)
{
    struct {
        int value, minWidth;
        const char *pad, *text;
    } const cases[] = {{7, 3, "0", "007"},     {7, 4, "ab", "abab7"},
                       {7, 3, "", "7"},        {7, 2, "abc", "abc7"},
                       {7, 1, "0", "7"},       {7, 0, "0", "7"},
                       {7, INT_MIN, "0", "7"}, {INT_MIN, 12, " ", " -2147483648"},
                       {-5, 4, "xy", "xy-5"},  {-5, 5, "xy", "xyxy-5"}};
    for (const auto& row : cases)
        EXPECT_EQ(NumberTextConv::NumberToString(row.value, false, row.minWidth, row.pad), row.text)
            << row.value << ' ' << row.minWidth << ' ' << row.pad;
    EXPECT_EQ(NumberTextConv::NumberToString(1, false, 1'000'000, "ab").GetLength(), 1'000'001);
}

TEST_F(NumberText, OfAllWidthsReadsBack)
{
    SCOPED_TRACE(m_seed);
    for (int i = 0; i < 20000; ++i) {
        const auto value = static_cast<int>(m_random() >> (m_random() % 32));
        const uint64 wide = (uint64{m_random()} << 32 | m_random()) >> (m_random() % 64);
        EXPECT_EQ(NumberTextConv::NumberToString(value), std::to_string(value).c_str());
        EXPECT_EQ(NumberTextConv::NumberToString(wide), std::to_string(wide).c_str());
        EXPECT_EQ(NumberTextConv::GetNumberFromString(NumberTextConv::NumberToString(value, true)), value);
    }
    for (const int value : {0, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(NumberTextConv::NumberToString(value), std::to_string(value).c_str());
    EXPECT_EQ(NumberTextConv::NumberToString(uint64{ULLONG_MAX}), "18446744073709551615");
}

// From the last character to the first with a place value; in 64 bits, of which the caller takes the lower
// ones.
uint64 PlaceByPlace(const CString& s)
{
    uint64 total = 0, place = 1;
    bool isNegative = false;
    for (int i = s.GetLength(); i-- > 0;) {
        if (s[i] == '(' || s[i] == '-')
            isNegative = true;
        if (std::string("0123456789").find(s[i]) != std::string::npos) {
            total += static_cast<uint64>(s[i] - '0') * place;
            place *= 10;
        }
    }
    return isNegative ? 0 - total : total;
}

TEST_F(NumberText, ReadsIntegersAsTheRuleDoes)
{
    SCOPED_TRACE(m_seed);
    CString digits;
    for (int i = 0; i < 1'000'000; ++i)
        digits += static_cast<char>('0' + m_random() % 10);
    std::vector<CString> texts = {"",
                                  "-",
                                  "no digit",
                                  "-12",
                                  "1 2 3",
                                  "(1,000)",
                                  "5-",
                                  "12a3",
                                  "1.5",
                                  "NaN",
                                  "4294967297",
                                  "-0",
                                  "2147483648",
                                  digits,
                                  "\xB2"
                                  "7"};
    for (int i = 0; i < 20000; ++i)
        texts.push_back(RandomText());
    for (const CString& text : texts) {
        EXPECT_EQ(NumberTextConv::GetNumber64FromString(text), static_cast<int64>(PlaceByPlace(text)));
        EXPECT_EQ(NumberTextConv::GetNumberFromString(text), static_cast<int>(PlaceByPlace(text)));
    }
    EXPECT_EQ(NumberTextConv::GetNumberFromString("(1,000)"), -1000);
    EXPECT_EQ(NumberTextConv::GetNumberFromString("4294967297"), 1);
    EXPECT_EQ(NumberTextConv::GetNumberFromString("5-"), -5);
}

// Step by step as the rule says it, down to the replacement of a result near zero.
double StepByStep(const CString& s, char decimal, char thousands, bool parenthesesNegative)
{
    double result = 0, scale = 10;
    bool started = false, negative = false, inFraction = false;
    for (const char c : s) {
        const bool isDigit = c >= '0' && c <= '9';
        if (!started && !isDigit) {
            negative |= c == '-' || (c == '(' && parenthesesNegative);
            if (c == decimal && c != '-' && !(c == '(' && parenthesesNegative)) {
                scale = 0.1;
                inFraction = true;
            }
            continue;
        }
        started = true;
        if (c == thousands)
            continue;
        if (c == decimal) {
            scale = 0.1;
            inFraction = true;
            continue;
        }
        if (!isDigit)
            break;
        if (inFraction) {
            volatile double part = scale * (c - '0'); // rounded by itself
            result += part;
            scale *= 0.1;
        } else {
            result = result > -0.001 && result < 0.001 ? c - '0' : result * 10 + (c - '0');
        }
    }
    return negative ? -result : result;
}

TEST_F(NumberText, ReadsDecimalsBitForBitAsTheRuleDoes)
{
    SCOPED_TRACE(m_seed);
    std::vector<CString> texts = {"",
                                  "abc 12",
                                  ".5",
                                  "5-",
                                  "1,234.50",
                                  "(3.5)",
                                  "1.2.3",
                                  "--5",
                                  "NaN",
                                  "-0",
                                  ".",
                                  "-.",
                                  "0.1234567890123456789",
                                  CString(std::string(400, '9')),
                                  CString(std::string(100, '0')) + ".1"};
    for (int i = 0; i < 20000; ++i)
        texts.push_back(RandomText());
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

TEST_F(NumberText, ReadsTheKnownDecimals)
{
    struct {
        const char* text;
        bool parentheses;
        double value;
    } const cases[] = {
        {"1,234.50", false, 1234.5}, {"(3.5)", true, -3.5}, {"(3.5)", false, 3.5}, {"5-", false, 5},
        {"abc 12", false, 12},       {".5", false, 0.5},    {"1.5.5", false, 2},   {"1.5x7", false, 1.5}};
    for (const auto& row : cases)
        EXPECT_DOUBLE_EQ(NumberTextConv::GetDoubleFromString(row.text, row.parentheses), row.value)
            << row.text;
}

TEST_F(NumberText, LosesItsDecimalZeroes)
{
    struct {
        const char *decimal, *text, *left;
    } const cases[] = {{".", "12.500", "12.5"}, {".", "12.000", "12"}, {".", "120", "120"},
                       {".", "1.0", "1"},       {".", "100", "100"},   {".", "", ""},
                       {".", ".00", ""},        {".", "0.", "0"},      {".", "1.20x", "1.20x"},
                       {",", "1.50", "1.50"},   {"::", "1::00", "1:"}, {"::", "1:00", "1:00"}};
    for (const auto& row : cases) {
        Use(row.decimal, ",");
        CString text = row.text;
        NumberTextConv::RemoveDecimalZeroes(text);
        EXPECT_EQ(text, row.left) << row.text;
    }
}

TEST_F(NumberText, ReadsHexadecimalInThirtyTwoBits)
{
    struct {
        const char* text;
        long value;
    } const cases[] = {{"0x1F", 31},
                       {"0x1f", 31},
                       {"1F", 0},
                       {"0x", 0},
                       {"0X1F", 0},
                       {"", 0},
                       {"0xg", 0},
                       {"0x-5", 0},
                       {"0x 5", 0},
                       {"-0x1F", 0},
                       {"0x7FFFFFFF", 0x7FFFFFFF},
                       {"0x80000000", 0x7FFFFFFF},
                       {"0xFFFFFFFF", 0x7FFFFFFF},
                       {"0x00000000000012", 18},
                       {"0x12\xB2", 18},
                       {"0x12z4", 18},
                       {" 0x1F", 0}};
    for (const auto& row : cases)
        EXPECT_EQ(NumberTextConv::ConvertFromHex(row.text), row.value) << row.text;
    EXPECT_EQ(NumberTextConv::ConvertFromHex(CString("0x") + CString('F', 1'000'000)), 0x7FFFFFFF);
}

template <class Signed>
void ExpectCounts()
{
    using Unsigned = std::make_unsigned_t<Signed>;
    for (const auto value : {std::numeric_limits<Signed>::min(), Signed{-10}, Signed{-9}, Signed{-1},
                             Signed{0}, std::numeric_limits<Signed>::max()}) {
        bool negative = value >= 0;
        const std::size_t length = std::to_string(value).size() - (value < 0 ? 1 : 0);
        EXPECT_EQ(NumberTextConv::GetDigitCount(value, negative), static_cast<int>(length));
        EXPECT_EQ(negative, value < 0);
    }
    int digits = 1;
    for (Unsigned power = 10; digits < std::numeric_limits<Unsigned>::digits10 + 1; power *= 10, ++digits) {
        EXPECT_EQ(NumberTextConv::GetDigitCount(static_cast<Unsigned>(power - 1)), digits);
        EXPECT_EQ(NumberTextConv::GetDigitCount(power), digits + 1);
    }
    EXPECT_EQ(NumberTextConv::GetDigitCount(std::numeric_limits<Unsigned>::max()), digits);
}

TEST_F(NumberText, HasAsManyDigitsAsItIsWrittenWith)
{
    ExpectCounts<int>();
    ExpectCounts<long>();
    ExpectCounts<int64>();
    EXPECT_EQ(NumberTextConv::GetDigitCount(0), 1);
    for (const char* text : {"", "abc", "\xB2\xB3\xB9", "\xFF"})
        EXPECT_FALSE(NumberTextConv::HasDigit(text));
    for (const char* text : {"0", "x9", "9x"})
        EXPECT_TRUE(NumberTextConv::HasDigit(text));
}

TEST_F(NumberText, OfBytesIsReversible)
{
    CByteArray bytes, read;
    CString text = "before";
    NumberTextConv::ConvertByteArrayToString(bytes, text);
    EXPECT_EQ(text, "");
    for (const BYTE byte : std::initializer_list<BYTE>{12, 0, 255})
        bytes.Add(byte);
    NumberTextConv::ConvertByteArrayToString(bytes, text);
    EXPECT_EQ(text, "12, 0, 255");
    for (int count = 0; count < 600; ++count) {
        bytes.Add(static_cast<BYTE>(count));
        NumberTextConv::ConvertByteArrayToString(bytes, text);
        NumberTextConv::ConvertStringToByteArray(text, read);
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), read.begin(), read.end())) << count;
    }
    struct {
        const char* text;
        std::vector<BYTE> bytes;
    } const cases[] = {
        {"", {}},   {"256, -1", {0, 255}}, {"1,2", {12}}, {"1, , 3", {1, 0, 3}}, {"7, ", {7, 0}},
        {"x", {0}}, {", ", {0, 0}}};
    for (const auto& row : cases) {
        NumberTextConv::ConvertStringToByteArray(row.text, read);
        EXPECT_EQ(std::vector<BYTE>(read.begin(), read.end()), row.bytes) << row.text;
    }
}

} // namespace
