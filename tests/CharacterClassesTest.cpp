#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "StringUtils.h"
#include "support/TextModels.h"

namespace {

struct Exposed : StringUtils {
    using StringUtils::CompareNoCase;
    using StringUtils::IsWholeWordDelimiter;
    using StringUtils::IsWordBreak;
};

const std::string Lowercase = "abcdefghijklmnopqrstuvwxyz";
const std::string Uppercase = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
const std::string Digits = "0123456789";
const std::string Breaks1252 = "\x85\x93\x94\x96\x97\xAD\xB1\xB7\xD7\xF7";

void ExpectClassesOf(int byte)
{
    SCOPED_TRACE(byte);
    const char c = static_cast<char>(byte);
    EXPECT_EQ(StringUtils::IsAlpha(byte), Has(Lowercase + Uppercase, c));
    EXPECT_EQ(StringUtils::IsDigit(byte), Has(Digits, c));
    EXPECT_EQ(StringUtils::IsSpace(byte), Has(Space, c));
    EXPECT_EQ(StringUtils::IsPunct(byte), Has(Punctuation, c));
    EXPECT_EQ(StringUtils::IsRomanNumeral(byte), Has("CDILMVX", c));
    EXPECT_EQ(StringUtils::IsLower(byte), !Has(Uppercase, c));
    EXPECT_EQ(StringUtils::IsUpper(byte), !Has(Lowercase, c));
    EXPECT_EQ(StringUtils::ToLower(byte), Has(Uppercase, c) ? Lowercase[Uppercase.find(c)] : byte);
    EXPECT_EQ(StringUtils::ToUpper(byte), Has(Lowercase, c) ? Uppercase[Lowercase.find(c)] : byte);
    EXPECT_EQ(StringUtils::IsSlash(c), Has("\\/", c));
    EXPECT_TRUE(StringUtils::IsSingleQuote(c) == (byte == 39) &&
                StringUtils::IsDoubleQuote(c) == (byte == 34));
    EXPECT_EQ(StringUtils::IsLineBreak(c), byte == 10 || byte == 13);
    EXPECT_EQ(Exposed::IsWordBreak(c), Has(Breaks1252, c) || (Has(Space + Punctuation, c) && !Has("'_", c)));
    for (const bool underscore : {false, true})
        for (const bool dollar : {false, true})
            EXPECT_EQ(Exposed::IsWholeWordDelimiter(c, underscore, dollar),
                      c == '_'   ? underscore
                      : c == '$' ? dollar
                                 : Has(Space + Punctuation, c));
}

TEST(CharacterClasses, AreThoseOfAsciiForEveryByte)
{
    for (int byte = 0; byte <= 255; ++byte)
        ExpectClassesOf(byte);
    for (int* table :
         {StringUtils::m_tableIsAlpha, StringUtils::m_tableLowercase, StringUtils::m_tableUppercase})
        std::fill_n(table, 256, 300);
    StringUtils::DoPreLoad(); // fills them again
    ExpectClassesOf('a');
    ExpectClassesOf('Z');
}

TEST(CharacterClasses, HaveNoMembersOutsideTheBytes)
{
    for (const int c : {INT_MIN, -128, -5, -1, 256, 'A' + 256, 1000, INT_MAX}) {
        SCOPED_TRACE(c);
        EXPECT_FALSE(StringUtils::IsAlpha(c) || StringUtils::IsDigit(c) || StringUtils::IsSpace(c));
        EXPECT_FALSE(StringUtils::IsLower(c) || StringUtils::IsUpper(c) || StringUtils::IsPunct(c));
        EXPECT_FALSE(StringUtils::IsRomanNumeral(c) || Exposed::CompareNoCase(c, 'a'));
        EXPECT_TRUE(StringUtils::ToLower(c) == 0 && StringUtils::ToUpper(c) == 0);
        EXPECT_TRUE(Exposed::CompareNoCase(c, 0) && Exposed::CompareNoCase(-2, c));
    }
    EXPECT_TRUE(Exposed::CompareNoCase('A', 'a') && !Exposed::CompareNoCase(0xC9, 0xE9));
}

TEST(CharacterOrderings, OfKeysWithoutCaseAreTheRuntimes)
{
    EXPECT_TRUE(NoCase()("a", "B") && !NoCase()("A", "a") && NoCase()("\xE8", "\xE9"));
}

} // namespace
