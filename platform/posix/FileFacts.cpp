#include "platform/posix/FileFacts.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix/PosixErrors.h"
#include "platform/posix/SystemPath.h"

namespace {

constexpr int64 StepsPerSecond = 10000000; // of 100 nanoseconds
constexpr int64 SecondsFrom1601To1970 = 11644473600;

// Wraps outside the years that a FILETIME can hold.
FILETIME ToFileTime(const statx_timestamp& time)
{
    const uint64 seconds =
        static_cast<uint64>(static_cast<int64>(time.tv_sec)) + static_cast<uint64>(SecondsFrom1601To1970);
    const uint64 steps = seconds * StepsPerSecond + time.tv_nsec / 100;
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

bool IsHiddenName(const std::string& name)
{
    return name.size() > 1 && name[0] == '.' && name != "..";
}

} // namespace

std::string SystemPath(const char* path)
{
    std::string system(path == nullptr ? "" : path);
    for (char& c : system)
        if (c == '\\')
            c = '/';
    return system;
}

std::string FolderOf(const std::string& systemPath)
{
    return systemPath.substr(0, systemPath.rfind('/') + 1);
}

std::string NameOf(const std::string& systemPath)
{
    return systemPath.substr(systemPath.rfind('/') + 1);
}

DWORD ErrorForPath(const std::string& systemPath, int posix)
{
    if (posix != ENOENT)
        return posix == ENOTDIR ? ERROR_PATH_NOT_FOUND : ErrorForErrno(posix);
    const std::string folder = FolderOf(systemPath.substr(0, systemPath.find_last_not_of('/') + 1));
    return !systemPath.empty() && (folder.empty() || FactsOf(folder)) ? ERROR_FILE_NOT_FOUND
                                                                      : ERROR_PATH_NOT_FOUND;
}

std::optional<FileFacts> FactsOf(const std::string& systemPath)
{
    constexpr unsigned int Wanted = STATX_BASIC_STATS | STATX_BTIME;
    struct statx link = {};
    if (statx(AT_FDCWD, systemPath.c_str(), AT_SYMLINK_NOFOLLOW, Wanted, &link) != 0)
        return std::nullopt;
    const bool isLink = S_ISLNK(link.stx_mode);
    struct statx target = link;
    if (isLink && statx(AT_FDCWD, systemPath.c_str(), 0, Wanted, &target) != 0)
        target = link;
    const bool isFolder = S_ISDIR(target.stx_mode);
    const bool isReadOnly = !isFolder && (target.stx_mode & S_IWUSR) == 0;
    const DWORD attributes = (isFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE) |
                             (isReadOnly ? FILE_ATTRIBUTE_READONLY : 0) |
                             (isLink ? FILE_ATTRIBUTE_REPARSE_POINT : 0) |
                             (IsHiddenName(NameOf(systemPath)) ? FILE_ATTRIBUTE_HIDDEN : 0);
    return FileFacts{attributes, isFolder ? 0 : target.stx_size,
                     ToFileTime((target.stx_mask & STATX_BTIME) != 0 ? target.stx_btime : target.stx_mtime),
                     ToFileTime(target.stx_atime), ToFileTime(target.stx_mtime)};
}
