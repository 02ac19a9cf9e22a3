// The operations on elements and lists; those that go through an index, against counting by the rule.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>

#include "NumberTextConv.h"
#include "StringUtils.h"
#include "support/Cases.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"
#include "support/UserSettings.h"

namespace {

struct Removal {
    const char* name;
    std::function<bool(TextArray&)> remove;
    std::function<bool(std::size_t)> isKept; // of the element at that place before
};

void CheckRemovals(const Texts& texts, const Texts& list, bool caseSensitive, TextArray::Content content)
{
    const auto isText = [&](const CString& a, const CString& b) {
        return (caseSensitive ? a.Compare(b) : a.CompareNoCase(b)) == 0;
    };
    const auto isSame = [&](const CString& a, const CString& b) {
        return content == TextArray::ContentText ? isText(a, b)
                                                 : TextArray::ArePathsEqual(a, b, caseSensitive, content);
    };
    const auto begins = [&](const CString& a, const CString& b) {
        return StringUtils::MatchFirstChars(a, b, caseSensitive);
    };
    // How many of the first elements of a list are like texts[i].
    const auto count = [&](auto isLike, std::size_t i, const Texts& in, std::size_t most) {
        return std::count_if(in.begin(), in.begin() + static_cast<std::ptrdiff_t>(most),
                             [&](const CString& other) { return isLike(texts[i], other); });
    };
    const auto inList = [&](auto isLike, std::size_t i) { return count(isLike, i, list, list.size()); };
    const TextArray entries = ArrayOf(list);
    const Removal removals[] = {
        {"RemoveDuplicates", [&](auto& a) { return a.RemoveDuplicates(caseSensitive, content); },
         [&](std::size_t i) { return i == 0 || !isSame(texts[i - 1], texts[i]); }},
        {"RemoveDuplicatesKeepOrder",
         [&](auto& a) { return a.RemoveDuplicatesKeepOrder(caseSensitive, content); },
         [&](std::size_t i) { return count(isSame, i, texts, i) == 0; }},
        {"RemoveNonDuplicates", [&](auto& a) { return a.RemoveNonDuplicates(caseSensitive, content); },
         [&](std::size_t i) { return count(isSame, i, texts, texts.size()) > 1; }},
        {"RemoveMatches", [&](auto& a) { return a.RemoveMatches(entries, caseSensitive); },
         [&](std::size_t i) { return count(isText, i, texts, i) >= inList(isText, i); }},
        {"RemoveNonMatches", [&](auto& a) { return a.RemoveNonMatches(entries, caseSensitive); },
         [&](std::size_t i) { return inList(isText, i) > 0; }},
        {"RemoveAllStartWith", [&](auto& a) { return a.RemoveAllStartWith(entries, caseSensitive); },
         [&](std::size_t i) { return inList(begins, i) == 0; }},
        {"RemoveBlanks", [&](auto& a) { return a.RemoveBlanks(); },
         [&](std::size_t i) { return !StringUtils::IsEffectivelyEmpty(texts[i]); }},
    };
    for (const Removal& removal : removals) {
        SCOPED_TRACE(removal.name);
        Texts expected;
        for (std::size_t i = 0; i < texts.size(); ++i)
            if (removal.isKept(i))
                expected.push_back(texts[i]);
        TextArray array = ArrayOf(texts);
        ASSERT_EQ(removal.remove(array), expected.size() < texts.size());
        ASSERT_EQ(TextsOf(array), expected);
    }
}

TEST(TextArrayLists, RemoveWhatTheRulesSay)
{
    auto pieces = Words("a A b \xE9 \xC9 . \\ / x.t X.T LongerThanEightBytes longerThanEightBytes");
    pieces.insert(pieces.end(), {"", " ", std::string(1, '\0')});
    RandomTexts random;
    const auto make = [&] {
        Texts texts(random.Below(random.OneIn(100) ? 100 : 12));
        for (CString& text : texts)
            text = random.Make(pieces, random.Below(4));
        return texts;
    };
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round)
        CheckRemovals(make(), make(), random.OneIn(2), static_cast<TextArray::Content>(random.Below(4)));
}

// Minutes when any of these is a nested loop.
TEST(TextArrayLists, LargeListsAreNotNestedLoops)
{
    TextArray array, list;
    for (int i = 0; i < 400000; ++i)
        (i % 4 == 0 ? list : array).Add(NumberTextConv::NumberToString(i, false, 8, "\xE9"));
    EXPECT_FALSE(array.RemoveDuplicatesKeepOrder(false) || array.RemoveMatches(list, false));
    EXPECT_FALSE(array.RemoveAllStartWith(list, false) || array.RemoveNonMatches(TextArray(array), false));
    array.Add(array);
    EXPECT_FALSE(array.RemoveNonDuplicates(false));
    EXPECT_EQ(array.GetCount(), 600000u);
}

