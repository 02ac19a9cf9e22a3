// The first characters of a long text are kept in the string itself: no change of the text may miss them.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "CString.h"
#include "TextArray.h"

namespace {

const char* const Long = "abcdefghijklmnopqrstuvwxyz0123456789ABCDEF";

TEST(CStringFront, FollowsEveryChange)
{
    const std::function<void(CString&)> changes[] = {
        [](CString& s) { s.SetAt(3, '!'); },
        [](CString& s) { s.MakeUpper(); },
        [](CString& s) { s.MakeReverse(); },
        [](CString& s) { s.Replace('c', 'x'); },
        [](CString& s) { s.Replace("cd", ""); },
        [](CString& s) { s.Insert(0, "front"); },
        [](CString& s) { s.Insert(2, '-'); },
        [](CString& s) { s.Delete(0, 5); },
        [](CString& s) { s.Remove('a'); },
        [](CString& s) { s.Truncate(7); },
        [](CString& s) { s.TrimLeft("ab"); },
        [](CString& s) { s += s; },
        [](CString& s) { s.Truncate(7), s += CString("front"); },
        [](CString& s) { s = CString("q") + s; },
        [](CString& s) { s.FreeExtra(); },
        [](CString& s) { std::memset(s.GetBuffer(), 'y', 4), s.ReleaseBuffer(); },
        [](CString& s) { std::memset(s.GetBufferSetLength(40), 'y', 4); }, // never released
        [](CString& s) { std::memset(s.GetBuffer(500), 'y', 10), s.ReleaseBuffer(9); },
    };
    for (const auto& change : changes)
        for (const bool isShared : {false, true}) {
            CString text(Long);
            const CString other = isShared ? text : CString();
            change(text);
            TextArray list;
            list.Add(text);
            EXPECT_EQ(std::strncmp(text.GetFront(), text, CString::FrontSize), 0) << text;
            EXPECT_EQ(list.FindCount(CString(text.GetString()), true), 1u) << text;
            EXPECT_EQ(list.FindCount(CString("abcdefg"), true), std::strcmp(text, "abcdefg") == 0 ? 1u : 0u);
            EXPECT_TRUE(!isShared || other == Long);
        }
}

TEST(CStringFront, TellsTextsApartUpToTheFirstNul)
{
    const CString short0("ab\0c", 4);
    const CString long0("ab\0cdefghijklmnopqrstuvwxyz0123456789", 37);
    TextArray list;
    for (const CString& text : {short0, long0, CString("ab"), CString("abc"), CString("AB"), CString("a")})
        list.Add(text);
    for (int i = 0; i < 100; ++i) // many, so that case is folded beforehand
        list.Add(CString("other"));
    EXPECT_EQ(list.FindCount(CString("ab"), true), 3u);
    EXPECT_EQ(list.FindCount(long0, true), 3u);
    EXPECT_EQ(list.FindCount(CString("aB"), false), 4u);
    EXPECT_EQ(list.FindCount(CString(), true), 0u);
}

} // namespace
