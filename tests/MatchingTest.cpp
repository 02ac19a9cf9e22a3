#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "StringUtils.h"
#include "support/Cases.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"

namespace {

// ---- the rules, with a copy for every piece -------------------------------------------------------------

int UpperOf(char c)
{
    const int lower = LowerOf(c);
    return lower >= 'a' && lower <= 'z' ? lower - 32 : lower;
}

bool SlowFirstChars(const std::string& text, const std::string& prefix, bool caseSensitive)
{
    if (text.empty() || prefix.empty() || prefix.size() > text.size())
        return text.empty() && prefix.empty();
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        const int otherCase = LowerOf(text[i]) == text[i] ? UpperOf(text[i]) : LowerOf(text[i]);
        if (prefix[i] != text[i] && (caseSensitive || prefix[i] != otherCase))
            return false;
    }
    return true;
}

bool SlowLastChars(const std::string& text, const std::string& suffix, bool caseSensitive)
{
    if (text.empty() || suffix.empty() || suffix.size() > text.size())
        return text.empty() && suffix.empty();
    return SlowFirstChars(text.substr(text.size() - suffix.size()), suffix, caseSensitive);
}

std::string Folded(const std::string& text, bool caseSensitive)
{
    return caseSensitive ? text : Lowered(text);
}

bool SlowQuestionMark(const std::string& text, const std::string& spec, bool caseSensitive)
{
    const std::size_t q = spec.find('?');
    if (q == std::string::npos)
        return !text.empty() && Folded(text, caseSensitive) == Folded(spec, caseSensitive);
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
        return Folded(text, caseSensitive).find(Folded(middle, caseSensitive)) != std::string::npos;
    const std::string left = Folded(text.substr(0, p), caseSensitive);
    const std::string right = Folded(p < text.size() ? text.substr(p + 1) : "", caseSensitive);
    const std::size_t i = text.find(left), j = text.find(right);
    return i != std::string::npos && j != std::string::npos && j - (i + left.size()) <= 1;
}

bool SlowSpec(const std::string& text, const std::string& spec, bool caseSensitive)
{
    for (const char* all : {"", "*", "*?", "?*", "?*?", "*?*"})
        if (spec == all)
            return true;
    if (!text.empty() && Folded(spec, caseSensitive) == Folded(text, caseSensitive))
        return true;
    if (spec == std::string(spec.size(), '?'))
        return text.size() <= spec.size();
    const std::size_t star = spec.find('*'), second = spec.find('*', star + 1);
    if (star == std::string::npos)
        return SlowQuestionMark(text, spec, caseSensitive);
    const std::string rest = spec.substr(star + 1);
    if (star > 0)
        return SlowFirstChars(text, spec.substr(0, star), caseSensitive) &&
               (rest.empty() || SlowLastChars(text, rest, caseSensitive));
    if (second != std::string::npos)
        return second == spec.size() - 1 && SlowMiddle(text, spec.substr(1, second - 1), caseSensitive);
    return Has(spec, '?') ? SlowQuestionMark(text, rest, caseSensitive)
                          : SlowLastChars(text, rest, caseSensitive);
}

std::string SlowCommonChars(const std::string& a, const std::string& b, bool caseSensitive)
{
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        if (caseSensitive ? a[i] != b[i] : UpperOf(a[i]) != UpperOf(b[i]))
            return a.substr(0, i);
    return b.size() < a.size() ? b : a;
}

// ---- comparing with them --------------------------------------------------------------------------------

TEST(Matching, AnswersAsTheRulesDo)
{
    const std::string texts("abAB.\xE9\0*", 8);
    const std::string specs("abAB.\xE9\0**??", 11);
    RandomTexts random;
    for (int round = 0; round < 200000; ++round) {
        const std::string few = texts.substr(0, 1 + random.Below(texts.size())); // so that many match
        const std::string text = random.Make(few, random.Below(6));
        const std::string spec = random.Make(random.OneIn(2) ? specs : few, random.Below(7));
        const bool flag = random.OneIn(2);
        SCOPED_TRACE(testing::PrintToString(text) + " by " + testing::PrintToString(spec) +
                     (flag ? ", case" : ""));
        ASSERT_EQ(StringUtils::MatchFirstChars(text, spec, flag), SlowFirstChars(text, spec, flag));
        ASSERT_EQ(StringUtils::MatchLastChars(text, spec, flag), SlowLastChars(text, spec, flag));
        ASSERT_EQ(StringUtils::MatchSpec(text, spec, flag), SlowSpec(text, spec, flag));
        ASSERT_EQ(StringUtils::MatchSpecQuestionMark(text, spec, flag), SlowQuestionMark(text, spec, flag));
        ASSERT_EQ(StringUtils::DetermineCommonChars(text, spec, flag), SlowCommonChars(text, spec, flag));
    }
}

TEST(Matching, TakesLongTexts)
{
    const std::string text(std::string(5000, 'x') + "MiDDle" + std::string(5000, 'x'));
    for (const char* spec : {"*mIddLE*", "*MiDDle*", "*middlex_*"})
        for (const bool flag : {false, true})
            EXPECT_EQ(StringUtils::MatchSpec(text, spec, flag), SlowSpec(text, spec, flag)) << spec;
    const CString almost = CString('*') + CString('A', 100000) + "b*";
    EXPECT_FALSE(StringUtils::MatchSpec(CString('a', 3000000), almost, false));
}

TEST(Matching, OfSeveralTextsSkipsEmptyOnesAndStopsAtNothing)
{
    for (const auto& [items, common, noCase] : Cases<3>("common texts")) {
        EXPECT_EQ(StringUtils::GetCommonText(ListOf(items), true), common) << items;
        EXPECT_EQ(StringUtils::GetCommonText(ListOf(items), false), noCase) << items;
    }
}

TEST(Matching, CutsPartsAtTheEndsOfTheText)
{
    const std::string text = "hello";
    for (const int a : {INT_MIN, -5, -1, 0, 3, 4, 5, INT_MAX})
        for (const int b : {INT_MIN, -1, 0, 1, 2, 4, 5, 10, INT_MAX}) {
            SCOPED_TRACE(testing::Message() << a << ' ' << b);
            std::string part, middle;
            for (int i = 0; i < 5; ++i) {
                part += std::string(a >= 0 && i >= a && i - a < b, text[static_cast<std::size_t>(i)]);
                middle += std::string(i >= a && i <= b, text[static_cast<std::size_t>(i)]);
            }
            EXPECT_EQ(StringUtils::CopySubString(text, a, b), part);
            EXPECT_EQ(StringUtils::GetTextFromMiddle(text, a, b), middle);
        }
}

// Inside a string and beyond, where other code looks.
TEST(Matching, FindsAMiddleAtEveryPlace)
{
    const std::string letters = "[wertyuiopasdfghjkl";
    for (std::size_t length = 1; length < 36; ++length)
        for (std::size_t size = 1; size <= std::min(length, letters.size()); ++size)
            for (std::size_t at = 0; at + size <= length; ++at) {
                const std::string middle = letters.substr(letters.size() - size);
                const CString spec = "*" + CString(middle).MakeUpper() + "*";
                std::string text = std::string(length - size, '.').insert(at, middle);
                ASSERT_TRUE(StringUtils::MatchSpec(CString(text), spec, false)) << text;
                text[at] = '.';
                ASSERT_FALSE(StringUtils::MatchSpec(CString(text), spec, false)) << text;
            }
}

} // namespace
