// What is done to files by their names.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <new>

#include "platform/posix/FileFacts.h"
#include "platform/posix/PosixErrors.h"
#include "platform/posix/ShareLocks.h"
#include "platform/posix/SystemPath.h"

namespace {

BOOL Answer(DWORD error)
{
    if (error != ERROR_SUCCESS)
        SetLastError(error);
    return error == ERROR_SUCCESS ? TRUE : FALSE;
}

// Runs a step that answers with an error, for callers that must not throw.
template <class Step>
BOOL Guarded(Step step) noexcept
try {
    return Answer(step());
} catch (const std::bad_alloc&) {
    return Answer(ERROR_NOT_ENOUGH_MEMORY);
}

DWORD ErrorOf(const std::string& path, int result)
{
    return result == 0 ? ERROR_SUCCESS : ErrorForPath(path, errno);
}

DWORD Rename(const std::string& from, const std::string& to, bool replaces)
{
    const auto source = FactsOf(from);
    if (!source)
        return ErrorForPath(from, errno);
    if (ShareLocks::IsDeletingDenied(from))
        return ERROR_SHARING_VIOLATION;
    const auto target = FactsOf(to);
    if (target && !replaces)
        return ERROR_ALREADY_EXISTS;
    if (target && (target->IsFolder() || target->IsReadOnly()))
        return ERROR_ACCESS_DENIED;
    if (target && ShareLocks::IsDeletingDenied(to))
        return ERROR_SHARING_VIOLATION;
    const int result = replaces ? rename(from.c_str(), to.c_str())
                                : renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
    if (result != 0 && !replaces && errno == EINVAL) // a file system that cannot refuse by itself
        return ErrorOf(to, rename(from.c_str(), to.c_str()));
    return ErrorOf(to, result);
}

// The text into the buffer by the rule of the names' answers.
DWORD PutAnswer(const std::string& text, char* buffer, DWORD size)
{
    const auto length = static_cast<DWORD>(text.size());
    if (length >= size || buffer == nullptr)
        return length + 1;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return length;
}

DWORD NameItself(const char* path, char* buffer, DWORD size) noexcept
try {
    const std::string system = SystemPath(path);
    if (!system.empty() && FactsOf(system))
        return PutAnswer(path, buffer, size);
    SetLastError(system.empty() ? ERROR_PATH_NOT_FOUND : ErrorForPath(system, errno));
    return 0;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}

// Another number at each call, so that processes and threads seldom try the same names.
UINT FirstUnique()
{
    static std::atomic<UINT> calls = 0;
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (static_cast<UINT>(now.tv_nsec >> 10) ^ static_cast<UINT>(getpid()) * 40503u) + calls++;
}

constexpr UINT UniqueMask = 0xFFFF;

std::string TempName(const std::string& front, UINT unique)
{
    char end[16];
    std::snprintf(end, sizeof end, "%X.tmp", unique);
    return front + end;
}

// Makes the file with the first free number; 0 with the error set if none could be made.
UINT MakeTempFile(const std::string& front)
{
    const UINT first = FirstUnique();
    for (UINT step = 0; step < UniqueMask; ++step) {
        const UINT unique = (first + step) % UniqueMask + 1;
        const int file = open(SystemPath(TempName(front, unique).c_str()).c_str(),
                              O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
        if (file >= 0) {
            close(file);
            return unique;
        }
        if (errno != EEXIST) {
            SetLastError(ErrorForErrno(errno));
            return 0;
        }
    }
    SetLastError(ERROR_FILE_EXISTS);
    return 0;
}

} // namespace

BOOL DeleteFileA(const char* path) noexcept
{
    return Guarded([=]() -> DWORD {
        const std::string system = SystemPath(path);
        const auto facts = FactsOf(system);
        if (!facts)
            return ErrorForPath(system, errno);
        if (facts->IsFolder() || facts->IsReadOnly())
            return ERROR_ACCESS_DENIED;
        return ShareLocks::IsDeletingDenied(system) ? ERROR_SHARING_VIOLATION
                                                    : ErrorOf(system, unlink(system.c_str()));
    });
}

BOOL MoveFileA(const char* from, const char* to) noexcept
{
    return MoveFileExA(from, to, 0);
}

BOOL MoveFileExA(const char* from, const char* to, DWORD flags) noexcept
{
    return Guarded(
        [=] { return Rename(SystemPath(from), SystemPath(to), (flags & MOVEFILE_REPLACE_EXISTING) != 0); });
}

DWORD GetFileAttributesA(const char* path) noexcept
try {
    const std::string system = SystemPath(path);
    if (const auto facts = FactsOf(system))
        return facts->attributes;
    SetLastError(ErrorForPath(system, errno));
    return INVALID_FILE_ATTRIBUTES;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_FILE_ATTRIBUTES;
}

BOOL SetFileAttributesA(const char* path, DWORD attributes) noexcept
{
    return Guarded([=]() -> DWORD {
        constexpr mode_t EverybodysWrite = S_IWUSR | S_IWGRP | S_IWOTH;
        const std::string system = SystemPath(path);
        struct stat facts = {};
        if (stat(system.c_str(), &facts) != 0)
            return ErrorForPath(system, errno);
        const bool isReadOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
        const mode_t mode = isReadOnly ? facts.st_mode & ~EverybodysWrite : facts.st_mode | S_IWUSR;
        return S_ISDIR(facts.st_mode) ? ERROR_SUCCESS : ErrorOf(system, chmod(system.c_str(), mode & 07777));
    });
}

BOOL CreateDirectoryA(const char* path, void*) noexcept
{
    return Guarded([=]() -> DWORD {
        const std::string system = SystemPath(path);
        const DWORD error = ErrorOf(system, mkdir(system.c_str(), 0777));
        return error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : error;
    });
}

BOOL RemoveDirectoryA(const char* path) noexcept
{
    return Guarded([=]() -> DWORD {
        const std::string system = SystemPath(path);
        const auto facts = FactsOf(system);
        return facts && !facts->IsFolder() ? ERROR_DIRECTORY : ErrorOf(system, rmdir(system.c_str()));
    });
}

int _access(const char* path, int mode) noexcept
try {
    constexpr int Readable = 4;
    constexpr int Writable = 2;
    const std::string system = SystemPath(path);
    const auto facts = FactsOf(system);
    if (!facts || (mode & ~(Readable | Writable)) != 0) {
        errno = facts ? EINVAL : ENOENT;
        return -1;
    }
    const bool isRefused = (mode & Writable) != 0 && facts->IsReadOnly();
    const int wanted = ((mode & Readable) != 0 ? R_OK : 0) | ((mode & Writable) != 0 ? W_OK : 0);
    if (!isRefused && (wanted == 0 || access(system.c_str(), wanted) == 0))
        return 0;
    errno = EACCES;
    return -1;
} catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return -1;
}

