// GUIDs, text blocks and pairs of markers.
#include "StringUtils.h"

#include <algorithm>
#include <string_view>

#include "framework/TextSearch.h"

using TextSearch::None;

namespace {

// Where the last occurrence starts, or -1: the first one of the mirror images. Linear, unlike a search from
// the end with a comparison at each place.
int FindLastExact(const CString& text, const CString& wanted)
{
    if (wanted.IsEmpty())
        return -1;
    const int fromEnd = CString(text).MakeReverse().Find(CString(wanted).MakeReverse());
    return fromEnd < 0 ? -1 : text.GetLength() - fromEnd - wanted.GetLength();
}

constexpr std::string_view GuidShape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool IsHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool IsLetterOrDigit(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte <= 127 && (StringUtils::IsAlpha(byte) || StringUtils::IsDigit(byte));
}

bool IsGuidAt(std::string_view text, std::size_t at)
{
    const std::string_view piece = text.substr(at, GuidShape.size());
    const auto fits = [](char shape, char c) { return shape == '-' ? c == '-' : IsHexDigit(c); };
    const bool standsAlone = (at == 0 || !IsLetterOrDigit(text[at - 1])) &&
                             (at + piece.size() == text.size() || !IsLetterOrDigit(text[at + piece.size()]));
    return standsAlone && std::equal(GuidShape.begin(), GuidShape.end(), piece.begin(), piece.end(), fits);
}

} // namespace

bool StringUtils::ContainsGUID(const CString& s)
{
    constexpr std::size_t ToFirstHyphen = 8;
    const std::string_view text = s.View();
    for (auto hyphen = text.find('-', ToFirstHyphen); hyphen != None; hyphen = text.find('-', hyphen + 1))
        if (IsGuidAt(text, hyphen - ToFirstHyphen))
            return true;
    return false;
}

bool StringUtils::IsInTextBlock(const CString& text, const CString& open, const CString& close, bool neither)
{
    const CString lowered = CString(text).MakeLower();
    const int lastOpen = FindLastExact(lowered, CString(open).MakeLower());
    const int lastClose = FindLastExact(lowered, CString(close).MakeLower());
    if (lastOpen < 0 && lastClose < 0)
        return neither;
    return lastOpen > lastClose;
}

bool StringUtils::FindOccurrencePair(const CString& s, const CString& open, const CString& close, int n,
                                     int& first, int& second)
{
    first = -1;
    second = -1;
    if (n < 1 || open.IsEmpty() || close.IsEmpty())
        return false;
    int from = 0;
    int opener = -1;
    int closer = -1;
    for (int count = 0; count < n; ++count, from = closer + close.GetLength()) {
        opener = s.Find(open, from);
        closer = opener < 0 ? -1 : s.Find(close, opener + open.GetLength());
        if (closer < 0)
            return false;
    }
    first = opener + FindLastExact(s.Mid(opener, closer - opener), open);
    second = closer;
    return true;
}
