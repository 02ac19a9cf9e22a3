#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <string>

#include "StringUtils.h"
#include "TextArray.h"

namespace {

// ---- the rules, with a copy for every piece -------------------------------------------------------------

int Lower(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 128)
        return 0;
    return byte >= 'A' && byte <= 'Z' ? byte + 32 : byte;
}

int Upper(char c)
{
    const int lower = Lower(c);
    return lower >= 'a' && lower <= 'z' ? lower - 32 : lower;
}

bool SlowFirstChars(const std::string& text, const std::string& prefix, bool caseSensitive)
{
    if (text.empty())
        return prefix.empty();
    if (prefix.empty() || prefix.size() > text.size())
        return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        const bool isLower = static_cast<unsigned char>(text[i]) < 128 && Lower(text[i]) == text[i];
        const int otherCase = isLower ? Upper(text[i]) : Lower(text[i]);
        if (prefix[i] != text[i] && (caseSensitive || prefix[i] != otherCase))
            return false;
    }
    return true;
}

bool SlowLastChars(const std::string& text, const std::string& suffix, bool caseSensitive)
{
    return suffix.size() <= text.size()
               ? (text.empty() || !suffix.empty()) &&
                     SlowFirstChars(text.substr(text.size() - suffix.size()), suffix, caseSensitive)
               : false;
}

std::string Lowered(std::string text, bool caseSensitive)
{
    for (char& c : text)
        if (!caseSensitive && c >= 'A' && c <= 'Z')
            c = static_cast<char>(c + 32);
    return text;
}

bool SlowEqual(const std::string& a, const std::string& b, bool caseSensitive)
{
    return Lowered(a, caseSensitive) == Lowered(b, caseSensitive);
}

bool SlowQuestionMark(const std::string& text, const std::string& spec, bool caseSensitive)
{
    const std::size_t q = spec.find('?');
    if (q == std::string::npos)
        return !text.empty() && SlowEqual(text, spec, caseSensitive);
    if (spec.size() != text.size() && spec.size() != text.size() + 1)
        return false;
    if (q > 0)
        return SlowFirstChars(text, spec.substr(0, q), caseSensitive);
    return spec.size() > 1 && SlowLastChars(text, spec.substr(1), caseSensitive);
}

bool SlowMiddle(const std::string& text, const std::string& middle, bool caseSensitive)
{
    const std::size_t p = middle.find('?');
    if (p == std::string::npos)
        return Lowered(text, caseSensitive).find(Lowered(middle, caseSensitive)) != std::string::npos;
    const std::string left = Lowered(text.substr(0, p), caseSensitive);
    const std::string right = p + 1 < text.size() ? Lowered(text.substr(p + 1), caseSensitive) : "";
    const std::size_t i = text.find(left);
    const std::size_t j = text.find(right);
    return i != std::string::npos && j != std::string::npos &&
           (j == i + left.size() || j == i + left.size() + 1);
}

bool SlowSpec(const std::string& text, const std::string& spec, bool caseSensitive)
{
    for (const char* all : {"", "*", "*?", "?*", "?*?", "*?*"})
        if (spec == all)
            return true;
    if (!text.empty() && SlowEqual(spec, text, caseSensitive))
        return true;
    if (spec == std::string(spec.size(), '?'))
        return text.size() <= spec.size();
    const std::size_t star = spec.find('*');
    if (star == std::string::npos)
        return SlowQuestionMark(text, spec, caseSensitive);
    if (star > 0 && star < spec.size() - 1)
        return SlowFirstChars(text, spec.substr(0, star), caseSensitive) &&
               SlowLastChars(text, spec.substr(star + 1), caseSensitive);
    if (star > 0)
        return SlowFirstChars(text, spec.substr(0, star), caseSensitive);
    const std::size_t second = spec.find('*', 1);
    if (second != std::string::npos && second != spec.size() - 1)
        return false;
    if (second != std::string::npos)
        return SlowMiddle(text, spec.substr(1, spec.size() - 2), caseSensitive);
    if (spec.find('?') != std::string::npos)
        return SlowQuestionMark(text, spec.substr(1), caseSensitive);
    return SlowLastChars(text, spec.substr(1), caseSensitive);
}

std::string SlowCommonChars(const std::string& a, const std::string& b, bool caseSensitive)
{
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        if (caseSensitive ? a[i] != b[i] : Upper(a[i]) != Upper(b[i]))
            return a.substr(0, i);
    return b.size() < a.size() ? b : a;
}

// ---- comparing with them --------------------------------------------------------------------------------

