// MRUArrayByTime: texts ranked by the time spent on each, in a unit that the caller chooses. Texts of the
// same total stand in the order in which they reached it. Totals wrap around beyond 64 bits.
//
// Texts are equal when CString::Compare says so: with case, up to the first NUL. Where a text is held more
// than once, operations mean the one that comes first, from the largest total down. Adding costs the same
// however many different texts are held. Only Serialize throws. One thread at a time may use an object.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"
#include "TextArray.h"

#include <memory>

class CArchive;

class KVT01_API MRUArrayByTime {
public:
    MRUArrayByTime();
    MRUArrayByTime(const MRUArrayByTime& other);
    MRUArrayByTime& operator=(const MRUArrayByTime& other);
    ~MRUArrayByTime();

    void Add(const CString& text, uint64 duration); // adds to the total of the text, which is 0 for a new one
    // Files the text under that total, and does not look whether it is held already: then it is held twice,
    // as callers that merge lists rely on.
    void ApplyDuration(const CString& text, uint64 total);
    void Remove(const CString& text);
    void RemoveAllBut(const TextArray& keep);            // an empty `keep` removes all
    void Rename(const CString& from, const CString& to); // in its place; the first only

    bool HavePopular() const;
    // Appends texts from the largest total down until `count` of them are appended; all when it is below 0.
    void GetPopular(TextArray& out, int count = -1) const;

    // Stores all, from the largest total down. Loading replaces the texts once all is read, so that an
    // exception leaves them as they were; a record of an unknown version raises CArchiveException. It reads
    // what is stored and also the legacy container layout. The word where the current layout has its version,
    // 1, tells them apart. A legacy count of 1 has the same word (so have 1 more than a
    // multiple of 65536, which are not recognised): it is taken for legacy when the current layout would
    // claim 65536 totals or more that the data ahead are too short for (that is, always but for a total whose
    // lower 48 bits are 0, which is read as an empty table).
    void Serialize(CArchive& archive);

private:
    struct Texts;

    std::unique_ptr<Texts> m_texts;
};
