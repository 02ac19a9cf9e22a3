// Lists in lists: the operations that go through an index, against nested loops over the rule.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <random>

#include "CStringArray.h"
#include "CStringList.h"
#include "StringUtils.h"
#include "TextArray.h"

namespace {

using Texts = std::vector<CString>;

TextArray ArrayOf(const Texts& texts)
{
    TextArray array;
    array.CopyFromVector(texts);
    return array;
}

Texts TextsOf(const TextArray& array)
{
    return Texts(array.begin(), array.end());
}

bool AreEqual(const CString& a, const CString& b, bool caseSensitive, TextArray::Content content)
{
    if (content == TextArray::ContentText)
        return (caseSensitive ? a.Compare(b) : a.CompareNoCase(b)) == 0;
    return TextArray::ArePathsEqual(a, b, caseSensitive, content);
}

// ---- the selection rules as nested loops ----------------------------------------------------------------

Texts KeepFirst(const Texts& texts, bool caseSensitive, TextArray::Content content)
{
    Texts kept;
    for (const CString& text : texts)
        if (std::none_of(kept.begin(), kept.end(),
                         [&](const CString& other) { return AreEqual(text, other, caseSensitive, content); }))
            kept.push_back(text);
    return kept;
}

Texts KeepRepeated(const Texts& texts, bool caseSensitive, TextArray::Content content)
{
    Texts kept;
    for (std::size_t i = 0; i < texts.size(); ++i)
        for (std::size_t j = 0; j < texts.size(); ++j)
            if (i != j && AreEqual(texts[i], texts[j], caseSensitive, content)) {
                kept.push_back(texts[i]);
                break;
            }
    return kept;
}

Texts DropEqualNeighbours(Texts texts, bool caseSensitive, TextArray::Content content)
{
    for (std::size_t i = texts.size(); i-- > 1;)
        if (AreEqual(texts[i - 1], texts[i], caseSensitive, content))
            texts.erase(texts.begin() + static_cast<std::ptrdiff_t>(i));
    return texts;
}

Texts DropFirstOfEach(Texts texts, const Texts& list, bool caseSensitive)
{
    for (const CString& entry : list)
        for (auto at = texts.begin(); at != texts.end(); ++at)
            if (AreEqual(*at, entry, caseSensitive, TextArray::ContentText)) {
                texts.erase(at);
                break;
            }
    return texts;
}

Texts Drop(const Texts& texts, const Texts& list,
           const std::function<bool(const CString&, const CString&)>& matches, bool dropMatches)
{
    Texts kept;
    for (const CString& text : texts)
        if (std::any_of(list.begin(), list.end(),
                        [&](const CString& entry) { return matches(text, entry); }) != dropMatches)
            kept.push_back(text);
    return kept;
}

Texts RandomTexts(std::mt19937& random)
{
    static const Texts pieces = {"a",
                                 "A",
                                 "b",
                                 "\xE9",
                                 "\xC9",
                                 ".",
                                 "\\",
                                 "/",
                                 "x.t",
                                 "X.T",
                                 " ",
                                 "",
                                 "longer than eight bytes",
                                 "Longer Than Eight Bytes",
                                 CString('\0')};
    Texts texts(random() % 12);
    for (CString& text : texts)
        for (auto count = random() % 4; count > 0; --count)
            text += pieces[random() % pieces.size()];
    return texts;
}

void Check(const TextArray& array, bool removed, const Texts& before, const Texts& expected,
           const char* operation)
{
    ASSERT_EQ(TextsOf(array), expected) << operation;
    ASSERT_EQ(removed, expected.size() < before.size()) << operation;
}

TEST(TextArrayLists, RemoveWhatTheRulesSay)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
        const Texts texts = RandomTexts(random), list = RandomTexts(random);
        const bool caseSensitive = random() % 2 == 0;
        const auto content = static_cast<TextArray::Content>(random() % 4);
        const TextArray entries = ArrayOf(list);
        const auto equal = [&](const CString& a, const CString& b) {
            return AreEqual(a, b, caseSensitive, TextArray::ContentText);
        };
        const auto begins = [&](const CString& a, const CString& b) {
            return StringUtils::MatchFirstChars(a, b, caseSensitive);
        };
        TextArray array = ArrayOf(texts);
        bool removed = array.RemoveDuplicates(caseSensitive, content);
        Check(array, removed, texts, DropEqualNeighbours(texts, caseSensitive, content), "RemoveDuplicates");
        array = ArrayOf(texts);
        removed = array.RemoveDuplicatesKeepOrder(caseSensitive, content);
        Check(array, removed, texts, KeepFirst(texts, caseSensitive, content), "KeepOrder");
        array = ArrayOf(texts);
        removed = array.RemoveNonDuplicates(caseSensitive, content);
        Check(array, removed, texts, KeepRepeated(texts, caseSensitive, content), "RemoveNonDuplicates");
        array = ArrayOf(texts);
        removed = array.RemoveMatches(entries, caseSensitive);
        Check(array, removed, texts, DropFirstOfEach(texts, list, caseSensitive), "RemoveMatches");
        array = ArrayOf(texts);
        removed = array.RemoveNonMatches(entries, caseSensitive);
        Check(array, removed, texts, Drop(texts, list, equal, false), "RemoveNonMatches");
        array = ArrayOf(texts);
        removed = array.RemoveAllStartWith(entries, caseSensitive);
        Check(array, removed, texts, Drop(texts, list, begins, true), "RemoveAllStartWith");
    }
}

