#include "CString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <sstream>
#include <thread>

#include "support/RandomTexts.h"
#include "support/TextModels.h"

namespace {

// Around the places where the representation changes.
const std::size_t Lengths[] = {0, 1, 7, 8, 29, 30, 31, 32, 47, 48, 100, 4096};

std::string Sample(std::size_t length)
{
    std::string text;
    while (text.size() < length)
        text += static_cast<char>('a' + text.size() % 26);
    return text;
}

void ExpectSame(const CString& text, const std::string& model)
{
    ASSERT_EQ(text.GetLength(), static_cast<int>(model.size()));
    ASSERT_EQ(text.View(), model);
    ASSERT_EQ(text.GetString()[text.GetLength()], '\0');
    for (const char c : {'c', '!', '\0', '\x80'})
        ASSERT_EQ(text.Find(c), static_cast<int>(static_cast<std::ptrdiff_t>(model.find(c))));
}

// The same random edit of a string and of its model.
void Edit(RandomTexts& random, CString& text, std::string& model)
{
    const std::size_t at = random.Below(model.size() + 1);
    const std::size_t count = random.Below(12);
    const int i = static_cast<int>(at);
    const int n = static_cast<int>(count);
    const std::string piece = Sample(Lengths[random.Below(9)]) + std::string(random.OneIn(5), '\0');
    const std::string end(count > 0, '!');
    const struct {
        std::function<void(CString&)> edit;
        std::function<void(std::string&)> model;
    } edits[] = {
        {[&](auto& t) { t += CString(piece); }, [&](auto& m) { m += piece; }},
        {[&](auto& t) { t.Append(t.GetString() + i, std::min(n, t.GetLength() - i)); }, // a piece of itself
         [&](auto& m) { m += m.substr(at, count); }},
        {[&](auto& t) { t.Insert(i, t.GetString() + i); }, // another one
         [&](auto& m) { m.insert(at, std::string(m.c_str() + at)); }},
        {[&](auto& t) { t.Delete(i, n); }, [&](auto& m) { m.erase(at, count); }},
        {[&](auto& t) { t.Insert(i, piece.c_str()); }, [&](auto& m) { m.insert(at, piece.c_str()); }},
        {[&](auto& t) { t.Truncate(i); }, [&](auto& m) { m.resize(at); }},
        {[&](auto& t) { t = t.Mid(i, n * 8); }, [&](auto& m) { m = m.substr(at, count * 8); }},
        {[&](auto& t) { t.SetAt(i, '#'); }, [&](auto& m) { m.replace(at, 1, at < m.size() ? "#" : ""); }},
        {[&](auto& t) { t.Remove('c'); }, [&](auto& m) { std::erase(m, 'c'); }},
        {[&](auto& t) { t.MakeReverse(); }, [&](auto& m) { std::reverse(m.begin(), m.end()); }},
        {[&](auto& t) { t.FreeExtra(); }, [&](auto&) {}},
        {[&](auto& t) {
             CString moved(std::move(t));
             ExpectSame(t, "");
             t = std::move(moved);
             t = static_cast<CString&>(t);
         },
         [&](auto&) {}},
        {[&](auto& t) {
             t.GetBuffer(t.GetLength() + n)[t.GetLength()] = '!';
             t.ReleaseBuffer(t.GetLength() + (n > 0));
         },
         [&](auto& m) { m += end; }},
    };
    const auto& chosen = random.Pick(edits);
    chosen.edit(text);
    chosen.model(model);
}

// Copies share the text: none of them may notice a change of another.
TEST(CString, StaysEqualToAModelThroughRandomEdits)
{
    RandomTexts random;
    for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
        std::vector<std::pair<CString, std::string>> strings(1);
        for (int step = 0; step < 200; ++step) {
            if (random.OneIn(12))
                strings.push_back(strings.back());
            Edit(random, strings.back().first, strings.back().second);
        }
        for (const auto& [text, model] : strings)
            ExpectSame(text, model);
    }
}

TEST(CString, ComparesAndOrdersLikeItsBytes)
{
    std::vector<std::string> texts = {std::string("a\0b", 3), std::string("a\0c", 3), std::string("a\0", 2),
                                      "\x80", "\xFF"};
    for (const std::size_t length : Lengths)
        for (const char* end : {"", "x", "y", "\xE9"})
            texts.push_back(Sample(length) + end);
    for (const auto& a : texts)
        for (const auto& b : texts) {
            SCOPED_TRACE(a + " / " + b);
            const CString left(a);
            const CString right(b);
            const int untilNul = Sign(std::strcmp(a.c_str(), b.c_str()));
            EXPECT_EQ(left == right, a == b);
            EXPECT_EQ(left < right, a < b);
            EXPECT_EQ(Sign(left.Compare(right)), untilNul);
            EXPECT_EQ(Sign(left.Collate(right)), untilNul); // in the "C" locale
            EXPECT_TRUE(a != b || std::hash<CString>()(left) == std::hash<CString>()(right));
        }
    EXPECT_TRUE(CString("Gr\xFC\xDF").CompareNoCase("gR\xFC\xDF") == 0 &&
                CString("a").CompareNoCase("B") < 0);
}

