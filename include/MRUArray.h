// MRUArray: two views of the texts a user has chosen. The recent list has the most recent first; the popular
// table counts how often each text was added and ranks by that count. Limits, 14 and 7 at first, govern how
// many texts are reported and stored, never how many are kept; a limit of 0 switches its list off.
//
// Texts are equal when CString::Compare says so: with case, up to the first NUL. Adding costs the same
// however many different texts are held. Only Serialize throws. One thread at a time may use an object.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"
#include "TextArray.h"

#include <memory>

class CArchive;

class KVT01_API MRUArray {
public:
    MRUArray();
    MRUArray(const MRUArray& other); // limits and lists
    MRUArray& operator=(const MRUArray& other);
    ~MRUArray();

    void SetRestrictions(uint64 maxRecent, uint64 maxPopular); // trims nothing

    // ---- changing ---------------------------------------------------------------------------------------
    void Add(const CString& text); // to both lists
    void AddToRecent(const CString& text);
    // Counts one more use: the text goes to the end of those with the next count. At INT_MAX it stays there.
    void AddToPopular(const CString& text);
    void Remove(const CString& text); // from each list that is not switched off
    // Replaces every occurrence in every text; nothing unless both are non-empty. Texts that become equal
    // stay apart: each later operation meets the one that comes first.
    void ReplaceInAll(const CString& from, const CString& to);
    void Clear();

    // ---- the recent list --------------------------------------------------------------------------------
    bool HaveRecent() const;
    bool HaveRecent(const CString& text) const;
    uint64 GetRecentCount() const;                   // no more than the limit
    CString GetRecentAt(uint64 index) const;         // regardless of the limit; empty at the end and beyond
    CString GetRecent(const CString& current) const; // the first that differs from `current` (the first of
                                                     // all when `current` is empty), or empty
    // Appends the list, or with `limited` no more than the limit; with `sorted`, all that `out` then holds is
    // sorted by the last three arguments (TextArray::Sort).
    void GetRecent(TextArray& out, bool limited = true, bool sorted = false, bool ascending = true,
                   bool caseSensitive = true, TextArray::Content content = TextArray::ContentText) const;

    // ---- the popular table ------------------------------------------------------------------------------
    bool HavePopular() const;
    // Appends the texts from the highest count down; texts of one count in the order in which they reached
    // it. With `limited` no more than the limit and, deliberately, no more than there are different counts:
    // of ten texts that were all added once, hosts expect a single one.
    void GetPopular(TextArray& out, bool limited = true) const;

    // Stores what the limits let through. Loading replaces both lists (the limits stay) once all is read, so
    // that an exception leaves them as they were; a record of an unknown version raises CArchiveException.
    // Texts that stand twice, as ReplaceInAll can leave them, come back so: storing them again gives the same
    // bytes. Only counts without a text are dropped.
    void Serialize(CArchive& archive);

private:
    struct Lists;

    uint64 m_maxRecent = 14;
    uint64 m_maxPopular = 7;
    std::unique_ptr<Lists> m_lists;
};