TEST(TextArrayLists, DuplicatesComeOnceInSortedOrder)
{
    TextArray array = ArrayOf({"b", "a", "b", "a", "c"});
    TextArray result = ArrayOf({"x"});
    array.GetDuplicates(result);
    EXPECT_EQ(TextsOf(result), (Texts{"x", "a", "b"}));
    EXPECT_EQ(TextsOf(array), (Texts{"a", "a", "b", "b", "c"}));
    TextArray one = ArrayOf({"a"});
    one.GetDuplicates(result);
    EXPECT_EQ(result.GetCount(), 3u);
    array.GetDuplicates(array); // the result is the array
    EXPECT_EQ(TextsOf(array), (Texts{"a", "a", "b", "b", "c", "a", "b"}));
}

TEST(TextArrayLists, FilesByExtensionAndEnding)
{
    TextArray array = ArrayOf({"a.TXT", "b.doc", "c", "d.x/e", "d.x\\e", "f.tar.gz", "g."});
    array.RemoveFilesWithExt(ArrayOf({"txt", "x/e", "gz"}));
    EXPECT_EQ(TextsOf(array), (Texts{"b.doc", "c", "d.x\\e", "g."}));
    array.RemoveFilesWithExt(ArrayOf({""}));
    EXPECT_EQ(TextsOf(array), (Texts{"b.doc"}));

    array = ArrayOf({"p\\report_old.txt", "p/OLD.doc", "old\\x", "", ".txt"});
    array.RemoveFilesNameEndsWith("old", false);
    EXPECT_EQ(TextsOf(array), (Texts{"old\\x", "", ".txt"}));
    array.RemoveFilesNameEndsWith("");
    EXPECT_EQ(TextsOf(array), (Texts{"old\\x"}));
}

TEST(TextArrayLists, TheArrayItselfMayBeTheList)
{
    const Texts texts = {"b.x", "a", "b.x", ""};
    TextArray array = ArrayOf(texts);
    EXPECT_FALSE(array.RemoveNonMatches(array));
    array.Add(array);
    EXPECT_EQ(array.GetCount(), 8u);
    EXPECT_TRUE(array.RemoveMatches(array));
    EXPECT_TRUE(array.IsEmpty());
    array = ArrayOf(texts);
    EXPECT_TRUE(array.RemoveAllStartWith(array));
    EXPECT_TRUE(array.IsEmpty());
    array = ArrayOf({"a.b", "b", "x.a.b"});
    array.RemoveFilesWithExt(array);
    EXPECT_EQ(TextsOf(array), (Texts{"b"}));
    array = ArrayOf({"b", "c", "b"});
    array.Remove(array[0]);
    EXPECT_EQ(TextsOf(array), (Texts{"c", "b"}));
    array.AdjustEntries(array[0], true);
    EXPECT_EQ(TextsOf(array), (Texts{"cc", "cb"}));
    array.ReplaceInAll(array[0], array[1]);
    EXPECT_EQ(TextsOf(array), (Texts{"cb", "cb"}));
}

TEST(TextArrayLists, SearchingAndMoving)
{
    TextArray array;
    bool found = true;
    EXPECT_EQ(array.Find("a", true, found), 0u);
    EXPECT_FALSE(found);
    array = ArrayOf({"ab", "Ab", CString("ab\0x", 4), "abc", ""});
    EXPECT_EQ(array.FindCount("ab"), 2u); // comparison ends at NUL
    EXPECT_EQ(array.FindCount("AB", false), 3u);
    EXPECT_EQ(array.FindCount(CString("ab\0y", 4)), 2u);
    EXPECT_EQ(array.Find("AB", true, found), 5u);
    EXPECT_FALSE(found);
    EXPECT_EQ(array.FindWithin("", found), 4u);
    EXPECT_TRUE(found);
    EXPECT_EQ(array.FindWithin("AB", found, 1, false), 1u);
    EXPECT_EQ(array.FindWithin("b", found, 1), 5u);
    EXPECT_FALSE(found);
    EXPECT_EQ(array.FindWithin("a", found, 99), 5u);

    array = ArrayOf({"a", "b", "c", "b"});
    EXPECT_TRUE(array.MoveToFirst("B", false));
    EXPECT_FALSE(array.MoveToFirst("b"));
    EXPECT_EQ(TextsOf(array), (Texts{"b", "a", "c", "b"}));
    EXPECT_TRUE(array.MoveToLast("b"));
    EXPECT_EQ(TextsOf(array), (Texts{"a", "c", "b", "b"}));
    EXPECT_TRUE(array.MoveToLast("b")); // the first equal one is not the last
    EXPECT_FALSE(array.MoveToLast("x"));
    EXPECT_FALSE(ArrayOf({"a"}).MoveToFirst("a"));
}