TEST(TextArrayLists, ChangeAsTold)
{
    const struct {
        const char* before;
        std::function<void(TextArray&)> change;
        const char* after;
    } rows[] = {
        {"b;a;b;a;c", [](auto& a) { a.GetDuplicates(a); }, "a;a;b;b;c;a;b"}, // sorts, then appends once
        {"a", [](auto& a) { a.GetDuplicates(a); }, "a"},
        {"a.TXT;b.doc;c;d.x/e;d.x\\e;g.", [](auto& a) { a.RemoveFilesWithExt(ListOf("txt;x/e")); },
         "b.doc;c;d.x\\e;g."},
        {"b.doc;c;d.x\\e;g.", [](auto& a) { a.RemoveFilesWithExt(ArrayOf({""})); }, "b.doc"},
        {"a;b.c", [](auto& a) { a.RemoveFilesWithExt(TextArray()); }, "a;b.c"},
        {"p\\my_old.t;p/OLD.doc;old\\x;;.t", [](auto& a) { a.RemoveFilesNameEndsWith("old", false); },
         "old\\x;;.t"},
        {"old\\x;;.txt", [](auto& a) { a.RemoveFilesNameEndsWith(""); }, "old\\x"},
        {"a;b;c;b", [](auto& a) { a.Remove("b"); }, "a;c;b"},
        {"a;b;c", [](auto& a) { a.Remove(3); }, "a;b;c"},
        {"a;b;c", [](auto& a) { a.Trim(2); }, "a;b"},
        {"a;b;c", [](auto& a) { a.Reverse(); }, "c;b;a"},
        {"a;b;c", [](auto& a) { a.Swap(0, 3); }, "a;b;c"},
        {"a;b", [](auto& a) { a.Insert(1, "x"); }, "a;x;b"},
        {"a;b", [](auto& a) { a.Replace(2, "x"); }, "a;b"},
        {"a;b", [](auto& a) { a.AddNoDuplicates("B", false); }, "a;b"},
        {"aB;C\xC9", [](auto& a) { a.MakeLower(); }, "ab;c\xC9"},
        {"abcdef;", [](auto& a) { a.RemoveCharsFromIndex(0, 4, INT_MAX); }, "abcd;"},
        {"abcdef;", [](auto& a) { a.RemoveCharsFromIndex(0, 1, 2); }, "adef;"},
        {"x", [](auto& a) { a.AddValuesRange(-1, 1, false); }, "x;-1;0;1"},
        {"x", [](auto& a) { a.AddValuesRange(INT_MAX - 1, INT_MAX, true); }, "x;2,147,483,646;2,147,483,647"},
        // the array itself, or an element of it, as the argument
        {"a;b", [](auto& a) { a.Add(a); }, "a;b;a;b"},
        {"b;a", [](auto& a) { a.RemoveNonMatches(a); }, "b;a"},
        {"b;a;b;", [](auto& a) { a.RemoveMatches(a); }, ""},
        {"b;a;b;", [](auto& a) { a.RemoveAllStartWith(a); }, ""},
        {"a.b;b;x.a.b", [](auto& a) { a.RemoveFilesWithExt(a); }, "b"},
        {"c;b", [](auto& a) { a.AdjustEntries(a[0], true); }, "cc;cb"},
        {"cc;cb;xcc", [](auto& a) { a.ReplaceInAll(a[0], a[1]); }, "cb;cb;xcb"},
    };
    const UserSettings user;
    for (const auto& row : rows) {
        TextArray array = ListOf(row.before);
        row.change(array);
        EXPECT_EQ(LineOf(array), row.after) << "from " << row.before;
    }
}

TEST(TextArrayLists, FindAndMove)
{
    bool found = true;
    const TextArray array = ArrayOf({"ab", "Ab", CString("ab\0x", 4), "abc", ""});
    EXPECT_EQ(array.FindCount("ab"), 2u); // comparison ends at NUL
    EXPECT_EQ(array.Find("AB", true, found), 5u);
    for (const auto& [text, start, index] : Cases<3>("texts within")) {
        EXPECT_EQ(array.FindWithin(text, found, std::stoul(start), false), std::stoul(index)) << text;
        EXPECT_EQ(found, index != "5");
    }
    TextArray moved = ListOf("a;b;c;b");
    EXPECT_TRUE(moved.MoveToFirst("B", false) && !moved.MoveToFirst("b"));
    EXPECT_TRUE(moved.MoveToLast("b") && moved.MoveToLast("b")); // the first equal one is not the last
    EXPECT_FALSE(moved.MoveToLast("x") || ListOf("a;b").MoveToLast("b"));
    EXPECT_EQ(LineOf(moved), "a;c;b;b");
    Texts copied = {"replaced"};
    moved.CopyToVector(copied);
    moved.CopyFromVector(copied);
    EXPECT_EQ(LineOf(moved), "a;c;b;b;a;c;b;b");
    EXPECT_EQ(array.GetCopyAt(5) + array[7] + TextArray().GetFirst() + TextArray().GetLast(), "");
    EXPECT_TRUE(array.IsEmptyAt(9) && !array.GetLengthAt(9) && !array.GetCharAt(9, 0));
}

} // namespace
