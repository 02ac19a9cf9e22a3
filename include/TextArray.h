// TextArray: the library's ordered list of strings, with its three sort orders (plain text, paths with
// folders first, file names with embedded numbers by value) and the equality tests that go with them.
//
// Indexes and counts are size_t, positions in a string int. An index at or past the count is out of range:
// readers answer with an empty string, 0 or false, changers do nothing. Nothing throws but std::length_error
// (more than 2^61 - 1 elements) and std::bad_alloc. One thread at a time may use an array, and the first sort
// in a process should not race with another (m_csDecimal).
//
// "Equal" ignoring case means CompareNoCase == 0, with case Compare == 0; both end at the first NUL.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"

#include <cstddef>
#include <vector>

class CArchive;
class CStringArray;
class CStringList;

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

    // ---- elements
    // ------------------------------------------------------------------------------------------------
    void Add(const CString& s) { m_strings.push_back(s); }
    void Add(CString&& s) { m_strings.push_back(std::move(s)); }
    void Add(const char* s) { m_strings.emplace_back(s); }
    void Add(char c) { m_strings.emplace_back(c); }
    void Add(const TextArray& list)
    {
        CopyFromVector(list.m_strings);
    }                                                      // appends all; the list may be this one
    void CopyFromVector(const std::vector<CString>& list); // appends all
    void Insert(std::size_t index, const CString& s);      // an index past the end appends
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
    std::vector<CString>::const_iterator begin() const { return m_strings.begin(); }
    std::vector<CString>::const_iterator end() const { return m_strings.end(); }
    friend bool operator==(const TextArray& a, const TextArray& b) { return a.m_strings == b.m_strings; }

    // ---- simple edits
    // ----------------------------------------------------------------------------------------------
    void Trim(std::size_t count); // keeps at most the first `count`
    void Reverse();
    void Swap(std::size_t i, std::size_t j);
    void RemoveFirst() { Remove(std::size_t{0}); }
    void RemoveLast();
    void Remove(std::size_t index);
    void Remove(int index) { Remove(static_cast<std::size_t>(index)); }
    void Remove(const CString& s); // the first equal element, with case
    void Remove(const char* s) { Remove(CString(s)); }
    void RemoveAll() { m_strings.clear(); }
    void MakeLower();
    void ReplaceInAll(const CString& from, const CString& to);
    // True when the first equal element was moved; false with fewer than two elements, without an equal one,
    // or when it already stands there.
    bool MoveToFirst(const CString& s, bool caseSensitive = true);
    bool MoveToLast(const CString& s, bool caseSensitive = true);
    void RemoveCharsFromIndex(std::size_t index, int position, int count);
    void AdjustEntries(const CString& text,
                       bool atFront); // every element becomes text + element, or element + text
    // Appends the decimal texts of from..to; grouped by the user's settings when `grouped`. Nothing when from
    // > to.
    void AddValuesRange(int from, int to, bool grouped);
    CString ConvertIntoOneLine(const CString& separator) const; // no separator after the last element
    void CopyToVector(std::vector<CString>& list) const;        // the copies replace what the target held
    void CopyToStringArray(CStringArray& list) const;
    void CopyFromStringArray(const CStringArray& list);
    void CopyToList(CStringList& list) const;
    void CopyFromList(const CStringList& list);
    void Dump() const; // every element to the debug trace (standard error, in builds for debugging)
    void Serialize(CArchive& archive, bool decrypt = false);

    // ---- searching
    // ---------------------------------------------------------------------------------------------------
    std::size_t Find(const CString& s, bool caseSensitive, bool& found) const; // the count when there is none
    std::size_t FindCount(const CString& s, bool caseSensitive = true) const;
    bool Have(const CString& s, bool caseSensitive = true) const;
    // The first element from `start` on that begins with s; an empty s matches only an empty element.
    std::size_t FindWithin(const CString& s, bool& found, std::size_t start = 0,
                           bool caseSensitive = true) const;
    void AddNoDuplicates(const CString& s, bool caseSensitive = true);

    // ---- ordering and equality
    // -----------------------------------------------------------------------------------------
    static bool SortCompareItems(const CString& a, const CString& b, bool ascending, bool caseSensitive,
                                 Content content);
    static int CompareDirs(const CString& a, const CString& b, bool caseSensitive = true);
    static int CompareFiles(const CString& a, const CString& b, bool caseSensitive = true);
    static int DoCompareFiles(const CString& a, const CString& b, bool caseSensitive = true);
    static bool AreDirsEqual(const CString& a, const CString& b, bool caseSensitive = true);
    static bool AreFilesEqual(const CString& a, const CString& b, bool caseSensitive = true);
    static bool ArePathsEqual(const CString& a, const CString& b, bool caseSensitive, Content content);
    void Sort(bool ascending = true, bool caseSensitive = true, Content content = ContentText);
    std::size_t AddSorted(const CString& s, bool ascending = true, bool caseSensitive = true,
                          Content content = ContentText);

    // ---- removing: true when anything was removed
    // ------------------------------------------------------------------------
    bool RemoveDuplicates(bool caseSensitive = true, Content content = ContentText);
    bool RemoveDuplicatesKeepOrder(bool caseSensitive = true, Content content = ContentText);
    bool RemoveNonDuplicates(bool caseSensitive = true, Content content = ContentText);
    bool RemoveBlanks();
    bool RemoveMatches(const TextArray& list, bool caseSensitive = true);
    bool RemoveNonMatches(const TextArray& list, bool caseSensitive = true);
    bool RemoveAllStartWith(const TextArray& prefixes, bool caseSensitive = true);
    void GetDuplicates(TextArray& result, bool caseSensitive = true);
    void RemoveFilesWithExt(const TextArray& extensions);
    void RemoveFilesNameEndsWith(const CString& ending, bool caseSensitive = true);

private:
    static const CString& NoString();
    std::vector<CString>::iterator Iterator(std::size_t index);

    std::vector<CString> m_strings;
};
