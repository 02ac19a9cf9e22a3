// FileUtils: paths and file names taken apart, cleaned and made, and the questions to the file system that go
// with it.
//
// Paths are narrow strings; both \ and / separate their parts, except where an operation says that it knows
// only one of the two. Nothing throws but std::bad_alloc: a failure gives an empty string or leaves an
// argument as it was. "Exists" means that the system's existence test finds a file or folder of that name; a
// name with a NUL inside never exists.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API FileUtils {
public:
    // ---- taking apart -----------------------------------------------------------------------------------
    // The part after the last separator; without its extension, cut before the last dot.
    //   C:\d\ -> ""    a.tar.gz -> a.tar.gz, a.tar    file -> file, file    .profile -> .profile, ""
    static CString ParseFileNameFromPath(const CString& path, bool withExtension = true);
    // The text after the last dot, unless a \ follows it. A / does not count here: dir.x/file gives x/file.
    static CString GetFileExt(const CString& path);
    // dir with its separator, name, and ext without its dot. A last part without any dot goes into ext, not
    // into name; a path without a separator has white space trimmed from name and ext. The outputs may be
    // `path` itself.
    //   C:\d\a.b.txt -> C:\d\, a.b, txt    C:\d\readme -> C:\d\, "", readme
    static void Split(const CString& path, CString& dir, CString& name, CString& ext);

    // ---- characters that file names must not have -------------------------------------------------------
    // \ / : * ? " < > | and, when strict, ' and the space.
    static CString GetBadFileNameChars(bool strict);
    // Overwrites every bad character; with NUL as replacement removes them. A blank name comes back as it is.
    static CString ReplaceBadFileChars(const CString& name, char replacement, bool strict);

    // ---- names that are free ----------------------------------------------------------------------------
    // dir, which must end in a separator, plus fileName, if nothing has that name; else the first that is
    // free of "base copy.ext", "base copy1.ext", "base copy2.ext", ... A name without extension keeps the
    // dot: "base copy.". One question to the file system for each name tried; the answer can be stale when
    // another program makes files.
    static CString GetUniqueFileName(const CString& dir, const CString& fileName);
    // Makes an empty file with a new name in an existing folder, whose path must end in a separator (blanks
    // after it are ignored), and returns its full path; `unique` is the number in its name. The caller owns
    // the file. On failure: "", unique is 0, and a marker line is logged. At most three characters of the
    // prefix are used.
    static CString GetTempFile(const CString& dir, const CString& prefix, unsigned int& unique);

    // ---- names as they are stored -----------------------------------------------------------------------
    // In place. Long: only a path with a drive letter, a ~ and fewer than 260 characters that exists. Short:
    // any path of fewer than 260 characters that exists; a system without short names leaves it as it is.
    static void ConvertToLongFileName(CString& path);
    static void ConvertToShortFileName(CString& path);
    // The path with every part in the letter case stored on disk, joined by \ (a separator in front is kept).
    // Parts are looked up ignoring case, an exact match first, each by itself: what lies below it decides
    // nothing. A path that does not exist in any letter case comes back as it is.
    static CString GetCaseSensitiveFilePath(const CString& path);

    // ---- what a program file says of itself -------------------------------------------------------------
    // A text of its version information in the first language there: "FileDescription", "ProductName", ...
    // Empty without one, so for every file on systems whose programs carry none.
    static CString GetVersionText(const CString& path, const CString& field);
};
