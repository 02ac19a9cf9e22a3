// StringUtils: character classes, orderings, searching and wildcard matching of narrow text.
//
// Everything here is static, allocates nothing it does not return, and never fails: input out of range gets
// the neutral answer named with the operation. Characters taken from strings are signed: a byte of 128 or
// more is never a letter, digit or space, and counts as 0 where case is ignored by the tables.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class TextArray;

class KVT01_API StringUtils {
public:
    // Orders strings ignoring case by the runtime library's case-insensitive comparison under the current
    // locale (not by the tables): the ordering of the library's case-insensitive maps and sets.
    struct NoCase {
        bool operator()(const CString& a, const CString& b) const { return a.CompareNoCase(b) < 0; }
    };

    // ---- the tables
    // -------------------------------------------------------------------------------------------- One entry
    // for each byte value, by the rules of the "C" locale: ASCII letters, digits and white space (9 to 13 and
    // 32) are non-zero in the class tables; only ASCII letters change in the case tables. They hold these
    // values from the moment the library is mapped; no later change of the locale touches them.
    static int m_tableIsAlpha[256];
    static int m_tableIsDigit[256];
    static int m_tableIsSpace[256];
    static int m_tableLowercase[256];
    static int m_tableUppercase[256];
    // Writes those values again (a host that changed an entry gets them back). Not for use while others read.
    static void DoPreLoad();

    // ---- single characters: values outside 0..255 are in no class and have the case form 0
    // ---------------------
    static bool IsAlpha(int c) { return IsByte(c) && m_tableIsAlpha[c] != 0; }
    static bool IsDigit(int c) { return IsByte(c) && m_tableIsDigit[c] != 0; }
    static bool IsSpace(int c) { return IsByte(c) && m_tableIsSpace[c] != 0; }
    // A character without case is both lower and upper: the case-sensitive orderings rely on it.
    static bool IsLower(int c) { return IsByte(c) && m_tableLowercase[c] == c; }
    static bool IsUpper(int c) { return IsByte(c) && m_tableUppercase[c] == c; }
    static int ToLower(int c) { return IsByte(c) ? m_tableLowercase[c] : 0; }
    static int ToUpper(int c) { return IsByte(c) ? m_tableUppercase[c] : 0; }
    static bool IsPunct(int c);        // the runtime library's ispunct at the time of the call
    static bool IsRomanNumeral(int c); // C D I L M V X, upper case only
    static bool IsSlash(char c) { return c == '\\' || c == '/'; }
    static bool IsSingleQuote(char c) { return c == '\''; }
    static bool IsDoubleQuote(char c) { return c == '"'; }
    static bool IsLineBreak(char c) { return c == '\r' || c == '\n'; }

    // ---- whole strings
    // ----------------------------------------------------------------------------------------- By the
    // lower-case table; a proper prefix sorts first. Bytes of 128 or more are all equal, and equal to NUL.
    static bool IsLessThanNoCase(const CString& a, const CString& b);
    static bool IsGreaterThanNoCase(const CString& a, const CString& b);
    // Letters without regard to case first, lower case before upper. Neither a strict ordering nor mirror
    // images of each other: two equal caseless characters decide at once ("1a" and "1b" are each less than
    // the other), and an undecided special step goes on to the next character ("bx" is less than "Ay"). Files
    // and lists written in this order exist; use the pair without case, or NoCase, where a strict ordering is
    // needed.
    static bool IsLessThanCase(const CString& a, const CString& b);
    static bool IsGreaterThanCase(const CString& a, const CString& b);
    static bool IsYes(const CString& s); // holds one of Y y 1 T t anywhere, so 'not today' does too
    static bool IsEffectivelyEmpty(const CString& s); // empty or nothing but white space
    static void Trim(CString& s);                     // white space by the table, at both ends

    // ---- searching
    // -----------------------------------------------------------------------------------------------
    // Positions are 0-based, -1 is "none"; a start of -1 is 0. Ignoring case goes by the tables. `Find` sets
    // pos to the place found or to -1.
    static bool Find(const CString& s, char c, bool caseSensitive, int& pos, int start = -1);
    static bool Contains(const CString& s, char c, bool caseSensitive = true, int start = -1);
    // Ignoring case, the scan never steps back after a partial match, so some occurrences are missed: "aab"
    // is not found in "aaab". With case the search is exact.
    static bool Find(const CString& s, const CString& sub, bool caseSensitive, int& pos, int start = -1);
    static bool Contains(const CString& s, const CString& sub, bool caseSensitive = true, int start = -1);
    static int FindLast(const CString& s, const CString& sub);
    static int FindOccurrenceIndex(const CString& s, const CString& sub, int n, bool caseSensitive = true);
    static int FindOccurrences(const CString& s, const CString& sub, bool caseSensitive = true);
    static void FindFirstAndLast(const CString& s, const CString& sub, bool caseSensitive, int& first,
                                 int& last);
    static int FindWholeWordMatch(const CString& s, const CString& word, int n, int start,
                                  bool underscoreDelimits, bool dollarDelimits);
    static int FindAllWords(const TextArray& words, const CString& s, bool wholeWord, bool underscoreDelimits,
                            bool dollarDelimits);
    static bool MatchFirstChars(const CString& text, const CString& prefix, bool caseSensitive = true);
    static bool MatchLastChars(const CString& text, const CString& suffix, bool caseSensitive = true);
    static bool MatchSpec(const CString& text, const CString& spec, bool caseSensitive = true);
    static bool MatchSpecQuestionMark(const CString& text, const CString& spec, bool caseSensitive = true);
    static CString DetermineCommonChars(const CString& a, const CString& b, bool caseSensitive = true);
    static CString GetCommonText(const TextArray& items, bool caseSensitive = true);
    static CString CopySubString(const CString& s, int start, int count);
    static CString GetTextFromMiddle(const CString& s, int first, int last);
    static bool ContainsGUID(const CString& s);
    static bool IsInTextBlock(const CString& text, const CString& open, const CString& close, bool neither);
    static bool FindOccurrencePair(const CString& s, const CString& open, const CString& close, int n,
                                   int& first, int& second);

protected:
    // Equal ignoring case; every value outside 0..255 counts as 0, so any two of them are equal.
    static bool CompareNoCase(int a, int b) { return ToLower(a) == ToLower(b); }
    // Whether c may stand beside a whole word: white space and punctuation, with a say over "_" and "$".
    static bool IsWholeWordDelimiter(char c, bool underscoreDelimits, bool dollarDelimits);
    // Whether c separates words for counting and splitting; some characters of Windows-1252 do, ' and _ do
    // not.
    static bool IsWordBreak(char c);

private:
    static bool IsByte(int c) { return static_cast<unsigned int>(c) <= 255; }
};

using NoCase = StringUtils::NoCase;
