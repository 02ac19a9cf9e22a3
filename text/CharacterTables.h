// Characters taken from strings, looked up in the tables: they are signed, so a byte of 128 or more is in no
// class and has the case form 0.
#pragma once

#include <cctype>

#include "StringUtils.h"

// The value in a table for a character taken from a string.
inline int Folded(const int (&table)[256], char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte > 127 ? 0 : table[byte];
}

inline int LowercaseOf(char c)
{
    return Folded(StringUtils::m_tableLowercase, c);
}
inline int UppercaseOf(char c)
{
    return Folded(StringUtils::m_tableUppercase, c);
}
inline bool IsSpaceChar(char c)
{
    return Folded(StringUtils::m_tableIsSpace, c) != 0;
}
// Letters and digits are no punctuation in any locale; to ask the runtime library takes longer.
inline bool IsPunctChar(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    const bool isAlphanumeric = StringUtils::IsAlpha(byte) || StringUtils::IsDigit(byte);
    return byte <= 127 && !isAlphanumeric && std::ispunct(byte) != 0;
}
// StringUtils::IsWholeWordDelimiter
inline bool IsWholeWordDelimiterChar(char c, bool underscoreDelimits, bool dollarDelimits)
{
    if (IsSpaceChar(c))
        return true;
    if (!IsPunctChar(c))
        return false;
    return c == '$' ? dollarDelimits : c == '_' ? underscoreDelimits : true;
}
