#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <set>

#include "CStringArray.h"
#include "CStringList.h"
#include "LocaleUtils.h"
#include "NumberTextConv.h"
#include "StringUtils.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"
#include "support/UserSettings.h"

namespace {

// ---- elements and lists ---------------------------------------------------------------------------------

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
};

// The same elements, and no two neighbours in the wrong order, unless there is no right one.
void CheckSort(const Texts& texts, const Order& order, bool isConsistent)
{
    TextArray array = ArrayOf(texts);
    array.Sort(order.ascending, order.caseSensitive, order.content);
    ASSERT_EQ(std::multiset<CString>(array.begin(), array.end()),
              std::multiset<CString>(texts.begin(), texts.end()));
    for (std::size_t i = 1; i < array.GetCount() && isConsistent; ++i)
        ASSERT_FALSE(order(array[i], array[i - 1])) << array[i] << " behind " << array[i - 1];
}

// Long enough for counting, with beginnings that go on over many blocks.
TEST(TextArraySort, GivesTheOrderOfThePredicate)
{
    auto pieces = Words("a A b 1 01 2 10 . _ \\ / \\\\ - \xE9 C:\\x\\ c:/X/ .txt .TXT");
    pieces.insert(pieces.end(), {" \\", "\t", " ", std::string(70, 'f'), std::string(1, '\0')});
    RandomTexts random;
    for (const auto content : {TextArray::ContentText, TextArray::ContentPaths, TextArray::ContentFiles})
        for (const bool ascending : {true, false})
            for (const bool caseSensitive : {true, false}) {
                SCOPED_TRACE(testing::Message() << "content " << content << ascending << caseSensitive);
                Texts texts(4000);
                for (CString& text : texts)
                    text = random.Make(pieces, random.Below(6));
                CheckSort(texts, {ascending, caseSensitive, content}, true);
            }
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

// From the user's settings at the first of these operations, and never again.
TEST(TextArraySort, TakesTheSeparatorOfNumbersAtTheFirstUse)
{
    UserSettings user;
    user.Use("sDecimal", ",");
    const std::function<void()> uses[] = {[] { TextArray::DoCompareFiles("a", "b"); },
                                          [] { ListOf("a;b").Sort(); }, [] { ListOf("a").AddSorted("b"); }};
    for (const auto& use : uses)
        for (const std::string known : {"", ";"}) {
            TextArray::m_csDecimal = "";
            LocaleUtils::m_csDecimalSeparator = known;
            TextArray::CompareFiles("1,5", "1,6");
            EXPECT_EQ(TextArray::m_csDecimal, "");
            use();
            LocaleUtils::m_csDecimalSeparator = "!";
            use();
            EXPECT_EQ(TextArray::m_csDecimal, known.empty() ? "," : ";");
        }
    TextArray::m_csDecimal = "";
}

} // namespace