TEST(Matching, AnswersAsTheRulesDo)
{
    const std::string texts("abAB.\xE9\0*", 8);
    const std::string specs("abAB.\xE9\0**??", 11);
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto make = [&](const std::string& alphabet, std::size_t count, std::size_t length) {
        std::string text;
        for (length = random() % (length + 1); length > 0; --length)
            text += alphabet[random() % count];
        return text;
    };
    for (int round = 0; round < 400000; ++round) {
        const std::size_t few = 1 + random() % texts.size(); // characters, so that many match
        const std::string text = make(texts, few, 5);
        const std::string spec = random() % 2 == 0 ? make(specs, specs.size(), 6) : make(texts, few, 5);
        const bool flag = random() % 2 == 0;
        SCOPED_TRACE(testing::Message() << testing::PrintToString(text) << " by "
                                        << testing::PrintToString(spec) << ", flag " << flag);
        ASSERT_EQ(StringUtils::MatchFirstChars(text, spec, flag), SlowFirstChars(text, spec, flag));
        ASSERT_EQ(StringUtils::MatchLastChars(text, spec, flag), SlowLastChars(text, spec, flag));
        ASSERT_EQ(StringUtils::MatchSpec(text, spec, flag), SlowSpec(text, spec, flag));
        ASSERT_EQ(StringUtils::MatchSpecQuestionMark(text, spec, flag), SlowQuestionMark(text, spec, flag));
        ASSERT_EQ(StringUtils::DetermineCommonChars(text, spec, flag),
                  CString(SlowCommonChars(text, spec, flag)));
    }
}

TEST(Matching, OfSpecificationsKeepsItsOddities)
{
    const struct {
        const char *text, *spec;
        bool caseSensitive, fits;
    } rows[] = {
        {"", "?*?", true, true},
        {"ab", "???", true, true},
        {"abcd", "???", true, false},
        {"", "a*", true, false},
        {"report.txt", "*.TXT", false, true},
        {"report.TXT", "*.txt", true, false},
        {"aba", "ab*ba", true, true},
        {"a.b.c", "*.b*x", false, false},
        {"*a*b", "*a*b", true, true},
        {"ab", "a?*", true, false},
        {"a?x", "a?*", true, true},
        {"abcX", "ab?Z", true, true},
        {"anything", "*z?z*", true, true},
        {"aXa", "*x?*", false, false},
        {"aXb", "*x?*", false, true},
        {"ABAB", "*zz?*", false, false},
        {"ab", "**", true, true},
        {"", "**", true, true},
        {"abc", "*?bc", true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " by " + row.spec);
        EXPECT_EQ(StringUtils::MatchSpec(row.text, row.spec, row.caseSensitive), row.fits);
    }
}

TEST(Matching, FindsAMiddleInLongTexts)
{
    CString text(std::string(5000, 'x') + "MiDDle" + std::string(5000, 'x'));
    EXPECT_TRUE(StringUtils::MatchSpec(text, "*mIddLE*", false));
    EXPECT_FALSE(StringUtils::MatchSpec(text, "*mIddLE*", true));
    EXPECT_TRUE(StringUtils::MatchSpec(text, "*MiDDle*", true));
    EXPECT_FALSE(StringUtils::MatchSpec(text, "*middlex_*", false));
    EXPECT_FALSE(
        StringUtils::MatchSpec(CString('a', 3000000), CString('*') + CString('A', 100000) + "b*", false));
}

TEST(Matching, OfSeveralTextsSkipsEmptyOnesAndStopsAtNothing)
{
    const auto common = [](std::initializer_list<const char*> list, bool caseSensitive) {
        TextArray items;
        for (const char* item : list)
            items.Add(item);
        return StringUtils::GetCommonText(items, caseSensitive);
    };
    EXPECT_EQ(common({"", "pre1", "pre2"}, true), "pre");
    EXPECT_EQ(common({"pre1", "", "PRE2"}, false), "PRE");
    EXPECT_EQ(common({"pre1", "PRE2"}, true), "");
    EXPECT_EQ(common({"abc", "x", "abc"}, true), "");
    EXPECT_EQ(common({"", ""}, true), "");
    EXPECT_EQ(common({}, true), "");
}

TEST(Matching, CutsPartsAtTheEndsOfTheText)
{
    EXPECT_EQ(StringUtils::CopySubString("hello", 3, 10), "lo");
    EXPECT_EQ(StringUtils::CopySubString("hello", 3, INT_MAX), "lo");
    EXPECT_EQ(StringUtils::CopySubString("hello", 0, INT_MAX), "hello");
    EXPECT_EQ(StringUtils::CopySubString("hello", 1, 2), "el");
    for (const auto& [start, count] :
         {std::pair(-1, 9), {INT_MIN, 9}, {5, 1}, {INT_MAX, INT_MAX}, {0, 0}, {0, INT_MIN}})
        EXPECT_EQ(StringUtils::CopySubString("hello", start, count), "") << start << " " << count;
    EXPECT_EQ(StringUtils::CopySubString("", 0, 1), "");
    EXPECT_EQ(StringUtils::GetTextFromMiddle("hello", -5, 1), "he");
    EXPECT_EQ(StringUtils::GetTextFromMiddle("hello", 4, INT_MAX), "o");
    EXPECT_EQ(StringUtils::GetTextFromMiddle("hello", INT_MIN, INT_MAX), "hello");
    for (const auto& [first, last] : {std::pair(5, 9), {3, 2}, {0, -1}, {INT_MAX, INT_MIN}})
        EXPECT_EQ(StringUtils::GetTextFromMiddle("hello", first, last), "") << first << " " << last;
    EXPECT_EQ(StringUtils::GetTextFromMiddle("", 0, 0), "");
}

} // namespace
