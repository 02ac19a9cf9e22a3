// Sorting and sorted insertion against the predicate itself, and what sorting does where the predicate
// contradicts itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "TextArray.h"
#include "text/BoundedSort.h"

namespace {

TextArray ArrayOf(const std::vector<std::string>& texts)
{
    TextArray array;
    for (const std::string& text : texts)
        array.Add(CString(text));
    return array;
}

std::vector<std::string> TextsOf(const TextArray& array)
{
    std::vector<std::string> texts;
    for (const CString& element : array)
        texts.emplace_back(element.View());
    return texts;
}

struct Order {
    bool ascending, caseSensitive;
    TextArray::Content content;

    bool operator()(const std::string& a, const std::string& b) const
    {
        return TextArray::SortCompareItems(CString(a), CString(b), ascending, caseSensitive, content);
    }
};

std::vector<Order> AllOrders()
{
    std::vector<Order> orders;
    for (const auto content : {TextArray::ContentText, TextArray::ContentPaths, TextArray::ContentFiles})
        for (const bool ascending : {true, false})
            for (const bool caseSensitive : {true, false})
                orders.push_back({ascending, caseSensitive, content});
    return orders;
}

// Nothing stands in front of an element that must come before it. An array in which "neither comes before the
// other" does not carry over has no such order and is only checked for its elements.
void CheckSort(const std::vector<std::string>& texts, const Order& order)
{
    SCOPED_TRACE(std::string(order.ascending ? "ascending" : "descending") +
                 (order.caseSensitive ? ", case, content " : ", no case, content ") +
                 std::to_string(order.content));
    TextArray array = ArrayOf(texts);
    array.Sort(order.ascending, order.caseSensitive, order.content);
    const auto sorted = TextsOf(array);
    ASSERT_TRUE(std::is_permutation(sorted.begin(), sorted.end(), texts.begin(), texts.end()));
    const std::size_t count = texts.size();
    const auto tie = [&](const std::string& a, const std::string& b) { return !order(a, b) && !order(b, a); };
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j < count; ++j)
            for (std::size_t k = 0; k < count; ++k)
                if ((tie(texts[i], texts[j]) && tie(texts[j], texts[k]) && !tie(texts[i], texts[k])) ||
                    (order(texts[i], texts[j]) && order(texts[j], texts[k]) && !order(texts[i], texts[k])))
                    return;
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = i + 1; j < count; ++j)
            ASSERT_FALSE(order(sorted[j], sorted[i]))
                << '"' << sorted[j] << "\" behind \"" << sorted[i] << '"';
}

std::string RandomPath(std::mt19937& random)
{
    static const std::vector<std::string> pieces = {"a",       "A",
                                                    "b",       "1",
                                                    "01",      "2",
                                                    "10",      ".",
                                                    "_",       "\\",
                                                    "/",       "\\\\",
                                                    " \\",     "\t",
                                                    "-",       " ",
                                                    "\xE9",    "same beginning ",
                                                    "1.0015",  "1.002",
                                                    "1.0025",  std::string(1, '\0'),
                                                    "C:\\x\\", "c:/X/"};
    std::string path;
    for (auto count = random() % 6; count > 0; --count)
        path += pieces[random() % pieces.size()];
    return path;
}

TEST(TextArraySort, GivesTheOrderOfThePredicate)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round)
        for (const Order& order : AllOrders()) {
            std::vector<std::string> texts(random() % 9);
            for (std::string& text : texts)
                text = RandomPath(random);
            CheckSort(texts, order);
            if (HasFatalFailure())
                return;
        }
}

// Long enough for counting, with beginnings that go on over many blocks.
TEST(TextArraySort, OrdersLargeArraysInEveryState)
{
    std::mt19937 random(7);
    std::vector<std::string> texts;
    for (int i = 0; i < 5000; ++i)
        texts.push_back("C:\\" + std::string(random() % 300, 'f') + "\\" + std::string(random() % 30, 'n') +
                        std::to_string(random() % 300) + (random() % 2 ? ".txt" : ".TXT"));
    for (const Order& order : AllOrders()) {
        std::stable_sort(texts.begin(), texts.end(), order);
        const std::vector<std::string> expected = texts;
        const auto check = [&](const char* state) {
            TextArray array = ArrayOf(texts);
            array.Sort(order.ascending, order.caseSensitive, order.content);
            const auto sorted = TextsOf(array);
            for (std::size_t i = 0; i < sorted.size(); ++i)
                ASSERT_FALSE(order(sorted[i], expected[i]) || order(expected[i], sorted[i]))
                    << state << ", element " << i << ", content " << order.content;
        };
        check("sorted");
        std::reverse(texts.begin(), texts.end());
        check("reversed");
        std::shuffle(texts.begin(), texts.end(), random);
        check("shuffled");
    }
}

