// Prefixes, suffixes, wildcard specifications, common prefixes and parts of texts.
#include "StringUtils.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "TextArray.h"
#include "framework/RuntimeText.h"
#include "framework/TextSearch.h"
#include "text/CharacterTables.h"
#include "text/PackedText.h"

namespace {

// For each character its other-case form by the tables; kept: that of a byte of 128 or more is NUL.
constexpr auto OtherCase = [] {
    std::array<char, 256> forms{};
    for (std::size_t c = 0; c < 128; ++c) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        forms[c] = static_cast<char>(isLetter ? c ^ ('a' ^ 'A') : c);
    }
    return forms;
}();

bool FitsCharByChar(const char* text, std::string_view wanted)
{
    for (std::size_t i = 0; i < wanted.size(); ++i)
        if (text[i] != wanted[i] && OtherCase[static_cast<unsigned char>(text[i])] != wanted[i])
            return false;
    return true;
}

// A character of a prefix or suffix fits one of the text that is equal or has it as its other-case form.
bool FitsAt(const char* text, std::string_view wanted, bool caseSensitive)
{
    if (caseSensitive)
        return std::memcmp(text, wanted.data(), wanted.size()) == 0;
    // A few characters are compared at once: where they begin to differ is hard to guess.
    const std::uint64_t few =
        wanted.size() > 8 ? ~std::uint64_t{0} : PackedText::LoadFew(text, wanted.size());
    if ((few & PackedText::InEachByte(0x80)) != 0)
        return FitsCharByChar(text, wanted);
    return PackedText::FoldAscii(few) ==
           PackedText::FoldAscii(PackedText::LoadFew(wanted.data(), wanted.size()));
}

bool BeginsWith(std::string_view text, std::string_view prefix, bool caseSensitive)
{
    if (text.empty() || prefix.empty() || prefix.size() > text.size())
        return text.empty() && prefix.empty();
    return FitsAt(text.data(), prefix, caseSensitive);
}

bool EndsWith(std::string_view text, std::string_view suffix, bool caseSensitive)
{
    if (text.empty() || suffix.empty() || suffix.size() > text.size())
        return text.empty() && suffix.empty();
    return FitsAt(text.data() + (text.size() - suffix.size()), suffix, caseSensitive);
}

// With case by bytes, without as the runtime library folds them.
bool IsEqual(std::string_view a, std::string_view b, bool caseSensitive)
{
    if (a.size() != b.size())
        return false;
    if (caseSensitive)
        return a == b;
    const auto lower = RuntimeText::Lowercase();
    return std::equal(a.begin(), a.end(), b.begin(), [&](char x, char y) { return lower(x) == lower(y); });
}

constexpr std::size_t MostPlaces = 16; // looked at in one step

// Whether a text that lies inside its string, so that MaxInline characters can be read, has the first and the
// last character of `wanted` at their distance, in either case of A to Z; `wanted` has at most 15. The loop
// has no jumps and becomes two rows of vector instructions: the first 16 places and the last 16.
bool HasBothEnds(const char* text, std::string_view wanted)
{
    const auto caseBit = [](char c) { // of a letter
        return static_cast<std::uint8_t>(c ^ (c < 0 ? c : OtherCase[static_cast<unsigned char>(c)]));
    };
    const std::size_t distance = wanted.size() - 1;
    const char* const late = text + CString::MaxInline - MostPlaces - distance;
    const std::uint8_t case1 = caseBit(wanted.front());
    const std::uint8_t case2 = caseBit(wanted.back());
    const auto difference = [=, first = wanted.front(), last = wanted.back()](const char* place) {
        return static_cast<std::uint8_t>(((place[0] ^ first) & ~case1) | ((place[distance] ^ last) & ~case2));
    };
    std::uint8_t least = 0xFF;
    for (std::size_t i = 0; i < MostPlaces; ++i)
        least = std::min({least, difference(text + i), difference(late + i)});
    return least == 0;
}

// Whether lower-cased copies of both, by the runtime library, contain one another.
bool ContainsLowered(const CString& whole, std::string_view wanted)
{
    if (whole.IsInline() && wanted.size() < MostPlaces && RuntimeText::FoldsAsciiOnly() &&
        !HasBothEnds(whole.GetString(), wanted))
        return false;
    const std::string_view text = whole.View();
    constexpr std::size_t Short = 256; // too little text for preparations to pay
    if (text.size() > Short) {
        const TextSearch::ByteFold fold = TextSearch::RuntimeLowercase();
        return TextSearch::Occurrences(text, wanted, fold).Next(0) != TextSearch::None;
    }
    const auto lower = RuntimeText::Lowercase();
    const char first = lower(wanted.front());
    const char last = lower(wanted.back());
    const auto isEqual = [&](char a, char b) { return lower(a) == lower(b); };
    for (std::size_t at = 0; at + wanted.size() <= text.size(); ++at) {
        const char* const begin = text.data() + at;
        // one jump for both
        const int differences = (lower(begin[0]) ^ first) | (lower(begin[wanted.size() - 1]) ^ last);
        if (differences == 0 && std::equal(wanted.begin(), wanted.end(), begin, isEqual))
            return true;
    }
    return false;
}

// ---- wildcards ------------------------------------------------------------------------------------------

std::size_t IndexOf(std::string_view spec, char c)
{
    return static_cast<std::size_t>(std::find(spec.begin(), spec.end(), c) - spec.begin());
}

std::size_t IndexOfWildcard(std::string_view spec)
{
    std::size_t at = 0;
    while (at < spec.size() && spec[at] != '*' && spec[at] != '?')
        ++at;
    return at;
}

// `at` is the place of the first wildcard.
std::size_t IndexOfStar(std::string_view spec, std::size_t at)
{
    return at < spec.size() && spec[at] == '?' ? IndexOf(spec, '*') : at;
}

