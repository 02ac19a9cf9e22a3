#include "platform/posix/FileFacts.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace {

constexpr int64 StepsPerSecond = 10'000'000; // of 100 nanoseconds
constexpr int64 SecondsFrom1601To1970 = 11'644'473'600;

// 0 before 1601.
FILETIME ToFileTime(const statx_timestamp& time) noexcept
{
    if (time.tv_sec < -SecondsFrom1601To1970)
        return {};
    const auto seconds = static_cast<uint64>(time.tv_sec) + static_cast<uint64>(SecondsFrom1601To1970);
    const uint64 steps = seconds * StepsPerSecond + time.tv_nsec / 100;
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

bool IsHiddenName(std::string_view name) noexcept
{
    return name.starts_with('.') && name != "." && name != "..";
}

bool IsDevice(mode_t mode) noexcept
{
    return !S_ISREG(mode) && !S_ISDIR(mode) && !S_ISLNK(mode); // a link that leads nowhere is none
}

bool Ask(int folder, const char* name, int flags, struct statx& answer) noexcept
{
    return statx(folder, name, flags | AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_BTIME, &answer) == 0;
}

std::optional<FileFacts> FactsOf(int folder, const char* name, std::string_view lastName) noexcept
{
    struct statx found = {};
    if (!Ask(folder, name, AT_SYMLINK_NOFOLLOW, found))
        return std::nullopt;
    const bool isLink = S_ISLNK(found.stx_mode);
    if (struct statx target = {}; isLink && Ask(folder, name, 0, target))
        found = target;
    FileFacts facts;
    facts.attributes = (S_ISDIR(found.stx_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE) |
                       (IsDevice(found.stx_mode) ? FILE_ATTRIBUTE_DEVICE : 0) |
                       ((found.stx_mode & S_IWUSR) == 0 ? FILE_ATTRIBUTE_READONLY : 0) |
                       (isLink ? FILE_ATTRIBUTE_REPARSE_POINT : 0) |
                       (IsHiddenName(lastName) ? FILE_ATTRIBUTE_HIDDEN : 0);
    facts.size = S_ISDIR(found.stx_mode) ? 0 : found.stx_size;
    facts.created = ToFileTime((found.stx_mask & STATX_BTIME) != 0 ? found.stx_btime : found.stx_mtime);
    facts.accessed = ToFileTime(found.stx_atime);
    facts.written = ToFileTime(found.stx_mtime);
    facts.volume = makedev(found.stx_dev_major, found.stx_dev_minor);
    facts.index = found.stx_ino;
    facts.links = found.stx_nlink;
    return facts;
}

} // namespace

std::optional<FileFacts> FactsOf(int folder, const char* name) noexcept
{
    return FactsOf(folder, name, name);
}

std::optional<FileFacts> FactsOf(const SystemPath& path) noexcept
{
    if (path.IsUsable())
        return FactsOf(AT_FDCWD, path.Text(), path.LastName());
    errno = ENOENT;
    return std::nullopt;
}
