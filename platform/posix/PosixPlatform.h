// The platform's names on POSIX systems. Each operation behaves as on the original platform: the same
// results, the same error numbers in GetLastError, `\` and `/` both separating the parts of a path. Names of
// files keep the file system's own rule for letter case, their bytes are passed through as they are, and a
// drive letter means nothing.
#pragma once

#include <cstdarg>

#include "BasicTypes.h"

using HANDLE = void*;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(-1);
inline constexpr int MAX_PATH = 260;

// ---- errors: one number for each thread -----------------------------------------------------------------
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
inline constexpr DWORD ERROR_BAD_EXE_FORMAT = 193;
inline constexpr DWORD ERROR_DIRECTORY = 267;
inline constexpr DWORD ERROR_NOACCESS = 998;
inline constexpr DWORD ERROR_IO_DEVICE = 1117;
inline constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
inline constexpr DWORD ERROR_CANT_RESOLVE_FILENAME = 1921;
DWORD GetLastError() noexcept;
void SetLastError(DWORD error) noexcept;

inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
// Only the two flags above, together; a buffer that is too small gives 0 and ERROR_INSUFFICIENT_BUFFER.
DWORD FormatMessageA(DWORD flags, const void* source, DWORD message, DWORD language, char* buffer, DWORD size,
                     std::va_list* arguments) noexcept;

// ---- text under the runtime's current locale ------------------------------------------------------------
int _stricmp(const char* a, const char* b) noexcept;

#include "platform/posix/PosixCodePages.h"
#include "platform/posix/PosixFileIdentity.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixLocale.h"
#include "platform/posix/PosixLocks.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/PosixRegistry.h"
#include "platform/posix/PosixShell.h"
#include "platform/posix/PosixTime.h"
#include "platform/posix/PosixVersionInfo.h"