bool IsCatchAll(std::string_view spec)
{
    constexpr std::string_view CatchAlls[] = {"*", "*?", "?*", "?*?", "*?*"};
    return spec.size() <= 3 &&
           std::find(std::begin(CatchAlls), std::end(CatchAlls), spec) != std::end(CatchAlls);
}

// A specification with at most one "?" that counts and no "*" that does.
bool FitsQuestionMark(std::string_view text, std::string_view spec, bool caseSensitive)
{
    const std::size_t at = IndexOf(spec, '?');
    if (at == spec.size())
        return !text.empty() && IsEqual(text, spec, caseSensitive);
    if (spec.size() != text.size() && spec.size() != text.size() + 1)
        return false;
    if (at > 0)
        return BeginsWith(text, spec.substr(0, at), caseSensitive); // kept: what follows is not tested
    return spec.size() > 1 && EndsWith(text, spec.substr(1), caseSensitive);
}

// "*" middle "*" with a "?" in the middle. Kept: only its position counts, for the pieces around it are taken
// from the text and looked for there, so almost every text that is long enough fits.
bool FitsAroundQuestionMark(const CString& text, std::size_t position, bool caseSensitive)
{
    const int at = static_cast<int>(position);
    CString left = text.Left(at);
    CString right = text.Mid(at + 1);
    if (!caseSensitive) {
        left.MakeLower();
        right.MakeLower();
    }
    const int leftAt = text.Find(left);
    const int rightAt = text.Find(right);
    const int leftEnd = leftAt + left.GetLength();
    return leftAt >= 0 && rightAt >= 0 && (rightAt == leftEnd || rightAt == leftEnd + 1);
}

// Stands apart, so that the specifications without a middle need not make room for it.
[[gnu::noinline]] bool ContainsMiddle(const CString& text, std::string_view middle, bool caseSensitive)
{
    return middle.empty() ||
           (caseSensitive ? TextSearch::Find(text.View(), middle, 0) >= 0 : ContainsLowered(text, middle));
}

// "*" rest.
bool FitsBehindStar(const CString& text, std::string_view rest, bool caseSensitive)
{
    const std::size_t wildcard = IndexOfWildcard(rest);
    if (wildcard == rest.size())
        return EndsWith(text.View(), rest, caseSensitive);
    const std::size_t star = IndexOfStar(rest, wildcard);
    if (star == rest.size())
        return FitsQuestionMark(text.View(), rest, caseSensitive);
    if (star + 1 < rest.size())
        return false;
    return wildcard == star ? ContainsMiddle(text, rest.substr(0, star), caseSensitive)
                            : FitsAroundQuestionMark(text, wildcard, caseSensitive);
}

// How long the common front is.
int CommonFront(std::string_view a, std::string_view b, bool caseSensitive)
{
    const auto isEqual = [&](char x, char y) {
        return caseSensitive ? x == y : UppercaseOf(x) == UppercaseOf(y);
    };
    return static_cast<int>(std::mismatch(a.begin(), a.end(), b.begin(), b.end(), isEqual).first - a.begin());
}

} // namespace

bool StringUtils::MatchFirstChars(const CString& text, const CString& prefix, bool caseSensitive)
{
    return BeginsWith(text.View(), prefix.View(), caseSensitive);
}

bool StringUtils::MatchLastChars(const CString& text, const CString& suffix, bool caseSensitive)
{
    return EndsWith(text.View(), suffix.View(), caseSensitive);
}

bool StringUtils::MatchSpec(const CString& text, const CString& spec, bool caseSensitive)
{
    const std::string_view name = text.View();
    const std::string_view whole = spec.View();
    if (whole.empty() || IsCatchAll(whole))
        return true;
    if (name.size() == whole.size() && IsEqual(name, whole, caseSensitive))
        return true;
    const std::size_t wildcard = IndexOfWildcard(whole);
    if (wildcard == 0 && whole.find_first_not_of('?') == std::string_view::npos)
        return name.size() <= whole.size();
    const std::size_t star = IndexOfStar(whole, wildcard);
    if (star == whole.size())
        return FitsQuestionMark(name, whole, caseSensitive);
    const std::string_view rest = whole.substr(star + 1);
    if (star == 0)
        return FitsBehindStar(text, rest, caseSensitive);
    return (rest.empty() || EndsWith(name, rest, caseSensitive)) && // the two may overlap in the text
           BeginsWith(name, whole.substr(0, star), caseSensitive);
}

bool StringUtils::MatchSpecQuestionMark(const CString& text, const CString& spec, bool caseSensitive)
{
    return FitsQuestionMark(text.View(), spec.View(), caseSensitive);
}

CString StringUtils::DetermineCommonChars(const CString& a, const CString& b, bool caseSensitive)
{
    const int common = CommonFront(a.View(), b.View(), caseSensitive);
    return common == b.GetLength() && common < a.GetLength() ? b : a.Left(common);
}

CString StringUtils::GetCommonText(const TextArray& items, bool caseSensitive)
{
    CString common;
    for (const CString& item : items) {
        if (item.IsEmpty())
            continue;
        common = common.IsEmpty() ? item : DetermineCommonChars(item, common, caseSensitive);
        if (common.IsEmpty())
            break;
    }
    return common;
}

CString StringUtils::CopySubString(const CString& s, int start, int count)
{
    return start < 0 || count < 1 ? CString() : s.Mid(start, count);
}

CString StringUtils::GetTextFromMiddle(const CString& s, int first, int last)
{
    first = std::max(first, 0);
    last = std::min(last, s.GetLength() - 1);
    return first > last ? CString() : s.Mid(first, last - first + 1);
}
