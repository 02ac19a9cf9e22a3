// TextArray: the library's ordered list of strings, with its three sort orders (plain text, paths with
// folders first, file names with embedded numbers by value) and the equality tests that go with them.
//
// Indexes and counts are size_t, positions in a string int. An index at or past the count is out of range:
// readers answer with an empty string, 0 or false, changers do nothing. Strings and lists given to an
// operation may be elements of the array, or the array itself. Nothing throws but std::length_error and
// std::bad_alloc. One thread at a time may use an array, and the first sort in a process should not race with
// another (m_csDecimal).
//
// "Equal" ignoring case means CompareNoCase == 0, with case Compare == 0; both end at the first NUL.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "CStringArray.h"
#include "CStringList.h"
#include "Kvt01Api.h"

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <vector>

class CArchive;

class KVT01_API TextArray {
public:
    // What the strings hold. Any other value is accepted: then nothing comes before anything, and nothing is
    // equal.
    enum Content : int {
        ContentText = 0,  // plain text
        ContentPaths = 1, // full paths: by folder, then by file name
        ContentFiles = 2  // paths of which only the file name counts
    };

    // The decimal separator for numbers inside file names; only its first character counts. Empty until the
    // first sort or sorted insertion, which takes it from the user's locale; once it is not empty it is never
    // refreshed.
    static CString& m_csDecimal;

    using value_type = CString;
    using const_iterator = std::vector<CString>::const_iterator;

    TextArray() = default;
    TextArray(std::initializer_list<CString> texts) : m_strings(texts) {}

    // ---- elements ---------------------------------------------------------------------------------------
    void Add(const CString& s) { m_strings.push_back(s); }
    void Add(CString&& s) { m_strings.push_back(std::move(s)); }
    void Add(const char* s) { m_strings.emplace_back(s); }
    void Add(const char* s, int length) { m_strings.emplace_back(s, length); } // counted: NULs and all
    void Add(char c) { m_strings.emplace_back(c); }
    void Add(const TextArray& list) { CopyFromVector(list.m_strings); } // appends all
    void CopyFromVector(const std::vector<CString>& list);              // appends all
    void Insert(std::size_t index, const CString& s);                   // an index past the end appends
    void Replace(std::size_t index, const CString& s);
    void Reserve(std::size_t count) { m_strings.reserve(count); }
    std::size_t GetCount() const { return m_strings.size(); }
    bool IsEmpty() const { return m_strings.empty(); }
    bool HaveMultiple() const { return m_strings.size() > 1; }
    CString GetFirst() const { return GetCopyAt(0); }
    CString GetLast() const { return IsEmpty() ? CString() : m_strings.back(); }
    CString GetCopyAt(std::size_t index) const { return index < GetCount() ? m_strings[index] : CString(); }
    bool IsEmptyAt(std::size_t index) const { return index >= GetCount() || m_strings[index].IsEmpty(); }
    std::size_t GetLengthAt(std::size_t index) const
    {
        return index < GetCount() ? static_cast<std::size_t>(m_strings[index].GetLength()) : 0;
    }
    char GetCharAt(std::size_t index, int position) const // a position outside the element gives 0
    {
        return index < GetCount() ? m_strings[index].GetAt(position) : '\0';
    }
    bool IsLast(std::size_t index) const { return IsEmpty() || index == GetCount() - 1; }
    // The elements in place, for reading; the reference must not outlive a change of the array.
    const CString& operator[](std::size_t index) const
    {
        return index < GetCount() ? m_strings[index] : NoString();
    }
    const_iterator begin() const { return m_strings.begin(); }
    const_iterator end() const { return m_strings.end(); }
    friend bool operator==(const TextArray& a, const TextArray& b) { return a.m_strings == b.m_strings; }

    // ---- simple edits -----------------------------------------------------------------------------------
    void Trim(std::size_t count); // keeps at most the first `count`
    void Reverse();
    void Swap(std::size_t i, std::size_t j);
    void RemoveFirst() { Remove(std::size_t{0}); }
    void RemoveLast();
    void Remove(std::size_t index);
    template <std::integral Index>
    void Remove(Index index)
    {
        Remove(static_cast<std::size_t>(index));
    }
    void Remove(const CString& s); // the first equal element, with case
    void Remove(const char* s) { Remove(CString(s)); }
    void RemoveAll() { m_strings.clear(); }
    void MakeLower();
    void ReplaceInAll(const CString& from, const CString& to);
    // True when the first equal element was moved; false with fewer than two elements, without an equal one,
    // or when it already stands there.
    bool MoveToFirst(const CString& s, bool caseSensitive = true);
    bool MoveToLast(const CString& s, bool caseSensitive = true);
    // As many of `count` characters as there are from `position` on. Nothing for a position outside the
    // element or a count of 0.
    void RemoveCharsFromIndex(std::size_t index, std::size_t position, std::size_t count);
    // Every element becomes text + element at the front, else element + text.
    void AdjustEntries(const CString& text, bool atFront);
    // Appends the decimal texts of from..to, grouped by the user's settings when `grouped`. Nothing when
    // `from` is above `to`.
    void AddValuesRange(int from, int to, bool grouped = false);
    CString ConvertIntoOneLine(const CString& separator) const; // none after the last element
    // Copying to another list replaces what that held; copying from one appends, as CopyFromVector does.
    void CopyToVector(std::vector<CString>& list) const;
    void CopyToStringArray(CStringArray& list) const;
    void CopyFromStringArray(const CStringArray& list);
    void CopyToList(CStringList& list) const;
    void CopyFromList(const CStringList& list);
    void Dump() const; // a line "[index] text" for each element, to standard error
    void Serialize(CArchive& archive, bool decrypt = false);

