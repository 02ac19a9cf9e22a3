// MRUApplications: the applications a user has chosen, the most recent first, each a display name with its
// program path. Paths and names are compared ignoring case, as CString::CompareNoCase does. Only Serialize
// throws, and what stores a text for want of memory. One thread at a time may use an object.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"
#include "TextArray.h"

#include <vector>

class CArchive;

class KVT01_API MRUApplications {
public:
    // Puts a new entry at the front, if the path is that of a file that is there (a folder is none). A path
    // that is held already changes nothing, not even its place. The display name is the file description in
    // the program's version information or, without one, the file name with its extension: what follows the
    // last dot may be part of a version.
    void AddEntry(const CString& path);
    // Moves the first entry of that path, or else the first of that display name, to the front; whether there
    // was one.
    bool MoveToTop(const CString& pathOrName);
    CString GetAppPath(uint64 index) const; // empty at the end and beyond
    // Appends display names until `out` holds as many texts as there are entries, but no more than 20, in
    // all: what it held before counts. Kept: at least one name is appended, however many it held.
    void GetMRUAppNames(TextArray& out) const;
    void Clear() { m_entries.clear(); }

    // Stored: the 16-bit word 4, the number of entries in 8 bytes, and name and path of each. In records of
    // version 1, whose count has 4 bytes, of version 2 and 3, these are encrypted-string records. Any other
    // version raises CArchiveException (badSchema). An exception leaves the list as it was.
    //   "A", "/a"   04 00  01 00 00 00 00 00 00 00  01 41  02 2F 61
    void Serialize(CArchive& archive);

private:
    struct Entry {
        CString name;
        CString path;
    };

    std::vector<Entry> m_entries;
};
