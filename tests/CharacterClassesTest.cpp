#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>

#include "StringUtils.h"

namespace {

struct Exposed : StringUtils {
    using StringUtils::CompareNoCase;
    using StringUtils::IsWholeWordDelimiter;
    using StringUtils::IsWordBreak;
};

const std::string Lowercase = "abcdefghijklmnopqrstuvwxyz";
const std::string Uppercase = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
const std::string Digits = "0123456789";
const std::string Space = "\t\n\v\f\r ";
const std::string Punctuation = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
const std::string Breaks1252 = "\x85\x93\x94\x96\x97\xAD\xB1\xB7\xD7\xF7";

bool Has(const std::string& set, int c)
{
    return set.find(static_cast<char>(c)) != std::string::npos;
}

TEST(CharacterClasses, AreThoseOfAsciiForEveryByte)
{
    for (int c = 0; c <= 255; ++c) {
        SCOPED_TRACE(c);
        EXPECT_EQ(StringUtils::IsAlpha(c), Has(Lowercase + Uppercase, c));
        EXPECT_EQ(StringUtils::IsDigit(c), Has(Digits, c));
        EXPECT_EQ(StringUtils::IsSpace(c), Has(Space, c));
        EXPECT_EQ(StringUtils::IsPunct(c), Has(Punctuation, c));
        EXPECT_EQ(StringUtils::IsRomanNumeral(c), Has("CDILMVX", c));
        EXPECT_EQ(StringUtils::IsLower(c), !Has(Uppercase, c));
        EXPECT_EQ(StringUtils::IsUpper(c), !Has(Lowercase, c));
        const auto upper = Uppercase.find(static_cast<char>(c));
        const auto lower = Lowercase.find(static_cast<char>(c));
        EXPECT_EQ(StringUtils::ToLower(c), upper == std::string::npos ? c : Lowercase[upper]);
        EXPECT_EQ(StringUtils::ToUpper(c), lower == std::string::npos ? c : Uppercase[lower]);
    }
}

TEST(CharacterClasses, HaveNoMembersOutsideTheBytes)
{
    for (const int c : {INT_MIN, -128, -5, -1, 256, 'A' + 256, 1000, INT_MAX}) {
        SCOPED_TRACE(c);
        EXPECT_FALSE(StringUtils::IsAlpha(c) || StringUtils::IsDigit(c) || StringUtils::IsSpace(c));
        EXPECT_FALSE(StringUtils::IsLower(c) || StringUtils::IsUpper(c) || StringUtils::IsPunct(c));
        EXPECT_FALSE(StringUtils::IsRomanNumeral(c));
        EXPECT_EQ(StringUtils::ToLower(c), 0);
        EXPECT_EQ(StringUtils::ToUpper(c), 0);
        EXPECT_TRUE(Exposed::CompareNoCase(c, 0) && Exposed::CompareNoCase(-2, c));
        EXPECT_FALSE(Exposed::CompareNoCase(c, 'a'));
    }
    EXPECT_TRUE(Exposed::CompareNoCase('A', 'a'));
    EXPECT_FALSE(Exposed::CompareNoCase(0xC9, 0xE9));
}

TEST(CharacterClasses, OfWordsSeparateByTheirLists)
{
    for (int byte = 0; byte <= 255; ++byte) {
        const char c = static_cast<char>(byte);
        SCOPED_TRACE(byte);
        EXPECT_EQ(Exposed::IsWordBreak(c),
                  Has(Breaks1252, c) || (Has(Space + Punctuation, c) && !Has("'_", c)));
        for (const bool underscore : {false, true})
            for (const bool dollar : {false, true})
                EXPECT_EQ(Exposed::IsWholeWordDelimiter(c, underscore, dollar),
                          c == '_'   ? underscore
                          : c == '$' ? dollar
                                     : Has(Space + Punctuation, c));
        EXPECT_EQ(StringUtils::IsSlash(c), Has("\\/", c));
        EXPECT_EQ(StringUtils::IsSingleQuote(c), byte == 39);
        EXPECT_EQ(StringUtils::IsDoubleQuote(c), byte == 34);
        EXPECT_EQ(StringUtils::IsLineBreak(c), byte == 10 || byte == 13);
    }
}

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

// The steps of both orderings with case; of the special one, which side must be lower and which upper.
bool SlowCase(const std::string& a, const std::string& b, bool less)
{
    const auto lower = [](char c) {
        const auto at = Uppercase.find(c);
        return static_cast<unsigned char>(c) >= 128 ? 0 : at == std::string::npos ? c : Lowercase[at];
    };
    const auto isLower = [](char c) { return static_cast<unsigned char>(c) < 128 && !Has(Uppercase, c); };
    const auto isUpper = [](char c) { return static_cast<unsigned char>(c) < 128 && !Has(Lowercase, c); };
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
        if (less && isLower(a[i]) && isUpper(b[i])) {
            if (!(a[i] > lower(b[i])))
                return true;
        } else if (!less && isUpper(a[i]) && isLower(b[i])) {
            if (!(lower(a[i]) < b[i]))
                return true;
        } else if (lower(a[i]) != lower(b[i])) {
            return (lower(a[i]) < lower(b[i])) == less;
        }
    }
    return less ? a.size() < b.size() : a.size() > b.size();
}

TEST(CharacterOrderings, WithCaseDecideAsTheStepsDo)
{
    const std::string alphabet("abAB1 \0\x80\xFF", 9);
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto make = [&] {
        std::string text;
        for (auto length = random() % 5; length > 0; --length)
            text += alphabet[random() % alphabet.size()];
        return text;
    };
    for (int round = 0; round < 200000; ++round) {
        const std::string a = make();
        const std::string b = make();
        SCOPED_TRACE(testing::PrintToString(a) + " against " + testing::PrintToString(b));
        ASSERT_EQ(StringUtils::IsLessThanCase(a, b), SlowCase(a, b, true));
        ASSERT_EQ(StringUtils::IsGreaterThanCase(a, b), SlowCase(a, b, false));
    }
}

TEST(CharacterOrderings, OfMapsFollowTheRuntimeNotTheTables)
{
    EXPECT_TRUE(NoCase()("a", "B"));
    EXPECT_FALSE(NoCase()("A", "a") || NoCase()("a", "A"));
    EXPECT_TRUE(NoCase()("\xE8", "\xE9")); // equal by the tables
}

TEST(WholeStrings, AreTestedAndTrimmedByTheTables)
{
    for (const char* text : {"yes", "Y", "1", "true", "T", "Not sure", "x\xFFy"})
        EXPECT_TRUE(StringUtils::IsYes(text)) << text;
    for (const char* text : {"No", "0", "", "false", "N", "\xFF"})
        EXPECT_FALSE(StringUtils::IsYes(text)) << text;
    const struct {
        CString text, trimmed;
        bool isBlank;
    } rows[] = {
        {"", "", true},          {" \t\r\n\v\f", "", true},  {"  a b  ", "a b", false},
        {"\xA0", "\xA0", false}, {" x\xA0", "x\xA0", false}, {CString("\0 ", 2), CString('\0'), false},
        {"a", "a", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(StringUtils::IsEffectivelyEmpty(row.text), row.isBlank);
        CString text = row.text;
        StringUtils::Trim(text);
        EXPECT_EQ(text, row.trimmed);
    }
}

} // namespace
