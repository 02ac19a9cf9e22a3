// Prefixes, suffixes and wildcard specifications.
#include "StringUtils.h"

namespace {

// A prefix character matches a text character that is equal or whose other-case form it is.
bool MatchesChar(char text, char wanted, bool caseSensitive)
{
    if (text == wanted)
        return true;
    if (caseSensitive)
        return false;
    const int c = text < 0 ? 0 : text;
    const int other =
        StringUtils::IsLower(c) ? StringUtils::m_tableUppercase[c] : StringUtils::m_tableLowercase[c];
    return other == wanted;
}

bool MatchesAt(const char* text, const CString& wanted, bool caseSensitive)
{
    for (int i = 0; i < wanted.GetLength(); ++i)
        if (!MatchesChar(text[i], wanted[i], caseSensitive))
            return false;
    return true;
}

} // namespace

bool StringUtils::MatchFirstChars(const CString& text, const CString& prefix, bool caseSensitive)
{
    if (text.IsEmpty() || prefix.IsEmpty() || prefix.GetLength() > text.GetLength())
        return text.IsEmpty() && prefix.IsEmpty();
    return MatchesAt(text, prefix, caseSensitive);
}

bool StringUtils::MatchLastChars(const CString& text, const CString& suffix, bool caseSensitive)
{
    if (text.IsEmpty() || suffix.IsEmpty() || suffix.GetLength() > text.GetLength())
        return text.IsEmpty() && suffix.IsEmpty();
    return MatchesAt(text.GetString() + text.GetLength() - suffix.GetLength(), suffix, caseSensitive);
}
