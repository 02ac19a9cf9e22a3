#include "CString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace {

// A string of each length around the places where the representation changes.
const std::vector<int> Lengths = {0, 1, 7, 8, 29, 30, 31, 32, 47, 48, 100, 4096};

std::string Sample(int length, char first = 'a')
{
    std::string text;
    for (int i = 0; i < length; ++i)
        text += static_cast<char>(first + i % 26);
    return text;
}

// The string and its model must agree in every way that a reader can see.
void ExpectSame(const CString& text, const std::string& model)
{
    ASSERT_EQ(text.GetLength(), static_cast<int>(model.size()));
    ASSERT_EQ(std::string(text.begin(), text.end()), model);
    ASSERT_EQ(text.GetString()[text.GetLength()], '\0');
    ASSERT_TRUE(text == CString(model));
    ASSERT_EQ(text.IsEmpty(), model.empty());
}

// Drives a string and a std::string through the same random edits. Copies that share the text are kept all
// the while: none of them may notice a change of another.
class EditedPair {
public:
    explicit EditedPair(unsigned seed) : m_random(seed) {}

    void Step()
    {
        const int at = Below(m_model.empty() ? 1 : static_cast<int>(m_model.size()) + 1);
        const int count = Below(12);
        const std::string piece =
            Sample(Lengths[static_cast<std::size_t>(Below(9))], 'A') + std::string(Below(5) == 0, '\0');
        switch (Below(12)) {
        case 0:
            m_text += CString(piece);
            m_model += piece;
            break;
        case 1:
            m_text.Append(m_text.GetString() + at,
                          std::min(count, m_text.GetLength() - at)); // a piece of itself
            m_model += m_model.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(count));
            break;
        case 2:
            m_text.Delete(at, count);
            m_model.erase(static_cast<std::size_t>(at), static_cast<std::size_t>(count));
            break;
        case 3:
            m_text.Insert(at, piece.c_str());
            m_model.insert(static_cast<std::size_t>(at), piece.c_str());
            break;
        case 4:
            m_text.Truncate(at);
            m_model.resize(static_cast<std::size_t>(at));
            break;
        case 5:
            m_text = m_text.Mid(at, count * 8);
            m_model = m_model.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(count) * 8);
            break;
        case 6:
            m_text.SetAt(at, '#');
            if (at < static_cast<int>(m_model.size()))
                m_model[static_cast<std::size_t>(at)] = '#';
            break;
        case 7:
            m_text.Remove('c');
            std::erase(m_model, 'c');
            break;
        case 8:
            m_text.Insert(at, '+');
            m_model.insert(static_cast<std::size_t>(at), 1, '+');
            break;
        case 9:
            m_text.MakeReverse();
            std::reverse(m_model.begin(), m_model.end());
            break;
        case 10:
            m_text.GetBuffer(m_text.GetLength() + count)[m_text.GetLength()] = '!';
            m_text.ReleaseBuffer(static_cast<int>(m_model.size()) + (count > 0));
            m_model += std::string(count > 0, '!');
            break;
        default:
            m_text.FreeExtra();
            m_kept.emplace_back(m_text, m_model);
            break;
        }
    }

    void Check() const
    {
        ExpectSame(m_text, m_model);
        for (const auto& [text, model] : m_kept)
            ExpectSame(text, model);
    }

private:
    int Below(int end) { return std::uniform_int_distribution(0, end - 1)(m_random); }

    std::mt19937 m_random;
    CString m_text;
    std::string m_model;
    std::vector<std::pair<CString, std::string>> m_kept;
};

TEST(CString, StaysEqualToAModelThroughRandomEdits)
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        EditedPair pair(seed);
        for (int step = 0; step < 200; ++step)
            pair.Step();
        pair.Check();
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST(CString, ComparesAndOrdersLikeItsBytes)
{
    std::vector<std::string> texts = {std::string("a\0b", 3), std::string("a\0c", 3), std::string("a\0", 2),
                                      "\x80", "\xFF"};
    for (const int length : Lengths)
        for (const char* end : {"", "x", "y", "\xE9"})
            texts.push_back(Sample(length) + end);
    for (const auto& a : texts)
        for (const auto& b : texts) {
            SCOPED_TRACE(a + " / " + b);
            const CString left(a);
            const CString right(b);
            EXPECT_EQ(left == right, a == b);
            EXPECT_EQ(left < right, a < b);
            EXPECT_EQ(left.Compare(right) < 0, std::strcmp(a.c_str(), b.c_str()) < 0);
            EXPECT_EQ(left.Compare(right) == 0, std::strcmp(a.c_str(), b.c_str()) == 0);
            EXPECT_EQ(left == b.c_str(), a == std::string_view(b.c_str()));
            EXPECT_TRUE(a != b || std::hash<CString>()(left) == std::hash<CString>()(right));
        }
    EXPECT_EQ(CString("Grüße").CompareNoCase("gRüße"), 0);
    EXPECT_LT(CString("a").CompareNoCase("B"), 0);
}

