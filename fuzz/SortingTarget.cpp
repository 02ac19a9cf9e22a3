// Sorting against the predicate itself, and that it stays among its elements where the predicate contradicts
// itself.
#include <algorithm>
#include <set>

#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/TextModels.h"

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

void ExpectSorted(const Texts& texts, const Order& order, const Texts& before)
{
    const auto expect = [&](const char* what, const auto& actual, const auto& expected) {
        Expect(what, actual, expected, before, order.ascending, order.caseSensitive, int{order.content});
    };
    expect("the elements", std::multiset<CString>(texts.begin(), texts.end()),
           std::multiset<CString>(before.begin(), before.end()));
    for (std::size_t i = 1; i < texts.size() && order.IsConsistent(before); ++i)
        expect("a pair in the wrong order", order(texts[i], texts[i - 1]), false);
}

} // namespace

// From any order, from the opposite one, and from the order itself.
void Targets::Sorting(Choices& choices)
{
    static const std::string pieces[] = {"a",
                                         "A",
                                         "b",
                                         "1",
                                         "01",
                                         "2",
                                         "10",
                                         ".",
                                         "_",
                                         "\\",
                                         "/",
                                         "\\\\",
                                         "-",
                                         "\xE9",
                                         "C:\\x\\",
                                         "c:/X/",
                                         ".txt",
                                         ".TXT",
                                         " \\",
                                         "\t",
                                         " ",
                                         std::string(70, 'f'),
                                         std::string(1, '\0'),
                                         "1.0015",
                                         "1.002",
                                         "1.0025"};
    static const TextArray::Content contents[] = {TextArray::ContentText, TextArray::ContentPaths,
                                                  TextArray::ContentFiles};
    TextArray::m_csDecimal = ".";
    const Order order{choices.Flag(), choices.Flag(), choices.Pick(contents)};
    Texts texts(choices.Below(9));
    for (CString& text : texts)
        text = choices.Make(pieces, choices.Below(6));
    for (int turn = 0; turn < 3; ++turn) {
        TextArray array = ArrayOf(texts);
        array.Sort(order.ascending, order.caseSensitive, order.content);
        const Texts sorted = TextsOf(array);
        ExpectSorted(sorted, order, texts);
        texts = sorted;
        if (turn == 0)
            std::reverse(texts.begin(), texts.end());
    }
}
