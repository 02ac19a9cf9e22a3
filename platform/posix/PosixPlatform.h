// The platform's names on POSIX systems. Each operation behaves as on the original platform: the same
// results, the same error numbers in GetLastError, `\` and `/` both separating the parts of a path. Names of
// files keep the file system's own rule for letter case, their bytes are passed through as they are, and a
// drive letter means nothing.
#pragma once

#include <cstdarg>

#include "BasicTypes.h"

using BOOL = int;
using HANDLE = void*;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(-1);
inline constexpr int MAX_PATH = 260;

// ---- errors: one number for each thread
// ------------------------------------------------------------------------
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
inline constexpr DWORD ERROR_NO_MORE_FILES = 18;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_BUFFER_OVERFLOW = 111;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_INVALID_NAME = 123;
inline constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
inline constexpr DWORD ERROR_SEEK_ON_DEVICE = 132;
inline constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_DIRECTORY = 267;
inline constexpr DWORD ERROR_NOACCESS = 998;
inline constexpr DWORD ERROR_IO_DEVICE = 1117;
inline constexpr DWORD ERROR_CANT_RESOLVE_FILENAME = 1921;
DWORD GetLastError() noexcept;
void SetLastError(DWORD error) noexcept;

inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
// Only the two flags above, together; a buffer that is too small gives 0 and ERROR_INSUFFICIENT_BUFFER.
DWORD FormatMessageA(DWORD flags, const void* source, DWORD message, DWORD language, char* buffer, DWORD size,
                     std::va_list* arguments) noexcept;

// ---- text under the runtime's current locale
// -------------------------------------------------------------------
int _stricmp(const char* a, const char* b) noexcept;

// ---- open files
// A file is read-only when its owner may not write it, whoever asks. `*?<>|"`, a dot or a blank at the end,
// and names of devices are names like any others. A path may be as long as the system takes it (4096 bytes).
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
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
inline constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;

// INVALID_HANDLE_VALUE with the error, else the error is 0, or 183 where CREATE_ALWAYS or OPEN_ALWAYS found
// the file there. The share modes hold between all handles of this library, in this process and in others, as
// long as the file system has advisory locks; other programs neither see nor keep them. A handle that asks
// for no access, and one that may write a file it may not read, takes no part in them. A new file is made
// with the mode 0666, or 0444 for FILE_ATTRIBUTE_READONLY, less the umask; of the other attributes only
// FILE_FLAG_BACKUP_SEMANTICS counts, which opens folders. TRUNCATE_EXISTING without GENERIC_WRITE is
// error 87.
HANDLE CreateFileA(const char* path, DWORD access, DWORD share, void* security, DWORD disposition,
                   DWORD attributes, HANDLE model) noexcept;

// A handle that is not open is error 6, a right that it was not opened with error 5. Reading at or behind the
// end succeeds with the count 0. `overlapped` must be null, `done` may be.
BOOL CloseHandle(HANDLE handle) noexcept;
BOOL ReadFile(HANDLE handle, void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept;
BOOL WriteFile(HANDLE handle, const void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept;
// A position behind the end is allowed: writing there fills the gap with zeros.
BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method) noexcept;
// The low half of the position; without `high` the distance has 32 bits and a position of more is error 87.
DWORD SetFilePointer(HANDLE handle, LONG low, LONG* high, DWORD method) noexcept;
BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size) noexcept;
DWORD GetFileSize(HANDLE handle, DWORD* high) noexcept;
BOOL SetEndOfFile(HANDLE handle) noexcept;
BOOL FlushFileBuffers(HANDLE handle) noexcept; // safe on the disk when it returns

#include "platform/posix/PosixTime.h"