DWORD GetLongPathNameA(const char* path, char* longPath, DWORD size) noexcept
{
    return NameItself(path, longPath, size);
}

DWORD GetShortPathNameA(const char* path, char* shortPath, DWORD size) noexcept
{
    return NameItself(path, shortPath, size);
}

UINT GetTempFileNameA(const char* folder, const char* prefix, UINT unique, char* path) noexcept
try {
    constexpr std::size_t LongestName = 14; // with the separator in front and the NUL
    constexpr std::size_t PrefixUsed = 3;
    std::string front(folder == nullptr ? "" : folder);
    const std::string used = std::string(prefix == nullptr ? "" : prefix).substr(0, PrefixUsed);
    const auto facts = FactsOf(SystemPath(folder));
    const DWORD error = !facts || !facts->IsFolder()            ? ERROR_DIRECTORY
                        : front.size() > MAX_PATH - LongestName ? ERROR_BUFFER_OVERFLOW
                        : used.find_first_of("\\/") != std::string::npos
                            ? ERROR_INVALID_NAME // it would leave the folder
                            : ERROR_SUCCESS;
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return 0;
    }
    if (front.back() != '\\' && front.back() != '/')
        front += '\\';
    const UINT given = unique & UniqueMask;
    const UINT number = given != 0 ? given : MakeTempFile(front + used);
    if (number != 0)
        std::strcpy(path, TempName(front + used, number).c_str());
    return number;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}