TEST(TextArraySort, StaysInBoundsWhereTheOrderContradictsItself)
{
    std::mt19937 random(11);
    std::vector<std::string> chain; // each number ties with its neighbours only
    for (int i = 0; i < 100000; ++i)
        chain.push_back("v1." + std::to_string(1000 + i % 9000) + (random() % 3 ? "" : "5") + "x.t");
    std::shuffle(chain.begin(), chain.end(), random);
    TextArray array = ArrayOf(chain);
    for (const bool ascending : {true, false})
        array.Sort(ascending, false, TextArray::ContentFiles);
    auto sorted = TextsOf(array);
    std::sort(sorted.begin(), sorted.end());
    std::sort(chain.begin(), chain.end());
    EXPECT_EQ(sorted, chain);

    std::vector<int> numbers(100000);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = static_cast<int>(i);
    for (const int answer : {0, 1, 2}) { // never, always, at random
        BoundedSort::Sort(numbers, [&](int, int) { return answer == 2 ? random() % 2 == 0 : answer == 1; });
        auto left = numbers;
        std::sort(left.begin(), left.end());
        for (std::size_t i = 0; i < left.size(); ++i)
            ASSERT_EQ(left[i], static_cast<int>(i));
    }
}

TEST(TextArraySort, LeavesAnUnknownContentAsItIs)
{
    TextArray array = ArrayOf({"b", "a", "c"});
    array.Sort(true, true, static_cast<TextArray::Content>(7));
    EXPECT_EQ(TextsOf(array), (std::vector<std::string>{"b", "a", "c"}));
}

TEST(TextArraySort, FoldersAreComparedTrimmedAndWithoutTheLastSeparator)
{
    EXPECT_EQ(TextArray::CompareDirs("C:\\a\\x.txt", "c:\\A\\y.txt", false), 0);
    EXPECT_EQ(TextArray::CompareDirs("a/x", "  a\\y"), 0);
    EXPECT_NE(TextArray::CompareDirs("a/x", "a\\\\y"), 0); // only one is removed
    EXPECT_EQ(TextArray::CompareDirs("x", "\\y"), 0);
    EXPECT_LT(TextArray::CompareDirs("x", "b\\y"), 0);
    EXPECT_TRUE(TextArray::AreDirsEqual("a/x", "\ta\\y"));
    EXPECT_FALSE(TextArray::AreDirsEqual("a/x", "A/x"));
    EXPECT_TRUE(TextArray::AreDirsEqual("a/x", "A/x", false));
    EXPECT_TRUE(TextArray::AreFilesEqual("a/x.txt", "b\\x.TXT", false));
    EXPECT_FALSE(TextArray::AreFilesEqual("a/x.txt", "b\\x.TXT"));
    EXPECT_TRUE(TextArray::AreFilesEqual("x.", "x"));
    EXPECT_TRUE(TextArray::AreFilesEqual(CString("x\0a.t", 5), CString("x\0b.t", 5))); // text ends at NUL
    EXPECT_TRUE(TextArray::AreDirsEqual(CString("x\0a/", 4), CString("X\0b/", 4), false));
    EXPECT_FALSE(TextArray::AreFilesEqual("1.5.t", "1.50.t")); // numbers count as text
    EXPECT_TRUE(TextArray::ArePathsEqual("p/x", "p\\x", true, TextArray::ContentPaths));
    EXPECT_FALSE(TextArray::ArePathsEqual("p/x", "q\\x", true, TextArray::ContentPaths));
    EXPECT_TRUE(TextArray::ArePathsEqual("p/x", "q\\x", true, TextArray::ContentFiles));
    EXPECT_FALSE(TextArray::ArePathsEqual("x", "x", true, TextArray::ContentText));
}

struct Insertion {
    std::vector<std::string> before;
    const char* added;
    bool ascending;
    std::size_t index;
    std::vector<std::string> after;
};

TEST(TextArraySort, AddSortedWithItsShortcuts)
{
    const Insertion rows[] = {
        {{}, "a", true, 0, {"a"}},
        {{"a", "c"}, "b", true, 1, {"a", "b", "c"}},
        {{"a", "b", "c"}, "d", true, 3, {"a", "b", "c", "d"}},
        {{"z", "a"}, "b", true, 2, {"z", "a", "b"}}, // only the last one is looked at
        {{"a", "c", "b"}, "b", true, 1, {"a", "b", "b", "c"}},
        {{"a", "b"}, "b", true, 1, {"a", "b", "b"}},  // the first of the equal ones
        {{"c", "a"}, "b", false, 0, {"b", "c", "a"}}, // puts the smaller in front of the greater
        {{"c", "a"}, "d", false, 0, {"d", "c", "a"}},
        {{"c", "a"}, "c", false, 0, {"c", "c", "a"}},
        {{"a", "c"}, "d", false, 0, {"d", "c", "a"}},
    };
    for (const Insertion& row : rows) {
        TextArray array = ArrayOf(row.before);
        SCOPED_TRACE(std::string(row.added) + " into " + array.ConvertIntoOneLine(" ").GetString());
        EXPECT_EQ(array.AddSorted(row.added, row.ascending), row.index);
        EXPECT_EQ(TextsOf(array), row.after);
    }
    TextArray own = ArrayOf({"b", "a", "c"});
    EXPECT_EQ(own.AddSorted(own[0]), 1u); // an element of the array itself
    EXPECT_EQ(TextsOf(own), (std::vector<std::string>{"a", "b", "b", "c"}));
    TextArray unknown = ArrayOf({"b"});
    EXPECT_EQ(unknown.AddSorted("a", true, true, static_cast<TextArray::Content>(9)), 1u);
}

} // namespace
