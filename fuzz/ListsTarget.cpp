// What removes elements of an array, against counting by the rule.
#include <algorithm>
#include <functional>

#include "StringUtils.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/TextModels.h"

namespace {

struct Removal {
    const char* name;
    std::function<bool(TextArray&)> remove;
    std::function<bool(std::size_t)> isKept; // of the element at that place before
};

void ExpectRemovals(const Texts& texts, const Texts& list, bool caseSensitive, TextArray::Content content)
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
        Texts expected;
        for (std::size_t i = 0; i < texts.size(); ++i)
            if (removal.isKept(i))
                expected.push_back(texts[i]);
        TextArray array = ArrayOf(texts);
        const bool hasRemoved = removal.remove(array);
        Expect(removal.name, TextsOf(array), expected, texts, list, caseSensitive, int{content});
        Expect(removal.name, hasRemoved, expected.size() < texts.size(), texts, list, caseSensitive,
               int{content});
    }
}

Texts MakeList(Choices& choices)
{
    static const std::string pieces[] = {"a",
                                         "A",
                                         "b",
                                         "\xE9",
                                         "\xC9",
                                         ".",
                                         "\\",
                                         "/",
                                         "x.t",
                                         "X.T",
                                         "LongerThanEightBytes",
                                         "longerThanEightBytes",
                                         "",
                                         " ",
                                         std::string(1, '\0')};
    Texts texts(choices.Below(choices.OneIn(30) ? 100 : 12));
    for (CString& text : texts)
        text = choices.Make(pieces, choices.Below(4));
    return texts;
}

} // namespace

void Targets::Lists(Choices& choices)
{
    const bool caseSensitive = choices.Flag();
    const auto content = static_cast<TextArray::Content>(choices.Below(4));
    const Texts texts = MakeList(choices);
    ExpectRemovals(texts, MakeList(choices), caseSensitive, content);
}
