// FileUtils: paths and file names taken apart, cleaned and made, the questions to the file system that go
// with it, and text files read and written as lists of lines.
//
// Paths are narrow strings; both \ and / separate their parts, except where an operation says that it knows
// only one of the two. Nothing throws but std::bad_alloc: a failure gives an empty string or leaves an
// argument as it was. "Exists" means that the system's existence test finds a file or folder of that name; a
// name with a NUL inside never exists.
#pragma once

#include "BasicTypes.h"
#include "CString.h"
#include "Kvt01Api.h"
#include "TextArray.h"

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
    static CString GetBadFileNameChars(bool strict = false);
    // Overwrites every bad character; with NUL as replacement removes them. A blank name comes back as it is.
    static CString ReplaceBadFileChars(const CString& name, char replacement, bool strict = false);

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
    // ---- text files as lists of lines -------------------------------------------------------------------
    // Encodings, each with the byte-order mark that a file begins with:
    //   1 ANSI, the process code page: none     4 UTF-8:  EF BB BF
    //   2 UTF-16 little-endian:        FF FE    5 UTF-7:  2B 2F 76                 told by IsFileUnicode,
    //   3 UTF-16 big-endian:           FE FF    6 UTF-32 big-endian: 00 00 FE FF   else as ANSI
    // Lines are in the process code page, without their ends; NULs in them are characters like others. Only
    // files are read and written: not folders, pipes and devices, where one could wait for ever. What fails
    // leaves one marker line in the log, except an error in the middle of reading. Nothing throws but
    // std::bad_alloc.

    // Whether the file begins with a mark, and whose: 1 and false without one (so always for an empty file),
    // 0 and false when it could not be opened for itself alone, or read. UTF-32 little-endian begins with FF
    // FE and is told as 2.
    static bool IsFileUnicode(const CString& path, int& encoding);

    // The lines of the file, instead of what `lines` held. An LF ends a line, and a CR in front of it goes
    // too; other CRs stay; what follows the last LF is a line if there is anything. `encoding` (may be null)
    // is 1 unless detection finds something else. On failure there are no lines, or those before a part that
    // cannot be read; a line of 2 GB and more cannot.
    //
    // With detection, a file with the mark 2, 3 or 4 is read in that encoding, without the mark; any other as
    // ANSI. Characters that the code page lacks become similar ones or ?. UTF-8 is read leniently: see
    // docs/text-files.md. A CR stays in its line when its LF is the byte 4096, 8192, ... behind the mark;
    // without detection it goes there too.
    //
    // Takes the memory of the lines, and a buffer; a line that is longer than the buffer, or holds more than
    // ASCII, takes up to three times its length in the file besides, as long as the file is read.
    static void ReadFileContent(const CString& path, TextArray& lines, bool detectEncoding = true,
                                int* encoding = nullptr);

    // Makes the file, or replaces what it held, with CR LF behind every line. The folder is made when it is
    // missing, and its read-only attribute is cleared; in a folder that is not writable then
    // (DirUtils::EnsureDirIsWritable) no file is written, not even one that is there. True when every line
    // was written and the file closed: then the system has it, which may still keep it in memory. On failure
    // the file may hold a part of the lines; whoever needs the old content writes beside it and renames.
    //
    // With useEncoding the low byte of `encoding` counts, and 0 is 1; what is not 1 to 4 fails before
    // anything is done to the file. The mark comes before the first line, so a file without lines is empty.
    // An LF inside a line is written as it is. UTF-16 is converted from the code page; UTF-8 takes every byte
    // as the Latin-1 character of that number, so that 80 to 9F (the euro sign, curly quotes) become control
    // characters. Without useEncoding the bytes are written as they are, but an LF inside a line as CR LF.
    static bool WriteFileContent(const CString& path, const TextArray& lines, bool useEncoding = false,
                                 int encoding = 0);

    // Whether ReadFileContent gives just these lines, byte for byte. A file that cannot be read has none.
    static bool IsFileContentIdentical(const CString& path, const TextArray& lines,
                                       bool detectEncoding = true);
};
