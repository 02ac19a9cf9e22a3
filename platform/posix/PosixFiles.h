// Files and their names, under the platform's names. Failures are FALSE, 0 or an invalid handle, with the
// reason in GetLastError.
#pragma once

#include "FileTime.h"
#include "platform/posix/PosixPlatform.h"

// ---- files
// -----------------------------------------------------------------------------------------------------
// `\` and `/` both separate; a POSIX file whose name holds a backslash cannot be reached. Every other byte of
// a name is passed through, also * ? " < > |. A file is read-only when its owner's write bit is off, whoever
// asks.
//
// Share modes hold between all handles made here, in this process and in others, by advisory locks that end
// with their process; programs that do not ask for them are not kept out. A handle without any access takes
// no part. Where the file system has no locks, or a handle may only write, opening succeeds unguarded.
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
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20; // every file
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT =
    0x400; // a symbolic link; the other attributes are its target's
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;
inline constexpr DWORD MOVEFILE_REPLACE_EXISTING = 1;

HANDLE CreateFileA(const char* path, DWORD access, DWORD share, void* security, DWORD disposition,
                   DWORD attributes, HANDLE model) noexcept;
BOOL CloseHandle(HANDLE handle) noexcept;
BOOL ReadFile(HANDLE handle, void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept;
BOOL WriteFile(HANDLE handle, const void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept;
BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method) noexcept;
DWORD SetFilePointer(HANDLE handle, LONG distance, LONG* distanceHigh, DWORD method) noexcept;
BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size) noexcept;
BOOL SetEndOfFile(HANDLE handle) noexcept;
BOOL FlushFileBuffers(HANDLE handle) noexcept;

BOOL DeleteFileA(const char* path) noexcept;
BOOL MoveFileA(const char* from, const char* to) noexcept;
BOOL MoveFileExA(const char* from, const char* to, DWORD flags) noexcept;
DWORD GetFileAttributesA(const char* path) noexcept;
BOOL SetFileAttributesA(const char* path,
                        DWORD attributes) noexcept; // only FILE_ATTRIBUTE_READONLY has an effect
BOOL CreateDirectoryA(const char* path, void* security) noexcept;
BOOL RemoveDirectoryA(const char* path) noexcept;
int _access(const char* path, int mode) noexcept; // mode 0 exists, 2 writable, 4 readable; sets errno

// ---- names of files
// ----------------------------------------------------------------------------------------------
// GetTempFileNameA writes at most MAX_PATH bytes; a folder that leaves no room for a name of 14 fails. The
// answers of the others is the length without the NUL, or, when the buffer is too small, the size that would
// do.
UINT GetTempFileNameA(const char* folder, const char* prefix, UINT unique, char* path) noexcept;
DWORD GetLongPathNameA(const char* path, char* longPath,
                       DWORD size) noexcept; // the path itself, if it exists:
DWORD GetShortPathNameA(const char* path, char* shortPath, DWORD size) noexcept; // there are no short names

// ---- finding files
// ------------------------------------------------------------------------------------------------- The last
// part of the pattern may hold * and ?; they match by the file system's letter case, and *.* matches names
// without a dot too. A pattern of only such characters gives . and .. first; the order is the file system's.
struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    char cFileName[MAX_PATH];
};
HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data) noexcept;
BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data) noexcept;
BOOL FindClose(HANDLE handle) noexcept;