TEST(CString, TakesPositionsOutsideTheTextAsTheNearestInside)
{
    const CString text("hello");
    const int far = 0x7FFFFFFF;
    const int below = -far - 1;
    EXPECT_EQ(text.Left(-1), "");
    EXPECT_EQ(text.Left(far), "hello");
    EXPECT_EQ(text.Right(below), "");
    EXPECT_EQ(text.Right(far), "hello");
    EXPECT_EQ(text.Mid(below, 2), "he");
    EXPECT_EQ(text.Mid(far), "");
    EXPECT_EQ(text.Mid(3, far), "lo");
    EXPECT_EQ(text.Find('l', below), 2);
    EXPECT_EQ(text.Find("l", far), -1);
    EXPECT_EQ(text.Find("", 5), 5);
    EXPECT_EQ(text.Find("", 6), -1);
    EXPECT_EQ(text.Find(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(text[-1], '\0');
    EXPECT_EQ(text[5], '\0');
    EXPECT_EQ(text[std::size_t{1} << 40], '\0');
    CString changed(text);
    EXPECT_EQ(changed.Delete(below, far), 0);
    EXPECT_EQ(changed.Insert(far, "x"), 1);
    changed.SetAt(7, 'z');
    EXPECT_EQ(changed, "x");
    EXPECT_EQ(CString('a', below), "");
    EXPECT_EQ(CString("abc", -3), "");
    EXPECT_EQ(CString(static_cast<const char*>(nullptr)), "");
    EXPECT_THROW(CString("abc").Append(text, CString::MaxLength), std::length_error);
}

TEST(CString, BuffersAreTakenBackUpToTheNulOrTheirRoom)
{
    for (const int room : {10, 200}) {
        CString text;
        std::strcpy(text.GetBuffer(room), "short");
        text.ReleaseBuffer();
        ExpectSame(text, "short");
        std::fill_n(text.GetBuffer(room), room, 'x');
        text.ReleaseBuffer(0x7FFFFFFF);
        EXPECT_GE(text.GetLength(), room);
        EXPECT_EQ(text.GetLength(), text.GetAllocLength());
    }
    CString shared(Sample(40));
    CString other(shared);
    other.ReleaseBuffer(5); // without a buffer taken before
    ExpectSame(shared, Sample(40));
}

TEST(CString, SearchesSplitsAndReplaces)
{
    CString path(" \t C:/one/two.txt \n");
    EXPECT_EQ(path.Trim(), "C:/one/two.txt");
    EXPECT_EQ(path.ReverseFind('/'), 6);
    EXPECT_EQ(path.FindOneOf("xz."), 10);
    EXPECT_EQ(path.SpanIncluding("C:/"), "C:/");
    EXPECT_EQ(path.SpanExcluding("."), "C:/one/two");
    EXPECT_EQ(CString("xxabxx").Trim('x'), "ab");
    EXPECT_EQ(CString("xyabyx").TrimLeft("xy").TrimRight("xy"), "ab");
    EXPECT_EQ(CString("xxxx").Trim('x'), "");
    CString text("aaaa");
    EXPECT_EQ(text.Replace("aa", "aab"), 2);
    EXPECT_EQ(text, "aabaab");
    EXPECT_EQ(text.Replace("", "x"), 0);
    EXPECT_EQ(text.Replace('b', '\0'), 2);
    EXPECT_EQ(text, CString("aa\0aa\0", 6));
    EXPECT_EQ(CString("AbC").MakeLower() + CString("AbC").MakeUpper(), "abcABC");

    std::vector<std::string> pieces;
    int start = 0;
    for (CString piece = CString("  a, b ").Tokenize(" ,", start); start != -1;
         piece = CString("  a, b ").Tokenize(" ,", start))
        pieces.emplace_back(piece);
    EXPECT_EQ(pieces, (std::vector<std::string>{"a", "b"}));
}

TEST(CString, FormatsWhatPrintfFormats)
{
    const auto printed = [](auto... arguments) {
        char text[400];
        return std::string(text, static_cast<std::size_t>(std::snprintf(text, sizeof text, arguments...)));
    };
    const auto expectSame = [&](auto... arguments) {
        CString text;
        text.Format(arguments...);
        EXPECT_EQ(std::string(text), printed(arguments...));
    };
    expectSame("%d|%5d|%-5d|%05d|%+d|% d", 7, -7, 7, -7, 7, 7);
    expectSame("%i %u %x %X %#x %o", -1, 4294967295u, -1, 255, 255, 8);
    expectSame("%ld %lld %llu %zu %hd %hhd %hhx", -5L, -6LL, 18446744073709551615ULL, sizeof 1, 70000, 300,
               -1);
    expectSame("%f %.2f %10.3e %g %G %a", 1.5, -2.345, 12345.678, 1e-10, 1e20, 0.5);
    expectSame("%c%c%%|%s|%10s|%-10s|%.2s|%*d|%-*d|%.*f", 'a', 66, "text", "right", "left", "cut", 6, 42, 6,
               42, 1, 2.25);
    expectSame("%300d", 1);
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
    EXPECT_EQ(text, "%s %");
    text.AppendFormat("%s", static_cast<const char*>(nullptr));
    EXPECT_EQ(text, "%s %");
}

TEST(CString, MovesLeaveNothingBehind)
{
    for (const int length : Lengths) {
        CString from(Sample(length));
        CString to(std::move(from));
        EXPECT_TRUE(from.IsEmpty()); // NOLINT(bugprone-use-after-move): that is what is tested
        CString& same = to;
        to = std::move(same);
        to = same;
        from = std::move(to);
        ExpectSame(from, Sample(length));
        ExpectSame(to, "");
    }
}

TEST(CString, SharedTextMayBeUsedByManyThreads)
{
    const CString shared(Sample(1000));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([copy = shared, i] {
            for (int turn = 0; turn < 2000; ++turn) {
                CString own(copy);
                own.SetAt(turn % 1000, static_cast<char>('0' + i));
                const CString again(copy);
                ASSERT_EQ(again.GetLength(), 1000);
            }
        });
    for (auto& thread : threads)
        thread.join();
    ExpectSame(shared, Sample(1000));
}

TEST(CString, StreamsAndHashes)
{
    std::ostringstream out;
    out << CString("a\0b", 3) << CString("c");
    EXPECT_EQ(out.str(), std::string("a\0bc", 4));
    const std::unordered_set<CString> set = {"one", "two", "one"};
    EXPECT_EQ(set.size(), 2u);
}

} // namespace