TEST(CString, TakesPositionsOutsideTheTextAsTheNearestInside)
{
    const std::string model = "hello";
    const CString text(model);
    for (const int first : {INT_MIN, -1, 0, 3, 5, 6, INT_MAX})
        for (const int count : {INT_MIN, -1, 0, 2, 5, INT_MAX}) {
            SCOPED_TRACE(testing::Message() << "first " << first << ", count " << count);
            const auto from = static_cast<std::size_t>(std::clamp(first, 0, 5));
            const auto size = static_cast<std::size_t>(std::clamp(count, 0, 5));
            ExpectSame(text.Left(count), model.substr(0, size));
            ExpectSame(text.Right(count), model.substr(5 - size));
            ExpectSame(text.Mid(first, count), model.substr(from, size));
            EXPECT_EQ(text.Find('l', first), static_cast<int>(model.find('l', from)));
            EXPECT_EQ(text.Find("", first), first > 5 ? -1 : static_cast<int>(from));
            CString changed(text);
            std::string rest(model);
            rest.erase(from, size);
            EXPECT_EQ(changed.Delete(first, count), static_cast<int>(rest.size()));
            changed.Insert(first, "x");
            ExpectSame(changed, rest.insert(std::min(from, rest.size()), "x"));
        }
    EXPECT_EQ(text[static_cast<std::size_t>(-1)], '\0');
    for (const CString& empty : {CString('a', INT_MIN), CString("a", -3), CString(nullptr, 9), CString("\0")})
        ExpectSame(empty, "");
    EXPECT_THROW(CString("abc").Append(text, CString::MaxLength), std::length_error);
}

TEST(CString, SearchesSplitsAndReplaces)
{
    CString path(" \t C:/one/two.txt \n"), text("aaaa");
    EXPECT_EQ(path.Trim(), "C:/one/two.txt");
    EXPECT_TRUE(path.ReverseFind('/') == 6 && path.FindOneOf("xz.") == 10);
    EXPECT_EQ(path.SpanIncluding("C:/") + path.SpanExcluding("."), "C:/C:/one/two");
    EXPECT_EQ(CString("xxabxx").Trim('x') + CString("xyabyx").Trim("xy") + CString("xx").Trim('x'), "abab");
    EXPECT_TRUE(text.Replace("aa", "aab") == 2 && text == "aabaab");
    EXPECT_TRUE(text.Replace("", "x") == 0 && text.Replace('b', '\0') == 2);
    std::ostringstream out;
    out << text << CString("AbC").MakeLower() << CString("AbC").MakeUpper();
    EXPECT_EQ(out.str(), std::string("aa\0aa\0abcABC", 12));
    std::string pieces;
    for (int start = 0; start != -1;) {
        pieces += CString("  a, b ").Tokenize(" ,", start);
        pieces += std::to_string(start) + '|';
    }
    EXPECT_EQ(pieces, "a4|b7|-1|");
}

CString ByFormatV(const char* format, ...)
{
    CString text("old");
    std::va_list arguments;
    va_start(arguments, format);
    text.FormatV(format, arguments);
    va_end(arguments);
    return text;
}

TEST(CString, FormatsWhatPrintfFormats)
{
    const auto expectSame = [](auto... arguments) {
        char printed[400];
        std::snprintf(printed, sizeof printed, arguments...);
        CString text;
        text.Format(arguments...);
        EXPECT_EQ(text, printed);
        EXPECT_EQ(ByFormatV(arguments...), printed);
    };
    expectSame("%d|%5d|%-5d|%05d|%+d|% d|%%", 7, -7, 7, -7, 7, 7);
    expectSame("%i %u %x %X %#x %o", -1, 4294967295u, -1, 255, 255, 8);
    expectSame("%ld %lld %llu %zu %hd %hhd %hhx", -5L, -6LL, ~0ULL, sizeof 1, 70000, 300, -1);
    expectSame("%f %.2f %10.3e %g %G %a", 1.5, -2.345, 12345.678, 1e-10, 1e20, 0.5);
    expectSame("%c%c|%s|%10s|%-10s|%.2s", 'a', 66, "text", "right", "left", "cut");
    expectSame("%*d|%-*d|%.*f|%300d", 6, 42, 6, 42, 1, 2.25, 1);
}

TEST(CString, FormatsSafelyWhatPrintfCannot)
{
    CString text("own ");
    text.Format("%s%s|%s", text, std::string("text"), 42); // itself, an object, a number for %s
    EXPECT_EQ(text, "own text|42");
    text.Format("%d|%d|%I64d|%5", "word", 2.5, int64{1} << 40);
    EXPECT_EQ(text, "word|2.5|1099511627776|%5");
    text.Format("%*d|%*y%d|%*d", -4, 7, 1);
    EXPECT_EQ(text, "7   |%*y1|%*d");
    text.Format("%n%s %", 1);
    text.AppendFormat("%s", static_cast<const char*>(nullptr));
    EXPECT_EQ(text, "%s %");
}

TEST(CString, SharedTextMayBeUsedByManyThreads)
{
    const CString shared(Sample(1000));
    const auto change = [copy = shared] {
        for (int turn = 0; turn < 2000; ++turn)
            CString(copy).SetAt(turn % 1000, '#');
    };
    std::thread other(change);
    change();
    other.join();
    ExpectSame(shared, Sample(1000));
}

} // namespace
