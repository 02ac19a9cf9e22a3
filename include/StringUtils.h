// StringUtils: character classes, orderings, searching and wildcard matching of narrow text.
//
// Everything here is static and never fails: input out of range gets the neutral answer named with the
// operation. Characters taken from strings are signed: a byte of 128 or more is never a letter, digit or
// space, and counts as 0 where case is ignored by the tables.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"
#include "TextArray.h"

class KVT01_API StringUtils {
public:
    // Orders strings ignoring case by the runtime library's case-insensitive comparison under the current
    // locale (not by the tables): the ordering of the library's case-insensitive maps and sets.
    struct NoCase {
        bool operator()(const CString& a, const CString& b) const { return a.CompareNoCase(b) < 0; }
    };

    // ---- the tables -------------------------------------------------------------------------------------

    // One entry for each byte value, by the rules of the "C" locale: ASCII letters, digits and white space (9
    // to 13 and 32) are non-zero in the class tables; only ASCII letters change in the case tables. They hold
    // these values from the moment the library is mapped; no later change of the locale touches them. They
    // are for reading: the searches have the same values built in and do not follow an entry that was
    // changed.
    static int m_tableIsAlpha[256];
    static int m_tableIsDigit[256];
    static int m_tableIsSpace[256];
    static int m_tableLowercase[256];
    static int m_tableUppercase[256];
    // Writes those values again (a host that changed an entry gets them back). Not for use while others read.
    static void DoPreLoad();

    // ---- single characters ------------------------------------------------------------------------------

    // Values outside 0..255 are in no class and have the case form 0.
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

    // ---- whole strings ----------------------------------------------------------------------------------

    // By the lower-case table; a proper prefix sorts first. Bytes of 128 or more are all equal, and equal to
    // NUL.
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

    // ---- searching --------------------------------------------------------------------------------------

    // Positions are 0-based, -1 is "none"; a start below 0 is 0, one at or past the end finds nothing.
    // Strings are counted: a NUL is a character like any other. Everything here takes time linear in the
    // length of the text. Ignoring case goes by the lower-case table, to which all bytes of 128 or more and
    // NUL are the same character, unless said otherwise.

    // `Find` sets pos to the place found or to -1.
    static bool Find(const CString& s, char c, bool caseSensitive, int& pos, int start = -1);
    static bool Contains(const CString& s, char c, bool caseSensitive = true, int start = -1);

    // With case this is CString::Find: exact, and an empty text is found at the start position, also at the
    // end of s. Ignoring case an empty text is not found, and some occurrences are missed: the search goes
    // through s once, and after a difference it begins anew with the character behind the differing one.
    //   ignoring case: "aab" in "xaab" -> 1, "aab" in "aaab" -> none, "ab" in "aab" -> none
    static bool Find(const CString& s, const CString& sub, bool caseSensitive, int& pos, int start = -1);
    static bool Contains(const CString& s, const CString& sub, bool caseSensitive = true, int start = -1);

    // The same from the end, with case: where the last occurrence starts, or -1. After a difference the
    // search begins anew with the character before the differing one. -1 for an empty text.
    //   "ab" in "abxab" -> 3, "abb" in "abbb" -> none
    static int FindLast(const CString& s, const CString& sub);

    // Where the n-th occurrence starts, n from 1; -1 when there are fewer, for n below 1, an empty sub, and s
    // that is blank. Occurrences do not overlap; after a difference the search begins anew with the differing
    // character, so it too misses some.
    //   2nd "ab" in "abab" -> 2; 1st "ab" in "aab" -> 1; 1st "aab" in "aaab" -> -1
    static int FindOccurrenceIndex(const CString& s, const CString& sub, int n, bool caseSensitive = true);

    // How often sub stands in s without overlap, counted from the left and missing none; 0 for an empty sub
    // or a blank s. Ignoring case compares what CString::MakeLower makes of both, so it follows the locale.
    //   "aa" in "aaaaa" -> 2
    static int FindOccurrences(const CString& s, const CString& sub, bool caseSensitive = true);

    // Where the first and the last occurrence start; both -1 when there are not at least two, or sub is
    // empty. After a difference, but after an occurrence too, the search goes on behind the next character,
    // so of two occurrences side by side the second is missed.
    //   "ab" in "ab-ab" -> 0 and 3; in "ab" or "abab" -> -1 and -1
    static void FindFirstAndLast(const CString& s, const CString& sub, bool caseSensitive, int& first,
                                 int& last);

    // Where the n-th occurrence of the word, from start on, begins that has a delimiter or an end of s on
    // both sides; with case. -1 when there are fewer, for n below 1, a start below 0 (here it is not 0), an
    // empty word and a blank s. The flags say whether "_" and "$" delimit; other punctuation and white space
    // do.
    //   1st "var" in "my_var var" -> 7, and 3 when "_" delimits
    static int FindWholeWordMatch(const CString& s, const CString& word, int n = 1, int start = 0,
                                  bool underscoreDelimits = false, bool dollarDelimits = false);