TEST(TextArrayLists, EditsAndLimits)
{
    TextArray array = ArrayOf({"abcdef", ""});
    array.RemoveCharsFromIndex(0, 4, INT_MAX);
    array.RemoveCharsFromIndex(0, 4, 1);
    array.RemoveCharsFromIndex(0, static_cast<std::size_t>(-1), 1);
    array.RemoveCharsFromIndex(0, 1, 0);
    array.RemoveCharsFromIndex(9, 0, 1);
    array.RemoveCharsFromIndex(0, 1, 2);
    EXPECT_EQ(TextsOf(array), (Texts{"ad", ""}));
    EXPECT_EQ(array.ConvertIntoOneLine(", "), "ad, ");
    EXPECT_EQ(ArrayOf({"", ""}).ConvertIntoOneLine(""), "");
    EXPECT_EQ(TextArray().ConvertIntoOneLine(", "), "");
    array.RemoveAll();
    array.AddValuesRange(3, 1, false);
    array.AddValuesRange(INT_MAX - 1, INT_MAX, false);
    array.AddValuesRange(INT_MIN, INT_MIN, false);
    EXPECT_EQ(TextsOf(array), (Texts{"2147483646", "2147483647", "-2147483648"}));
    array = ArrayOf({CString("a\0b\0c", 5), "x"});
    array.ReplaceInAll(CString('\0'), "--");
    EXPECT_EQ(TextsOf(array), (Texts{"a--b--c", "x"}));
    array.AdjustEntries("!", false);
    EXPECT_EQ(TextsOf(array), (Texts{"a--b--c!", "x!"}));
    EXPECT_TRUE(array.IsLast(1));
    EXPECT_TRUE(TextArray().IsLast(7));
}

TEST(TextArrayLists, CopiesToReplaceAndCopiesFromAppend)
{
    const TextArray source = ArrayOf({"a", "b"});
    CStringArray array;
    array.Add("old");
    CStringList list;
    list.AddTail("old");
    std::vector<CString> vector = {"old"};
    source.CopyToStringArray(array);
    source.CopyToList(list);
    source.CopyToVector(vector);
    TextArray target = ArrayOf({"x"});
    target.CopyFromStringArray(array);
    target.CopyFromList(list);
    target.CopyFromVector(vector);
    EXPECT_EQ(TextsOf(target), (Texts{"x", "a", "b", "a", "b", "a", "b"}));
}

// Seconds and more when any of these is a nested loop; the counts tell that all of it was done.
TEST(TextArrayLists, LargeListsAreNotNestedLoops)
{
    TextArray array, list;
    for (int i = 0; i < 200000; ++i) {
        CString text;
        text.Format("entry %d \xE9%c", i / 2, i % 3 == 0 ? 'x' : 'X');
        array.Add(text);
        if (i % 4 == 0)
            list.Add(text);
    }
    TextArray copy = array;
    EXPECT_TRUE(copy.RemoveMatches(list, false));
    EXPECT_EQ(copy.GetCount(), 150000u);
    copy = array;
    EXPECT_TRUE(copy.RemoveNonMatches(list, false));
    EXPECT_EQ(copy.GetCount(), 100000u);
    copy = array;
    EXPECT_TRUE(copy.RemoveAllStartWith(list, false));
    EXPECT_EQ(copy.GetCount(), 100000u);
    copy = array;
    EXPECT_TRUE(copy.RemoveDuplicatesKeepOrder(false));
    EXPECT_EQ(copy.GetCount(), 100000u);
    copy = array;
    EXPECT_FALSE(copy.RemoveNonDuplicates(false));
    copy.RemoveAll();
    for (int i = 0; i < 100000; ++i)
        copy.Add("equal");
    EXPECT_FALSE(copy.RemoveDuplicatesKeepOrder(true, static_cast<TextArray::Content>(5)));
    EXPECT_TRUE(copy.RemoveNonDuplicates(true, static_cast<TextArray::Content>(5)));
    EXPECT_TRUE(copy.IsEmpty());
}

} // namespace