    // ---- searching: linear, with the equality told above ------------------------------------------------
    std::size_t Find(const CString& s, bool caseSensitive, bool& found) const; // the count when there is none
    std::size_t FindCount(const CString& s, bool caseSensitive = true) const;
    bool Have(const CString& s, bool caseSensitive = true) const;
    // The first element from `start` on that begins with s (StringUtils::MatchFirstChars), or the count; an
    // empty s matches only an empty element.
    std::size_t FindWithin(const CString& s, bool& found, std::size_t start = 0,
                           bool caseSensitive = true) const;
    void AddNoDuplicates(const CString& s, bool caseSensitive = true);

    // ---- ordering ---------------------------------------------------------------------------------------
    // The results of the three-way comparisons are below, equal to or above 0.
    //
    // CompareDirs takes the folder of each path, trims white space and one separator from its end, and
    // compares by the locale's collation, or by CompareNoCase.
    //
    // CompareFiles is the natural order of the names behind the last separator. Base names are walked at one
    // index; where both have a digit, the numbers there (digits and decimal separators, as read by
    // NumberTextConv::GetDoubleFromString) are compared by value, and the walk goes on behind the shorter one
    // when they differ by less than 0.001. Other characters are compared as signed values with case, so a
    // byte of 128 or more comes before all others; without case by the lower-case table, such a byte as 0.
    // Then the shorter base name comes first, then the extensions decide as text. While m_csDecimal is empty,
    // numbers are digits only; DoCompareFiles fills it first.
    //   file2.txt < file10.txt    v1.5.txt < v1.50.txt < v1.6.txt    a.txt < a.zip    01a < 1a    1- < 01-
    // Because of the tolerance this is no strict ordering where numbers have three decimals and more.
    static int CompareDirs(const CString& a, const CString& b, bool caseSensitive = true);
    static int CompareFiles(const CString& a, const CString& b, bool caseSensitive = true);
    static int DoCompareFiles(const CString& a, const CString& b, bool caseSensitive = true);
    // Whether a must come before b. Text: by Compare or CompareNoCase. Paths: by CompareDirs, and within a
    // folder by CompareFiles. Files: by CompareFiles.
    static bool SortCompareItems(const CString& a, const CString& b, bool ascending = true,
                                 bool caseSensitive = true, Content content = ContentText);
    // Equal elements come in no particular order. Each string is read once or a few times, so that the time
    // hardly depends on what the comparison costs; an array in order, or in the opposite one, is only read.
    // Names with numbers of three decimals or more, or of more than 127 digits, are compared by the rule
    // itself where all else is equal, at its cost. Where SortCompareItems is no strict ordering the result is
    // some order of the same elements.
    void Sort(bool ascending = true, bool caseSensitive = true, Content content = ContentText);
    // Where s was put. Ascending: at the end when the last element comes before s. Descending: at the front
    // when the first element is greater than s, which puts s in front of it; lists in that order exist.
    // Otherwise the whole array is sorted, and the answer is the first element equal to s.
    std::size_t AddSorted(const CString& s, bool ascending = true, bool caseSensitive = true,
                          Content content = ContentText);

    // ---- equality ---------------------------------------------------------------------------------------
    // Folders are compared as by CompareDirs, but byte by byte with case; files by base name and extension,
    // each as text, so that "x." equals "x". ArePathsEqual asks both for paths and the second for files. Text
    // is never equal there: who has text compares it himself.
    static bool AreDirsEqual(const CString& a, const CString& b, bool caseSensitive = true);
    static bool AreFilesEqual(const CString& a, const CString& b, bool caseSensitive = true);
    static bool ArePathsEqual(const CString& a, const CString& b, bool caseSensitive = true,
                              Content content = ContentPaths);

    // ---- removing: true when anything was removed; the others keep their order --------------------------
    // Elements are equal as text for ContentText, else by ArePathsEqual. All of these take time proportional
    // to the number of elements, with a second list to the sum of both.
    bool RemoveDuplicates(bool caseSensitive = true, Content content = ContentText); // of the one just before
    bool RemoveDuplicatesKeepOrder(bool caseSensitive = true, Content content = ContentText); // of any before
    // Keeps all of those that occur more than once; with an unknown content nothing does.
    bool RemoveNonDuplicates(bool caseSensitive = true, Content content = ContentText);
    bool RemoveBlanks(); // empty, or nothing but white space
    // Each entry of the list removes the first element equal to it: "a" once removes one of two.
    bool RemoveMatches(const TextArray& list, bool caseSensitive = true);
    bool RemoveNonMatches(const TextArray& list, bool caseSensitive = true); // an empty list leaves nothing
    // What begins with one of the prefixes, as in FindWithin.
    bool RemoveAllStartWith(const TextArray& prefixes, bool caseSensitive = true);
    // Sorts the array as text (unless it has fewer than two elements), and appends to the result each value
    // that it holds more than once.
    void GetDuplicates(TextArray& result, bool caseSensitive = true);
    // By the text behind the last dot, ignoring case; empty without a dot, or when a backslash follows it (a
    // slash is not looked for: "d.x/e" has the extension "x/e"). Extensions are given without the dot.
    void RemoveFilesWithExt(const TextArray& extensions);
    // By the file name without extension and StringUtils::MatchLastChars; an empty ending matches only an
    // empty name.
    void RemoveFilesNameEndsWith(const CString& ending, bool caseSensitive = true);

private:
    static const CString& NoString();
    std::vector<CString>::iterator Iterator(std::size_t index);

    std::vector<CString> m_strings;
};
