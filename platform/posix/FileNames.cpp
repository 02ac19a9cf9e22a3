// Names of files: whether they are there, and names that are made.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <new>
#include <string>
#include <unistd.h>

#include "platform/posix/Failures.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileFacts.h"
#include "platform/posix/PosixErrors.h"

namespace {

bool IsSeparator(char c) noexcept
{
    return c == '\\' || c == '/';
}

// A text into a buffer, by the rule of all the answers here.
DWORD PutAnswer(std::string_view text, char* buffer, DWORD size) noexcept
{
    const auto length = static_cast<DWORD>(text.size());
    if (length >= size || buffer == nullptr)
        return length + 1;
    std::memmove(buffer, text.data(), length); // the buffer may be where the text came from
    buffer[length] = '\0';
    return length;
}

DWORD NameItself(const char* path, char* buffer, DWORD size) noexcept
{
    const SystemPath name(path);
    const DWORD error = !name.IsUsable() ? ErrorOfUnusable(name)
                        : FactsOf(name)  ? ERROR_SUCCESS
                                         : ErrorForPath(name, errno);
    return Answer(error) ? PutAnswer(path, buffer, size) : 0;
}

// ---- full names -----------------------------------------------------------------------------------------

// Appends the parts of a path, each behind a `/`; `.` and `..` take effect, the end may become a separator.
void AppendParts(std::string& full, std::string_view path)
{
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), part.size() + 1));
        if (part == "..")
            full.resize(std::min(full.rfind('/'), full.size()));
        else if (!part.empty() && part != ".")
            full.append(1, '/').append(part);
    }
}

std::string FullPath(const SystemPath& path)
{
    std::string full;
    if (!path.View().starts_with('/')) {
        char folder[4096];
        AppendParts(full, getcwd(folder, sizeof folder) != nullptr ? folder : "");
    }
    AppendParts(full, path.View());
    if (full.empty() || path.EndsInSeparator())
        full += '/';
    return full;
}

// ---- temporary files ------------------------------------------------------------------------------------

constexpr UINT LargestNumber = 0xFFFF;

// Another number at each call, so that processes and threads seldom try the same names.
UINT FirstNumber() noexcept
{
    static constinit std::atomic<UINT> calls = 0;
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (static_cast<UINT>(now.tv_nsec >> 10) ^ static_cast<UINT>(getpid()) * 40503u) + calls++;
}

void PutTempName(char* path, std::string_view front, UINT number) noexcept
{
    std::snprintf(path, MAX_PATH, "%.*s%X.tmp", static_cast<int>(front.size()), front.data(), number);
}

// Makes the file with the first free number and says its name; 0 with the error set if none could be made.
UINT MakeTempFile(std::string_view front, char* path) noexcept
{
    const UINT first = FirstNumber();
    for (UINT step = 0; step < LargestNumber; ++step) {
        const UINT number = (first + step) % LargestNumber + 1;
        char candidate[MAX_PATH];
        PutTempName(candidate, front, number);
        const SystemPath name(candidate);
        const FileDescriptor file(open(name.Text(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600));
        if (file.IsOpen()) {
            std::strcpy(path, candidate);
            return number;
        }
        if (errno != EEXIST) {
            SetLastError(ErrorForPath(name, errno));
            return 0;
        }
    }
    SetLastError(ERROR_FILE_EXISTS);
    return 0;
}

DWORD CheckTempFolder(const SystemPath& folder, std::string_view prefix) noexcept
{
    constexpr std::size_t longestName = 14; // with the separator before it and the NUL
    const auto facts = FactsOf(folder);
    if (!facts || !facts->IsFolder())
        return ERROR_DIRECTORY;
    if (folder.View().size() > MAX_PATH - longestName)
        return ERROR_BUFFER_OVERFLOW;
    // A separator would lead out of the folder.
    return std::any_of(prefix.begin(), prefix.end(), IsSeparator) ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

} // namespace

int _access(const char* path, int mode) noexcept
{
    constexpr int writable = 2;
    constexpr int readable = 4;
    const SystemPath name(path);
    const auto facts = FactsOf(name);
    const int wanted = ((mode & readable) != 0 ? R_OK : 0) | ((mode & writable) != 0 ? W_OK : 0);
    if (path == nullptr || (mode & ~(readable | writable)) != 0)
        errno = EINVAL;
    else if (!facts)
        errno = errno == EACCES ? EACCES : ENOENT;
    else if ((mode & writable) != 0 && facts->IsReadOnly() && !facts->IsFolder())
        errno = EACCES;
    else if (wanted == 0 || faccessat(AT_FDCWD, name.Text(), wanted, AT_EACCESS) == 0)
        return 0;
    return -1;
}

DWORD GetTempPathA(DWORD size, char* buffer) noexcept
{
    const char* const variable = std::getenv("TMPDIR");
    const std::string_view folder = variable == nullptr || *variable == '\0' ? "/tmp" : variable;
    const bool isClosed = IsSeparator(folder.back());
    const auto length = static_cast<DWORD>(folder.size() + (isClosed ? 0 : 1));
    if (length >= size)
        return length + 1;
    PutAnswer(folder, buffer, size);
    if (!isClosed)
        std::strcpy(buffer + folder.size(), "\\");
    return length;
}

DWORD GetLongPathNameA(const char* path, char* longPath, DWORD size) noexcept
{
    return NameItself(path, longPath, size);
}

DWORD GetShortPathNameA(const char* path, char* shortPath, DWORD size) noexcept
{
    return NameItself(path, shortPath, size);
}

DWORD GetFullPathNameA(const char* path, DWORD size, char* buffer, char** lastName) noexcept
try {
    const SystemPath name(path);
    if (!Answer(name.IsUsable() ? ERROR_SUCCESS : ErrorOfUnusable(name)))
        return 0;
    const std::string full = FullPath(name);
    const DWORD length = PutAnswer(full, buffer, size);
    if (length < size && lastName != nullptr) {
        char* const last = buffer + full.rfind('/') + 1;
        *lastName = *last == '\0' ? nullptr : last;
    }
    return length;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}

UINT GetTempFileNameA(const char* folder, const char* prefix, UINT unique, char* path) noexcept
{
    const SystemPath name(folder);
    const std::string_view prefixUsed = std::string_view(prefix == nullptr ? "" : prefix).substr(0, 3);
    if (!Answer(CheckTempFolder(name, prefixUsed)))
        return 0;
    char front[MAX_PATH];
    const char* const separator = name.EndsInSeparator() ? "" : "\\";
    std::snprintf(front, sizeof front, "%s%s%.*s", folder, separator, static_cast<int>(prefixUsed.size()),
                  prefixUsed.data());
    const UINT number = unique & LargestNumber;
    if (number == 0)
        return MakeTempFile(front, path);
    PutTempName(path, front, number);
    return number;
}
