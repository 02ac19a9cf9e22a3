#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <set>

#include "CStringArray.h"
#include "CStringList.h"
#include "NumberTextConv.h"
#include "StringUtils.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"
#include "support/UserSettings.h"

namespace {

// ---- elements and lists; what goes through an index, against counting by the rule -----------------------

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

// Replaces what the other list holds, then appends.
template <class List>
void CopyAndBack(TextArray& array, void (TextArray::*copyTo)(List&) const,
                 void (TextArray::*copyFrom)(const List&))
{
    List list;
    for (int turn = 0; turn < 2; ++turn)
        (array.*copyTo)(list);
    array.Add("c");
    (array.*copyFrom)(list);
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
        {"a;b", [](auto& a) { CopyAndBack(a, &TextArray::CopyToVector, &TextArray::CopyFromVector); },
         "a;b;c;a;b"},
        {"a;b",
         [](auto& a) { CopyAndBack(a, &TextArray::CopyToStringArray, &TextArray::CopyFromStringArray); },
         "a;b;c;a;b"},
        {"a;b", [](auto& a) { CopyAndBack(a, &TextArray::CopyToList, &TextArray::CopyFromList); },
         "a;b;c;a;b"},
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
    TextArray many =
        ArrayOf({"ab", CString("ab\0c", 4), std::string("ab\0", 3) + std::string(40, 'c'), "AB", "a", ""});
    for (int i = 0; i < 100; ++i) // many, so that case is folded beforehand
        many.Add("other");
    EXPECT_TRUE(many.FindCount("ab") == 3 && many.FindCount("aB", false) == 4 && many.FindCount("") == 1);
    TextArray moved = ListOf("a;b;c;b");
    EXPECT_TRUE(moved.MoveToFirst("B", false) && !moved.MoveToFirst("b"));
    EXPECT_TRUE(moved.MoveToLast("b") && moved.MoveToLast("b")); // the first equal one is not the last
    EXPECT_FALSE(moved.MoveToLast("x") || ListOf("a;b").MoveToLast("b"));
    EXPECT_EQ(LineOf(moved), "a;c;b;b");
    EXPECT_EQ(array.GetCopyAt(5) + array[7] + TextArray().GetFirst() + TextArray().GetLast(), "");
    EXPECT_TRUE(array.IsEmptyAt(9) && !array.GetLengthAt(9) && !array.GetCharAt(9, 0));
}

// ---- sorting and sorted insertion, against the predicate itself -----------------------------------------

struct Order {
    bool ascending, caseSensitive;
    TextArray::Content content;

    bool operator()(const CString& a, const CString& b) const
    {
        return TextArray::SortCompareItems(a, b, ascending, caseSensitive, content);
    }
    bool AreTied(const CString& a, const CString& b) const { return !(*this)(a, b) && !(*this)(b, a); }
    // Whether "comes before" and "neither comes before the other" carry over from pair to pair.
    bool IsConsistent(const Texts& texts) const
    {
        for (const CString& a : texts)
            for (const CString& b : texts)
                for (const CString& c : texts)
                    if ((AreTied(a, b) && AreTied(b, c) && !AreTied(a, c)) ||
                        ((*this)(a, b) && (*this)(b, c) && !(*this)(a, c)))
                        return false;
        return true;
    }
};

template <class Check>
void ForAllOrders(Check check)
{
    for (const auto content : {TextArray::ContentText, TextArray::ContentPaths, TextArray::ContentFiles})
        for (const bool ascending : {true, false})
            for (const bool caseSensitive : {true, false}) {
                SCOPED_TRACE(testing::Message() << "content " << content << (ascending ? ", ascending" : "")
                                                << (caseSensitive ? ", case" : ""));
                check(Order{ascending, caseSensitive, content});
            }
}

// The same elements, and no two neighbours in the wrong order, unless there is no right one; then the same
// from the opposite order and from the order itself.
void CheckSort(Texts texts, const Order& order, bool isConsistent)
{
    const std::multiset<CString> elements(texts.begin(), texts.end());
    for (int turn = 0; turn < 3; ++turn) {
        TextArray array = ArrayOf(texts);
        array.Sort(order.ascending, order.caseSensitive, order.content);
        texts = TextsOf(array);
        ASSERT_EQ(std::multiset<CString>(texts.begin(), texts.end()), elements);
        for (std::size_t i = 1; i < texts.size() && isConsistent; ++i)
            ASSERT_FALSE(order(texts[i], texts[i - 1])) << texts[i] << " behind " << texts[i - 1];
        if (turn == 0)
            std::reverse(texts.begin(), texts.end());
    }
}

// Some arrays are long enough for counting, with beginnings that go on over many blocks.
TEST(TextArraySort, GivesTheOrderOfThePredicate)
{
    auto pieces = Words("a A b 1 01 2 10 . _ \\ / \\\\ - \xE9 C:\\x\\ c:/X/ .txt .TXT");
    pieces.insert(pieces.end(), {" \\", "\t", " ", std::string(70, 'f'), std::string(1, '\0')});
    auto withThousandths = pieces;
    withThousandths.insert(withThousandths.end(), {"1.0015", "1.002", "1.0025"});
    RandomTexts random;
    for (int round = 0; round < 300 && !HasFatalFailure(); ++round)
        ForAllOrders([&](const Order& order) {
            const bool isLong = random.OneIn(300);
            Texts texts(isLong ? 4000 : random.Below(9));
            for (CString& text : texts)
                text = random.Make(isLong ? pieces : withThousandths, random.Below(6));
            CheckSort(texts, order, isLong || order.IsConsistent(texts));
        });
}

TEST(TextArraySort, StaysInBoundsWhereTheOrderContradictsItself)
{
    RandomTexts random(11);
    Texts chain; // each number ties with its neighbours only
    for (int i = 0; i < 30000; ++i)
        chain.push_back("v1." + std::to_string(1000 + random.Below(9000)) +
                        (random.OneIn(3) ? "x.t" : "5x.t"));
    for (const bool ascending : {true, false})
        CheckSort(chain, {ascending, false, TextArray::ContentFiles}, false);
}

TEST(TextArraySort, KnowsNoOrderOfUnknownContent)
{
    TextArray own = ListOf("b;a;c");
    const auto unknown = static_cast<TextArray::Content>(9); // of which nothing comes before anything
    own.AddSorted(own[0]);                                   // an element of the array itself
    own.AddSorted("A", true, true, unknown);
    own.Sort(true, true, unknown);
    EXPECT_EQ(LineOf(own), "a;b;b;c;A");
}

} // namespace
