// What is done to files and folders by their names.
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/Failures.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileFacts.h"
#include "platform/posix/OpenFiles.h"
#include "platform/posix/PosixErrors.h"
#include "platform/posix/ShareLocks.h"

namespace {

// What an operation knows of one of its names: the entry itself, where that is a link.
struct Entry {
    explicit Entry(const SystemPath& path) noexcept : isThere(lstat(path.Text(), &state) == 0) {}

    bool IsFolder() const noexcept { return isThere && S_ISDIR(state.st_mode); }
    bool IsFile() const noexcept { return isThere && S_ISREG(state.st_mode); }
    bool IsReadOnlyFile() const noexcept { return IsFile() && (state.st_mode & S_IWUSR) == 0; }

    struct stat state = {};
    bool isThere;
};

DWORD ErrorOfResult(const SystemPath& path, int result) noexcept
{
    return result == 0 ? ERROR_SUCCESS : ErrorForPath(path, errno);
}

// The right to remove a name, as long as this lives: meanwhile nobody opens the file, unless he shares
// deleting. A file that may not be opened, and what is no regular file, is unguarded.
class RemovalGuard {
public:
    RemovalGuard(const SystemPath& path, const Entry& entry) noexcept
    {
        if (entry.IsFile())
            m_file = FileDescriptor(open(path.Text(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        m_isFree = !m_file.IsOpen() || ShareLocks::Enter(m_file.Get(), ShareLocks::Deletes, 0);
    }
    bool IsFree() const noexcept { return m_isFree; }

private:
    FileDescriptor m_file;
    bool m_isFree;
};

DWORD Delete(const SystemPath& path) noexcept
{
    const Entry entry(path);
    if (!entry.isThere)
        return ErrorForPath(path, errno);
    if (entry.IsFolder() || entry.IsReadOnlyFile())
        return ERROR_ACCESS_DENIED;
    const RemovalGuard guard(path, entry);
    return guard.IsFree() ? ErrorOfResult(path, unlink(path.Text())) : ERROR_SHARING_VIOLATION;
}

// ---- moving ---------------------------------------------------------------------------------------------

// Two spellings of one name, not two names of one file.
bool IsSameName(const SystemPath& from, const Entry& source, const SystemPath& to,
                const Entry& target) noexcept
{
    const bool isSameFile = target.isThere && source.state.st_ino == target.state.st_ino &&
                            source.state.st_dev == target.state.st_dev;
    return isSameFile && (source.IsFolder() || source.state.st_nlink == 1 || from.View() == to.View());
}

DWORD Rename(const SystemPath& from, const SystemPath& to, bool overwrites) noexcept
{
    if (overwrites)
        return ErrorOfResult(to, rename(from.Text(), to.Text()));
    const int result = renameat2(AT_FDCWD, from.Text(), AT_FDCWD, to.Text(), RENAME_NOREPLACE);
    if (result != 0 && (errno == EINVAL || errno == ENOSYS)) // a file system that cannot refuse by itself
        return ErrorOfResult(to, rename(from.Text(), to.Text()));
    return ErrorOfResult(to, result);
}

DWORD MoveAsCopy(const char* from, const char* to, bool replaces) noexcept
{
    if (!CopyFileA(from, to, !replaces) || !DeleteFileA(from))
        return GetLastError();
    return ERROR_SUCCESS;
}

DWORD Move(const char* from, const char* to, DWORD flags) noexcept
{
    const SystemPath oldName(from);
    const SystemPath newName(to);
    if (!oldName.IsUsable() || !newName.IsUsable())
        return ErrorOfUnusable(oldName.IsUsable() ? newName : oldName);
    const Entry source(oldName);
    if (!source.isThere)
        return ErrorForPath(oldName, errno);
    const Entry target(newName);
    const bool isSame = IsSameName(oldName, source, newName, target);
    const bool replaces = (flags & MOVEFILE_REPLACE_EXISTING) != 0;
    if (target.isThere && !isSame) {
        if (!replaces)
            return ERROR_ALREADY_EXISTS;
        if (source.IsFolder() || target.IsFolder() || target.IsReadOnlyFile())
            return ERROR_ACCESS_DENIED;
    }
    DWORD error = ERROR_SHARING_VIOLATION;
    {
        const RemovalGuard sourceGuard(oldName, source);
        const RemovalGuard targetGuard(newName, target);
        if (sourceGuard.IsFree() && targetGuard.IsFree())
            error = Rename(oldName, newName, replaces || isSame);
    }
    const bool isCopied =
        error == ERROR_NOT_SAME_DEVICE && source.IsFile() && (flags & MOVEFILE_COPY_ALLOWED) != 0;
    return isCopied ? MoveAsCopy(from, to, replaces) : error;
}

// ---- copying --------------------------------------------------------------------------------------------

// A file's handle, closed with its owner.
class OpenedHandle {
public:
    explicit OpenedHandle(HANDLE handle) noexcept : m_handle(handle) {}
    ~OpenedHandle()
    {
        if (IsOpen())
            Close();
    }
    OpenedHandle(const OpenedHandle&) = delete;
    OpenedHandle& operator=(const OpenedHandle&) = delete;

    bool IsOpen() const noexcept { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const noexcept { return m_handle; }
    int Descriptor() const noexcept { return OpenFiles::DescriptorOf(m_handle); }
    BOOL Close() noexcept { return CloseHandle(std::exchange(m_handle, INVALID_HANDLE_VALUE)); }

private:
    HANDLE m_handle;
};

BOOL CopyContent(const OpenedHandle& source, const OpenedHandle& target) noexcept
{
    char buffer[1 << 16];
    for (;;) {
        DWORD count = 0;
        if (!ReadFile(source.Get(), buffer, sizeof buffer, &count, nullptr))
            return FALSE;
        if (count == 0)
            return TRUE;
        if (!WriteFile(target.Get(), buffer, count, &count, nullptr))
            return FALSE;
    }
}

// What a file system cannot keep is left out.
void CopyProperties(const OpenedHandle& source, const OpenedHandle& target) noexcept
{
    constexpr mode_t permissions = 0777;
    struct stat state;
    if (fstat(source.Descriptor(), &state) != 0)
        return;
    [[maybe_unused]] const int isModeKept = fchmod(target.Descriptor(), state.st_mode & permissions);
    const timespec times[] = {{0, UTIME_OMIT}, state.st_mtim};
    futimens(target.Descriptor(), times);
}

} // namespace

BOOL DeleteFileA(const char* path) noexcept
{
    const SystemPath name(path);
    return Answer(name.IsUsable() ? Delete(name) : ErrorOfUnusable(name));
}

BOOL MoveFileA(const char* from, const char* to) noexcept
{
    return MoveFileExA(from, to, MOVEFILE_COPY_ALLOWED);
}

BOOL MoveFileExA(const char* from, const char* to, DWORD flags) noexcept
{
    return Answer(Move(from, to, flags));
}

BOOL CopyFileA(const char* from, const char* to, BOOL failIfExists) noexcept
{
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    OpenedHandle source(CreateFileA(from, GENERIC_READ, shareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!source.IsOpen())
        return FALSE;
    // Deleting is shared only so that a failed copy can be removed while it is still guarded.
    OpenedHandle target(CreateFileA(to, GENERIC_WRITE, FILE_SHARE_DELETE, nullptr,
                                    failIfExists ? CREATE_NEW : CREATE_ALWAYS, 0, nullptr));
    if (!target.IsOpen())
        return FALSE;
    bool isCopied = CopyContent(source, target);
    if (isCopied) {
        CopyProperties(source, target);
        isCopied = target.Close();
    }
    if (isCopied)
        return TRUE;
    const DWORD error = GetLastError();
    DeleteFileA(to);
    return Fail(error);
}

DWORD GetFileAttributesA(const char* path) noexcept
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    return GetFileAttributesExA(path, GetFileExInfoStandard, &data) ? data.dwFileAttributes
                                                                    : INVALID_FILE_ATTRIBUTES;
}

BOOL GetFileAttributesExA(const char* path, GET_FILEEX_INFO_LEVELS level, void* data) noexcept
{
    const SystemPath name(path);
    if (!name.IsUsable())
        return Fail(ErrorOfUnusable(name));
    if (level != GetFileExInfoStandard || data == nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    const auto facts = FactsOf(name);
    if (!facts)
        return Fail(ErrorForPath(name, errno));
    facts->CopyTo(*static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data));
    return TRUE;
}

BOOL SetFileAttributesA(const char* path, DWORD attributes) noexcept
{
    constexpr mode_t everybodysWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    const SystemPath name(path);
    if (!name.IsUsable())
        return Fail(ErrorOfUnusable(name));
    struct stat state;
    if (stat(name.Text(), &state) != 0)
        return Fail(ErrorForPath(name, errno));
    const bool isReadOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    const mode_t mode = isReadOnly ? state.st_mode & ~everybodysWrite : state.st_mode | S_IWUSR;
    if (mode == state.st_mode)
        return TRUE;
    return Answer(ErrorOfResult(name, chmod(name.Text(), mode & 07777)));
}

BOOL CreateDirectoryA(const char* path, void*) noexcept
{
    const SystemPath name(path);
    return Answer(name.IsUsable() ? ErrorOfResult(name, mkdir(name.Text(), 0777)) : ErrorOfUnusable(name));
}

BOOL RemoveDirectoryA(const char* path) noexcept
{
    const SystemPath name(path);
    if (!name.IsUsable())
        return Fail(ErrorOfUnusable(name));
    const Entry entry(name);
    if (entry.isThere && !entry.IsFolder())
        return Fail(ERROR_DIRECTORY);
    return Answer(ErrorOfResult(name, rmdir(name.Text())));
}
