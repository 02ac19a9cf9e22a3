#include <algorithm>
#include <cctype>
#include <string_view>

#include "StringUtils.h"
#include "text/CharacterTables.h"

namespace {

// The runtime library's tolower, toupper, isspace, isdigit and isalpha in the "C" locale.
constexpr int Lowercase(int c)
{
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}
constexpr int Uppercase(int c)
{
    return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c;
}
constexpr int IsSpaceInC(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr int IsDigitInC(int c)
{
    return c >= '0' && c <= '9';
}
constexpr int IsAlphaInC(int c)
{
    return Lowercase(c) != Uppercase(c);
}

bool IsLowerChar(char c)
{
    return static_cast<unsigned char>(c) <= 127 && StringUtils::IsLower(c);
}
bool IsUpperChar(char c)
{
    return static_cast<unsigned char>(c) <= 127 && StringUtils::IsUpper(c);
}

// The order of two texts by the lower-case table, a proper prefix first: below, equal to or above 0.
int CompareLowercase(const CString& a, const CString& b)
{
    const int common = std::min(a.GetLength(), b.GetLength());
    const char* const left = a;
    const char* const right = b;
    for (int i = 0; i < common; ++i) {
        const int difference =
            Folded(StringUtils::m_tableLowercase, left[i]) - Folded(StringUtils::m_tableLowercase, right[i]);
        if (difference != 0)
            return difference;
    }
    return a.GetLength() - b.GetLength();
}

} // namespace

// Filled by the compiler, so that they are there before any code of the library or its host runs.
#define KVT01_ROW(f, c)                                                                                      \
    f(c), f(c + 1), f(c + 2), f(c + 3), f(c + 4), f(c + 5), f(c + 6), f(c + 7), f(c + 8), f(c + 9),          \
        f(c + 10), f(c + 11), f(c + 12), f(c + 13), f(c + 14), f(c + 15)
#define KVT01_TABLE(f)                                                                                       \
    {                                                                                                        \
        KVT01_ROW(f, 0), KVT01_ROW(f, 16), KVT01_ROW(f, 32), KVT01_ROW(f, 48), KVT01_ROW(f, 64),             \
            KVT01_ROW(f, 80), KVT01_ROW(f, 96), KVT01_ROW(f, 112), KVT01_ROW(f, 128), KVT01_ROW(f, 144),     \
            KVT01_ROW(f, 160), KVT01_ROW(f, 176), KVT01_ROW(f, 192), KVT01_ROW(f, 208), KVT01_ROW(f, 224),   \
            KVT01_ROW(f, 240)                                                                                \
    }
constinit int StringUtils::m_tableIsAlpha[256] = KVT01_TABLE(IsAlphaInC);
constinit int StringUtils::m_tableIsDigit[256] = KVT01_TABLE(IsDigitInC);
constinit int StringUtils::m_tableIsSpace[256] = KVT01_TABLE(IsSpaceInC);
constinit int StringUtils::m_tableLowercase[256] = KVT01_TABLE(Lowercase);
constinit int StringUtils::m_tableUppercase[256] = KVT01_TABLE(Uppercase);
#undef KVT01_TABLE
#undef KVT01_ROW

void StringUtils::DoPreLoad()
{
    for (int c = 0; c <= 255; ++c) {
        m_tableLowercase[c] = Lowercase(c);
        m_tableUppercase[c] = Uppercase(c);
        m_tableIsSpace[c] = IsSpaceInC(c);
        m_tableIsDigit[c] = IsDigitInC(c);
        m_tableIsAlpha[c] = IsAlphaInC(c);
    }
}

bool StringUtils::IsPunct(int c)
{
    return IsByte(c) && std::ispunct(c) != 0;
}

bool StringUtils::IsRomanNumeral(int c)
{
    return c > 0 && c <= 127 &&
           std::string_view("CDILMVX").find(static_cast<char>(c)) != std::string_view::npos;
}

bool StringUtils::IsWholeWordDelimiter(char c, bool underscoreDelimits, bool dollarDelimits)
{
    return IsWholeWordDelimiterChar(c, underscoreDelimits, dollarDelimits);
}

bool StringUtils::IsWordBreak(char c)
{
    switch (static_cast<unsigned char>(c)) { // Windows-1252
    case 0x85:                               // horizontal ellipsis
    case 0x93:                               // curly double quotes
    case 0x94:
    case 0x96: // en dash
    case 0x97: // em dash
    case 0xAD: // soft hyphen
    case 0xB1: // plus-minus
    case 0xB7: // middle dot
    case 0xD7: // multiplication sign
    case 0xF7: // division sign
    case '{':
    case '}':
        return true;
    case '\'': // "don't" and "file_name" are one word
    case '_':
        return false;
    default:
        return IsSpaceChar(c) || IsPunctChar(c) || IsSlash(c) || IsLineBreak(c);
    }
}

bool StringUtils::IsLessThanNoCase(const CString& a, const CString& b)
{
    return CompareLowercase(a, b) < 0;
}

bool StringUtils::IsGreaterThanNoCase(const CString& a, const CString& b)
{
    return CompareLowercase(a, b) > 0;
}

bool StringUtils::IsLessThanCase(const CString& a, const CString& b)
{
    const int common = std::min(a.GetLength(), b.GetLength());
    for (int i = 0; i < common; ++i) {
        const int left = Folded(m_tableLowercase, a[i]);
        const int right = Folded(m_tableLowercase, b[i]);
        if (IsLowerChar(a[i]) && IsUpperChar(b[i])) {
            if (a[i] <= right) // kept: also true for two equal caseless characters
                return true;
            continue; // kept: undecided even though a[i] is the greater one
        }
        if (left != right)
            return left < right;
    }
    return a.GetLength() < b.GetLength();
}

bool StringUtils::IsGreaterThanCase(const CString& a, const CString& b)
{
    const int common = std::min(a.GetLength(), b.GetLength());
    for (int i = 0; i < common; ++i) {
        const int left = Folded(m_tableLowercase, a[i]);
        const int right = Folded(m_tableLowercase, b[i]);
        if (IsUpperChar(a[i]) && IsLowerChar(b[i])) {
            if (left >= b[i]) // kept, like its counterpart in IsLessThanCase
                return true;
            continue;
        }
        if (left != right)
            return left > right;
    }
    return a.GetLength() > b.GetLength();
}

bool StringUtils::IsYes(const CString& s)
{
    return s.FindOneOf("Yy1Tt") >= 0;
}

bool StringUtils::IsEffectivelyEmpty(const CString& s)
{
    int last = s.GetLength();
    while (last > 0 && IsSpaceChar(s[last - 1]))
        --last;
    return last == 0;
}

void StringUtils::Trim(CString& s)
{
    const int length = s.GetLength();
    int first = 0;
    int last = length;
    while (last > 0 && IsSpaceChar(s[last - 1]))
        --last;
    while (first < last && IsSpaceChar(s[first]))
        ++first;
    if (first > 0 || last < length)
        s = s.Mid(first, last - first);
}
