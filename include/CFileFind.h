// CFileFind: the files that match a pattern, one after the other.
//
//     CFileFind finder;
//     for (bool more = finder.FindFile("C:\\data\\*.txt"); more;) {
//         more = finder.FindNextFile(); // steps to the next one first, and says whether another follows
//         Use(finder.GetFilePath());
//     }
//
// Only the last part of a pattern may hold * and ?; *.* finds names without a dot too. A pattern of only such
// characters finds the folders . and .. too. The order is the file system's. Before the first FindNextFile
// the getters answer with empty text, 0 or false.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "FileTime.h"
#include "Kvt01Api.h"

#include <memory>

// Headers of the operating system may have made macros of these names; below they are the plain names.
#pragma push_macro("FindNextFile")
#pragma push_macro("GetFileTitle")
#undef FindNextFile
#undef GetFileTitle

class KVT01_API CFileFind {
public:
    CFileFind();
    CFileFind(CFileFind&&) noexcept;
    CFileFind& operator=(CFileFind&&) noexcept;
    ~CFileFind();

    bool FindFile(const char* pattern = "*.*"); // false when nothing matches or the folder cannot be read
    bool FindNextFile();
    void Close();

    CString GetFileName() const;      // the name with its extension
    CString GetFilePath() const;      // the pattern's folder and the name
    CString GetFileTitle() const;     // the name without its extension
    CString GetRoot() const;          // the pattern's folder, with its separator; may be empty
    uint64 GetLength() const;         // in bytes
    FILETIME GetCreationTime() const; // all zero before the first file
    FILETIME GetLastAccessTime() const;
    FILETIME GetLastWriteTime() const;
    bool GetCreationTime(FILETIME* time) const; // false, and nothing set, where it would be all zero
    bool GetLastAccessTime(FILETIME* time) const;
    bool GetLastWriteTime(FILETIME* time) const;
    bool IsDirectory() const; // a link to a folder is one
    bool IsLink() const;      // a symbolic link; the other answers are those of what it leads to
    bool IsDots() const;      // . or ..
    bool IsReadOnly() const;
    bool IsHidden() const;
    // The attributes that other platforms' files may lack: on POSIX systems every file has IsArchived, and
    // none of the others. Normal is what has no attribute at all.
    bool IsSystem() const;
    bool IsArchived() const;
    bool IsNormal() const;
    bool IsTemporary() const;
    bool IsCompressed() const;
    bool MatchesMask(DWORD attributes) const; // whether it has one of them, in the platform's numbers

#ifdef _WIN32 // what such macros make of a caller's FindNextFile and GetFileTitle: the same operations
    bool FindNextFileA()
    {
        return FindNextFile();
    }
    bool FindNextFileW()
    {
        return FindNextFile();
    }
    CString GetFileTitleA() const
    {
        return GetFileTitle();
    }
    CString GetFileTitleW() const
    {
        return GetFileTitle();
    }
#endif

private:
    struct Search;

    std::unique_ptr<Search> m_search;
};

#pragma pop_macro("GetFileTitle")
#pragma pop_macro("FindNextFile")
