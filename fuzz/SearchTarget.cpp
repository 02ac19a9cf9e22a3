#include <algorithm>
#include <climits>
#include <vector>

#include "StringUtils.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "tests/support/TextModels.h"

namespace {

// Where the attempts that match begin. Each goes as far as it can; the next one begins at the character that
// stopped it, or so many characters behind that one.
std::vector<int> SlowAttempts(const std::string& text, const std::string& wanted, bool caseSensitive,
                              std::size_t skipped, int start = 0)
{
    std::vector<int> found;
    for (auto i = static_cast<std::size_t>(std::max(start, 0)); i < text.size() && !wanted.empty();) {
        std::size_t k = 0;
        while (k < wanted.size() && i + k < text.size() &&
               (caseSensitive ? text[i + k] == wanted[k] : LowerOf(text[i + k]) == LowerOf(wanted[k])))
            ++k;
        if (k == wanted.size())
            found.push_back(static_cast<int>(i));
        i += std::max<std::size_t>(k + skipped, 1);
    }
    return found;
}

// The n-th of them, from 1.
int At(const std::vector<int>& found, int n)
{
    return n > 0 && n <= static_cast<int>(found.size()) ? found[static_cast<std::size_t>(n) - 1] : -1;
}

int SlowFindLast(std::string text, std::string wanted)
{
    std::reverse(text.begin(), text.end());
    std::reverse(wanted.begin(), wanted.end());
    const int at = At(SlowAttempts(text, wanted, true, 1), 1);
    return at < 0 ? -1 : static_cast<int>(text.size() - wanted.size()) - at;
}

// Each exact occurrence that begins behind the one before.
std::vector<int> SlowOccurrences(const std::string& text, const std::string& wanted, int start = 0)
{
    std::vector<int> found;
    for (auto at = text.find(wanted, static_cast<std::size_t>(start));
         at != std::string::npos && !wanted.empty(); at = text.find(wanted, at + wanted.size()))
        found.push_back(static_cast<int>(at));
    return found;
}

bool IsWhole(const std::string& text, int begin, std::size_t length, bool underscore, bool dollar)
{
    const auto delimits = [&](char c) {
        return c == '_' ? underscore : c == '$' ? dollar : Has(Space + Punctuation, c);
    };
    const auto at = static_cast<std::size_t>(begin);
    return (at == 0 || delimits(text[at - 1])) && (at + length == text.size() || delimits(text[at + length]));
}

bool IsBlank(const std::string& text)
{
    return text.find_first_not_of(Space) == std::string::npos;
}

void ExpectAll(const std::string& text, const std::string& wanted, int start, int n, bool flag, bool other)
{
    const CString s(text), sub(wanted);
    const auto expect = [&](const char* operation, const auto& actual, const auto& expected) {
        Expect(operation, actual, expected, text, wanted, start, n, flag, other);
    };
    int pos = 7, last = 7;
    const bool isFound = StringUtils::Find(s, sub, false, pos, start);
    expect("Find, whether", isFound, pos >= 0);
    expect("Find without case", pos, At(SlowAttempts(text, wanted, false, 1, start), 1));
    expect("Contains", StringUtils::Contains(s, sub, true, start),
           StringUtils::Find(s, sub, true, pos, start));
    expect("Find", pos, static_cast<int>(text.find(wanted, static_cast<std::size_t>(std::max(start, 0)))));
    expect("FindLast", StringUtils::FindLast(s, sub), SlowFindLast(text, wanted));
    const auto attempts = SlowAttempts(text, wanted, flag, 1);
    StringUtils::FindFirstAndLast(s, sub, flag, pos, last);
    expect("FindFirstAndLast, first", pos, attempts.size() < 2 ? -1 : attempts.front());
    expect("FindFirstAndLast, last", last, attempts.size() < 2 ? -1 : attempts.back());
    expect("FindOccurrenceIndex", StringUtils::FindOccurrenceIndex(s, sub, n, flag),
           IsBlank(text) ? -1 : At(SlowAttempts(text, wanted, flag, 0), n));
    const auto all = flag ? SlowOccurrences(text, wanted) : SlowOccurrences(Lowered(text), Lowered(wanted));
    expect("FindOccurrences", StringUtils::FindOccurrences(s, sub, flag),
           IsBlank(text) ? 0 : static_cast<int>(all.size()));
    auto whole = SlowOccurrences(text, wanted, std::max(start, 0));
    std::erase_if(whole, [&](int at) { return !IsWhole(text, at, wanted.size(), flag, other); });
    expect("FindWholeWordMatch", StringUtils::FindWholeWordMatch(s, sub, n, start, flag, other),
           start < 0 || IsBlank(text) ? -1 : At(whole, n));
}

} // namespace

// Of few different characters, so that parts of the pattern stand everywhere; long texts go over several
// vector blocks, with matches at their borders.
void Targets::Search(Choices& choices)
{
    static const std::string alphabets[] = {
        "ab",      "aAbB",    "abc ", std::string("a\0\xE9\xFF", 4), std::string("aA\0\xC4 b", 6),
        "on _$,x", "\xE9\x80"};
    const bool isLong = choices.OneIn(10), flag = choices.Flag(), other = choices.Flag();
    const std::string& alphabet = choices.Pick(alphabets);
    const int extremes[] = {INT_MIN, -1, INT_MAX, static_cast<int>(choices.Below(isLong ? 2000 : 8)), 0};
    const int start = choices.Pick(extremes), n = static_cast<int>(choices.Below(5));
    const std::string wanted = choices.Make(alphabet, choices.Below(isLong ? 12 : 5));
    std::string text;
    for (std::size_t pieces = choices.Below(isLong ? 8 : 3); pieces > 0; --pieces) {
        text += choices.Flag() ? wanted : "";
        text += choices.Make(alphabet, choices.Below(24));
        text.append(isLong ? choices.Below(400) : 0, choices.Pick(alphabet));
    }
    ExpectAll(text, wanted, start, n, flag, other);
}
