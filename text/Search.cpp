// Finding characters, texts and words.
#include "StringUtils.h"

#include <algorithm>

#include "TextArray.h"
#include "framework/TextSearch.h"
#include "text/CharacterTables.h"
#include "text/SearchRestart.h"

using TextSearch::None;
using TextSearch::Occurrences;

namespace {

using NextAttempt = RestartScan::NextAttempt;

std::size_t StartPosition(int start)
{
    return static_cast<std::size_t>(std::max(start, 0));
}

int FindIgnoringCase(std::string_view text, std::string_view wanted, int start)
{
    return RestartScan(text, wanted, false, NextAttempt::BehindStop, StartPosition(start)).Next();
}

int CountOccurrences(std::string_view text, std::string_view wanted, const TextSearch::ByteFold& fold)
{
    int count = 0;
    Occurrences occurrences(text, wanted, fold);
    for (auto at = occurrences.Next(0); at != None; at = occurrences.Next(at + wanted.size()))
        ++count;
    return count;
}

} // namespace

bool StringUtils::Find(const CString& s, char c, bool caseSensitive, int& pos, int start)
{
    pos = caseSensitive ? s.Find(c, start) : FindIgnoringCase(s.View(), {&c, 1}, start);
    return pos >= 0;
}

bool StringUtils::Contains(const CString& s, char c, bool caseSensitive, int start)
{
    int pos = -1;
    return Find(s, c, caseSensitive, pos, start);
}

bool StringUtils::Find(const CString& s, const CString& sub, bool caseSensitive, int& pos, int start)
{
    pos = caseSensitive ? s.Find(sub, start) : FindIgnoringCase(s.View(), sub.View(), start);
    return pos >= 0;
}

bool StringUtils::Contains(const CString& s, const CString& sub, bool caseSensitive, int start)
{
    int pos = -1;
    return Find(s, sub, caseSensitive, pos, start);
}

int StringUtils::FindLast(const CString& s, const CString& sub)
{
    const std::string_view text = s.View();
    const std::string_view wanted = sub.View();
    if (wanted.empty())
        return -1;
    std::size_t matched = 0; // characters at the end of the pattern
    for (std::size_t i = text.size(); i-- > 0;) {
        const bool isEqual = text[i] == wanted[wanted.size() - 1 - matched];
        matched = isEqual ? matched + 1 : 0; // kept: the differing character is not tried as a last one
        if (matched == wanted.size())
            return static_cast<int>(i);
    }
    return -1;
}

int StringUtils::FindOccurrenceIndex(const CString& s, const CString& sub, int n, bool caseSensitive)
{
    if (n < 1 || sub.IsEmpty() || IsEffectivelyEmpty(s))
        return -1;
    RestartScan scan(s.View(), sub.View(), caseSensitive, NextAttempt::AtStop);
    int found = scan.Next();
    for (int count = 1; count < n && found >= 0; ++count)
        found = scan.Next();
    return found;
}

int StringUtils::FindOccurrences(const CString& s, const CString& sub, bool caseSensitive)
{
    if (sub.IsEmpty() || IsEffectivelyEmpty(s))
        return 0;
    if (caseSensitive)
        return CountOccurrences(s.View(), sub.View(), TextSearch::Exact);
    constexpr int Long = 512; // from here on a copy costs more than the preparation without one
    if (s.GetLength() < Long)
        return CountOccurrences(CString(s).MakeLower().View(), CString(sub).MakeLower().View(),
                                TextSearch::Exact);
    return CountOccurrences(s.View(), sub.View(), TextSearch::RuntimeLowercase());
}

void StringUtils::FindFirstAndLast(const CString& s, const CString& sub, bool caseSensitive, int& first,
                                   int& last)
{
    first = -1;
    last = -1;
    RestartScan scan(s.View(), sub.View(), caseSensitive, NextAttempt::BehindStop);
    first = scan.Next();
    for (int found = first; found >= 0; found = scan.Next())
        last = found;
    if (last <= first)
        first = last = -1; // a single match has no last one
}

int StringUtils::FindWholeWordMatch(const CString& s, const CString& word, int n, int start,
                                    bool underscoreDelimits, bool dollarDelimits)
{
    // Only a blank word could stand in a blank text, which holds no words.
    if (n < 1 || start < 0 || word.IsEmpty() || (IsEffectivelyEmpty(word) && IsEffectivelyEmpty(s)))
        return -1;
    const std::string_view text = s.View();
    const auto delimits = [&](std::size_t at) {
        return IsWholeWordDelimiterChar(text[at], underscoreDelimits, dollarDelimits);
    };
    const std::size_t length = word.View().size();
    Occurrences occurrences(text, word.View());
    int count = 0;
    for (auto at = occurrences.Next(StartPosition(start)); at != None; at = occurrences.Next(at + length)) {
        const std::size_t end = at + length;
        const bool isWhole = (at == 0 || delimits(at - 1)) && (end == text.size() || delimits(end));
        if (isWhole && ++count == n)
            return static_cast<int>(at);
    }
    return -1;
}

int StringUtils::FindAllWords(const TextArray& words, const CString& s, bool wholeWord,
                              bool underscoreDelimits, bool dollarDelimits)
{
    if (words.IsEmpty() || s.IsEmpty())
        return -1;
    int first = s.GetLength();
    for (const CString& word : words) {
        const int at =
            wholeWord ? FindWholeWordMatch(s, word, 1, 0, underscoreDelimits, dollarDelimits) : s.Find(word);
        if (at < 0)
            return -1;
        first = std::min(first, at);
    }
    return first;
}
