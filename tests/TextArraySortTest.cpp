// Sorting and sorted insertion against the predicate itself, and what sorting does where the predicate
// contradicts itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/Cases.h"
#include "support/RandomTexts.h"
#include "support/TextModels.h"

namespace {

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

TEST(TextArraySort, FoldersAreComparedTrimmedAndWithoutTheLastSeparator)
{
    for (const auto& [a, b, withCase, noCase] : Cases<4>("folder order")) {
        EXPECT_EQ(Sign(TextArray::CompareDirs(a, b)), std::stoi(withCase)) << a;
        EXPECT_EQ(Sign(TextArray::CompareDirs(a, b, false)), std::stoi(noCase)) << a;
    }
}

TEST(TextArraySort, PathsAreEqualByFolderAndName)
{
    for (const auto& [a, b, dirs, dirsNoCase, files, filesNoCase] : Cases<6>("equal paths")) {
        SCOPED_TRACE(a + " and " + b);
        EXPECT_EQ(TextArray::AreDirsEqual(a, b), dirs == "1");
        EXPECT_EQ(TextArray::AreDirsEqual(a, b, false), dirsNoCase == "1");
        EXPECT_EQ(TextArray::AreFilesEqual(a, b), files == "1");
        EXPECT_EQ(TextArray::AreFilesEqual(a, b, false), filesNoCase == "1");
        EXPECT_EQ(TextArray::ArePathsEqual(a, b, true, TextArray::ContentPaths), dirs == "1" && files == "1");
        EXPECT_FALSE(TextArray::ArePathsEqual(a, a, true, TextArray::ContentText));
    }
}

TEST(TextArraySort, AddSortedWithItsShortcuts)
{
    for (const auto& [before, added, ascending, index, after] : Cases<5>("sorted insertion")) {
        TextArray array = ListOf(before);
        EXPECT_EQ(array.AddSorted(added, ascending == "1"), std::stoul(index)) << added << " into " << before;
        EXPECT_EQ(LineOf(array), after) << added << " into " << before;
    }
    TextArray own = ListOf("b;a;c");
    const auto unknown = static_cast<TextArray::Content>(9); // of which nothing comes before anything
    own.AddSorted(own[0]);                                   // an element of the array itself
    own.AddSorted("A", true, true, unknown);
    own.Sort(true, true, unknown);
    EXPECT_EQ(LineOf(own), "a;b;b;c;A");
}

} // namespace
