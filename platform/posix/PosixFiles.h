// Files and their names, under the platform's names. Failures are FALSE, 0 or an invalid handle, with the
// reason in GetLastError; nothing throws.
//
// `\` and `/` both separate; a POSIX file whose name holds a backslash cannot be reached. Every other byte of
// a name is passed through: * ? " < > |, a dot or blank at the end and the names of devices are like any
// others. A path may be as long as the system takes it (4096 bytes). A null or empty path is error 3, a
// missing last part 2, a missing folder on the way to it 3, a separator after the name of a file 123. A file
// is read-only when its owner may not write it, whoever asks.
#pragma once

#include "FileTime.h"
#include "platform/posix/PosixPlatform.h"

// ---- open files -----------------------------------------------------------------------------------------
union LARGE_INTEGER {
    int64 QuadPart;
};

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD FILE_SHARE_DELETE = 4;
inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD TRUNCATE_EXISTING = 5;
inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2; // the name begins with a dot
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x4; // no file here has this one, TEMPORARY and COMPRESSED
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20; // all but folders
inline constexpr DWORD FILE_ATTRIBUTE_DEVICE =
    0x40; // what is neither file nor folder: devices, pipes, sockets
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_ATTRIBUTE_TEMPORARY = 0x100;
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400; // a link; the other attributes are its target's
inline constexpr DWORD FILE_ATTRIBUTE_COMPRESSED = 0x800;
inline constexpr DWORD FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
inline constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;

// After success the error is 0, or 183 where CREATE_ALWAYS or OPEN_ALWAYS found the file there. A new file
// gets the mode 0666, or 0444 for FILE_ATTRIBUTE_READONLY, less the umask; of the other attributes only
// FILE_FLAG_BACKUP_SEMANTICS counts, with which OPEN_EXISTING opens folders. TRUNCATE_EXISTING without
// GENERIC_WRITE is error 87.
//
// With a model, the handle of an open file, a file that is made or emptied gets the permissions of that one,
// its owner and its group, as far as this process may give them; before there is anything in it.
//
// Share modes hold between all handles made here, in this process and in others, by advisory locks that end
// with their process (and with what it forked that still has the file open); programs that do not ask for
// them are not kept out. A handle without any access takes no part, nor one that may write a file it may not
// read. Where the file system has no locks, opening succeeds unguarded.
HANDLE CreateFileA(const char* path, DWORD access, DWORD share, void* security, DWORD disposition,
                   DWORD attributes, HANDLE model) noexcept;

// What is no open handle is error 6, a right that it was not opened with error 5. Reading at or behind the
// end succeeds with the count 0. `overlapped` must be null, `done` may be.
BOOL CloseHandle(HANDLE handle) noexcept;
BOOL ReadFile(HANDLE handle, void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept;
BOOL WriteFile(HANDLE handle, const void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept;
// A position behind the end is allowed: writing there fills the gap with zeros. The second form answers with
// the low half of the position; without `high` the distance has 32 bits and a position of more is error 87.
BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method) noexcept;
DWORD SetFilePointer(HANDLE handle, LONG low, LONG* high, DWORD method) noexcept;
BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size) noexcept;
DWORD GetFileSize(HANDLE handle, DWORD* high) noexcept;
BOOL SetEndOfFile(HANDLE handle) noexcept;
BOOL FlushFileBuffers(HANDLE handle) noexcept; // safe on the disk when it returns
// Any of the three may be null. Where the file system keeps no time of creation, it is that of the last
// write.
BOOL GetFileTime(HANDLE handle, FILETIME* created, FILETIME* accessed, FILETIME* written) noexcept;

// ---- files by name --------------------------------------------------------------------------------------
// Deleting, moving and replacing need that no handle is open which was opened without FILE_SHARE_DELETE (else
// error 32). Deleting and moving a link do not touch its target.
inline constexpr DWORD MOVEFILE_REPLACE_EXISTING = 1; // a file that is there; never a folder
inline constexpr DWORD MOVEFILE_COPY_ALLOWED = 2;     // a file may move to another file system, as a copy
BOOL DeleteFileA(const char* path) noexcept;
BOOL MoveFileA(const char* from, const char* to) noexcept; // as with MOVEFILE_COPY_ALLOWED
BOOL MoveFileExA(const char* from, const char* to, DWORD flags) noexcept;
// The copy has the content, the permissions (so also the read-only mark) and the time of the last write. A
// copy that fails on the way is removed.
BOOL CopyFileA(const char* from, const char* to, BOOL failIfExists) noexcept;

enum GET_FILEEX_INFO_LEVELS { GetFileExInfoStandard };
struct WIN32_FILE_ATTRIBUTE_DATA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
};
DWORD GetFileAttributesA(const char* path) noexcept;
BOOL GetFileAttributesExA(const char* path, GET_FILEEX_INFO_LEVELS level, void* data) noexcept;
// Only FILE_ATTRIBUTE_READONLY has an effect: with it nobody may write any more, without it the owner may.
BOOL SetFileAttributesA(const char* path, DWORD attributes) noexcept;

BOOL CreateDirectoryA(const char* path, void* security) noexcept; // one level
BOOL RemoveDirectoryA(const char* path) noexcept;                 // an empty one

// 0, or -1 with errno ENOENT, EACCES or EINVAL. Mode 0: it exists, 2: it may be written, 4: it may be read,
// 6: both.
int _access(const char* path, int mode) noexcept;

// ---- names of files -------------------------------------------------------------------------------------
// The answer is the length without the NUL; if the buffer is too small, the size that would do (length + 1),
// and nothing is written.
DWORD GetTempPathA(DWORD size, char* buffer) noexcept; // $TMPDIR, else /tmp; ends with a separator
// The path as it is, if it exists: there are no short names.
DWORD GetLongPathNameA(const char* path, char* longPath, DWORD size) noexcept;
DWORD GetShortPathNameA(const char* path, char* shortPath, DWORD size) noexcept;
// The path from the root on, without `.`, `..` and doubled separators, all separators `/`; it need not exist.
// `..` removes the name before it, even if that is a link. `lastName` (may be null) points behind the last
// separator in the buffer, or is null where nothing follows it.
DWORD GetFullPathNameA(const char* path, DWORD size, char* buffer, char** lastName) noexcept;
// The folder, the first three bytes of the prefix, the low 16 bits of the number in upper-case hexadecimal
// and ".tmp", in a buffer of MAX_PATH bytes; the answer is that number. With the low 16 bits 0 a number is
// found for which there is no file yet and the file is made, empty, for its owner only; otherwise nothing is
// made. A missing folder is error 267, one of more than MAX_PATH - 14 bytes 111, a separator in the prefix
// 123.
UINT GetTempFileNameA(const char* folder, const char* prefix, UINT unique, char* path) noexcept;

// ---- finding files --------------------------------------------------------------------------------------
// The last part of the pattern may hold wildcards; letter case counts, bytes are compared. Without wildcards
// the file system is asked for that name. `.` and `..` come first, if they match; the order of the others is
// the file system's.
//   *  any bytes; right before a dot, not the last dot of the name:  "*." -> "name", not "name.txt"
//   ?  one byte; at a dot or at the end of the name also none:        "a??.c" -> "a.c", "ab.c"
//   .  a dot; before wildcards or at the end also the end of the name: "*.*" -> "name", "name.*" -> "name"
// A missing folder is error 3, a file in its place 267, nothing found 2, no more 18.
struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    char cFileName[1024];        // room for the longest name of any file system
    char cAlternateFileName[14]; // always empty
};
HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data) noexcept;
BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data) noexcept;
BOOL FindClose(HANDLE handle) noexcept;