    // The smallest of the places where the words are first found, or -1 when one of them is missing, or there
    // are no words, or s is empty. With case; an empty word is found at 0, but never as a whole word.
    static int FindAllWords(const TextArray& words, const CString& s, bool wholeWord = false,
                            bool underscoreDelimits = false, bool dollarDelimits = false);

    // Whether s holds a GUID: 32 hexadecimal digits of either case in groups of 8-4-4-4-12 with hyphens, the
    // neighbours of which are no ASCII letters or digits. Braces and the like may stand around it; digits
    // without hyphens are not taken for one.
    //   "{7A7B98BB-B07D-450C-BEB1-5ECF84735ACC}" and "id=7a7b98bb-b07d-450c-beb1-5ecf84735acc;" -> true
    //   "7A7B98BBB07D450CBEB15ECF84735ACC" and "x7A7B98BB-B07D-450C-BEB1-5ECF84735ACC" -> false
    static bool ContainsGUID(const CString& s);

    // Whether the end of the text lies inside a block: the last opening marker starts after the last closing
    // one, or there is no closing one. `neither` is the answer when the text has none of both. What
    // CString::MakeLower makes of all three is compared. An empty marker stands nowhere; two equal markers
    // never leave a block open.
    //   with "<b>" and "</b>": "a <b>c" -> true, "a <B>c</b> d" -> false, "c</b>" -> false
    static bool IsInTextBlock(const CString& text, const CString& open, const CString& close,
                              bool neither = false);

    // Where the markers of the n-th pair start, n from 1; false, and both -1, when there are fewer, for n
    // below 1 and an empty marker. With case. A pair is an opening marker and the first closing one behind
    // it; of several opening ones before that it is the last. The next pair begins behind the closing marker.
    //   "[" and "]" in "[a [b] c] [d]": 1st -> 3 and 5, 2nd -> 10 and 12
    static bool FindOccurrencePair(const CString& s, const CString& open, const CString& close, int n,
                                   int& first, int& second);

    // ---- matching ---------------------------------------------------------------------------------------

    // Whether the text begins, or ends, with the other. Nothing but an empty text does so with an empty one.
    // Ignoring case, ASCII letters match in both cases and all other characters only themselves (but a NUL in
    // the prefix or suffix matches bytes of 128 or more).
    static bool MatchFirstChars(const CString& text, const CString& prefix, bool caseSensitive = true);
    static bool MatchLastChars(const CString& text, const CString& suffix, bool caseSensitive = true);

    // Whether a name fits a file specification, in one of these forms; prefix and suffix match as above. In a
    // specification that has a "*" but does not begin with one, "?" and further "*" are ordinary characters.
    //   "" "*" "*?" "?*" "?*?" "*?*"   everything
    //   the name itself                ignoring case as the runtime library folds it
    //   "???"                          names of at most so many characters
    //   "prefix*" "*suffix"            what begins or ends so
    //   "prefix*suffix"                both; they may overlap: "aba" fits "ab*ba"
    //   "*middle*"                     what contains it, exact; ignoring case by CString::MakeLower
    //   "a?b" "*?b"                    see MatchSpecQuestionMark, for all of it or what follows the "*"
    //   "*a?b*"                        almost everything: the pieces around the place of the "?" are taken
    //                                  from the name, not from `spec`, and looked for in the name
    //   "*a*b"                         nothing
    static bool MatchSpec(const CString& text, const CString& spec, bool caseSensitive = true);

    // A specification with a "?" fits a text of its length or one character less that begins with what stands
    // before the "?"; only when nothing does, what stands behind it decides. Without "?" the texts must be
    // equal and not empty.
    //   "abcX" by "ab?Z" -> true, "xb" by "?b" -> true, "x" by "?" -> false
    static bool MatchSpecQuestionMark(const CString& text, const CString& spec, bool caseSensitive = true);

    // ---- parts of texts ---------------------------------------------------------------------------------

    // The common front of two texts, or of all that are not empty; as it is spelled in the first one given,
    // unless it is the whole of the second; GetCommonText spells it as the last of the items does, unless
    // that is longer than what was common before. Ignoring case by the upper-case table.
    static CString DetermineCommonChars(const CString& a, const CString& b, bool caseSensitive = true);
    static CString GetCommonText(const TextArray& items, bool caseSensitive = true);

    // At most count characters from start; empty for a start outside s or a count below 1.
    static CString CopySubString(const CString& s, int start, int count);
    // The characters from first to last, both included and moved into s; empty when first is above last.
    static CString GetTextFromMiddle(const CString& s, int first, int last);

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
