// DirUtils: directory paths taken apart, compared and put in order.
//
// Both \ and / separate the parts of a path; directory paths that are produced here end in \. Nothing throws
// but std::bad_alloc: a failure gives an empty string or leaves an argument as it was.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"
#include "TextArray.h"

// Headers of the operating system may have made a macro of this name; below it is the plain name.
#pragma push_macro("CreateDirectory")
#undef CreateDirectory

class KVT01_API DirUtils {
public:
    // ---- taking apart -----------------------------------------------------------------------------------
    // Everything up to and including the last separator; empty without one.
    static CString ParsePathFromFile(const CString& path);
    // The same for a directory, whose own last character is not looked at: C:\a\b\ and C:\a\b both give
    // C:\a\.
    static CString ParseParentDir(const CString& dirPath);
    // The part before the last separator: C:\a\b\ and C:\a\b\f.txt give b, abc\ gives abc; empty without a
    // separator.
    static CString ParseLastDir(const CString& path);
    // The parts of a path after one separator at each end is dropped; always true. As long as a \ is left the
    // text is cut at \ only, so a\b/c gives a, b/c and a/b/c gives a, b, c. Blank paths and a single
    // separator give none.
    static bool BreakUpDirs(const CString& path, TextArray& parts);

    // ---- separators at the end: white space at both ends goes first, an empty path stays empty ----------
    static void EnsureTrailingBackslash(CString& path);    // a final / is replaced
    static void EnsureTrailingForwardSlash(CString& path); // a final \ is replaced
    static void RemoveTrailingSlash(CString& path);        // one of them, not more

    // ---- comparing --------------------------------------------------------------------------------------
    // The leading parts that are equal ignoring case, as written in a, each followed by \; empty without any.
    static CString FindCommonParentDir(const CString& a, const CString& b);
    // Cuts base off the front of every path that begins with it, ignoring case; a path equal to base becomes
    // empty. Whether base ends in a separator decides whether the results begin with one.
    static void MakePathsRelative(const CString& base, TextArray& paths);
    // Looks through the entries 0, 2, 4, ... only: the list holds pairs, the directory first. The first entry
    // that is the same ignoring case, begins with dir, or is the beginning of dir, sets its flag and is
    // returned; without one the number of entries. Characters are compared, not parts: C:\data2 begins with
    // C:\data.
    static uint64 IsInDirList(const CString& dir, const TextArray& list, bool& same, bool& entryInsideDir,
                              bool& dirInsideEntry);

    // ---- the file system --------------------------------------------------------------------------------
    // subDirName, if nothing in parentDir has that name; else the first free of "name1\", "name2\", ... (the
    // name alone, with its \). Empty when parentDir does not exist or does not end in \ (a / will not do), or
    // the name is blank.
    static CString GetUniqueSubDir(const CString& parentDir, const CString& subDirName);
    // As FileUtils::GetCaseSensitiveFilePath, for a directory; the result ends in \. A first part of one or
    // two characters (a drive) is put in upper case where that names the same place; a part that exists but
    // cannot be listed stays as passed.
    static CString GetCaseSensitiveDirPath(const CString& dirPath);
    static void ConvertToLongPathName(CString& path); // FileUtils::ConvertToLongFileName
    // Makes the folder and those on the way to it; true also when it is there already. On failure, folders
    // that were made on the way stay.
    static bool CreateDirectory(const CString& dirPath);
#ifdef _WIN32 // what such a macro makes of a caller's CreateDirectory: the same operation
    static bool CreateDirectoryA(const CString& dirPath)
    {
        return CreateDirectory(dirPath);
    }
    static bool CreateDirectoryW(const CString& dirPath)
    {
        return CreateDirectory(dirPath);
    }
#endif
    // Clears the folder's read-only attribute (a folder is read-only when its owner may not write it, whoever
    // asks, so also for a superuser), and says whether files can be made in it then: false for what is no
    // folder, for another's folder without the right to write there, and on a file system that is mounted
    // read-only.
    static bool EnsureDirIsWritable(const CString& dirPath);
};

#pragma pop_macro("CreateDirectory")
