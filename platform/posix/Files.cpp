// Opening files, and what can be done with an open one.
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/Failures.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileFacts.h"
#include "platform/posix/HeldSignals.h"
#include "platform/posix/OpenFiles.h"
#include "platform/posix/PosixErrors.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/ShareLocks.h"
#include "platform/posix/SystemPath.h"

namespace {

// ---- opening --------------------------------------------------------------------------------------------

struct OpenRequest {
    DWORD access;
    DWORD share;
    DWORD disposition;
    DWORD attributes;
    bool hasModel;
    struct stat model; // what a new file is to be like

    bool Truncates() const noexcept
    {
        return disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING;
    }
    bool Reads() const noexcept { return (access & GENERIC_READ) != 0; }
    bool Writes() const noexcept { return (access & GENERIC_WRITE) != 0; }
    bool Changes() const noexcept { return Writes() || Truncates(); }
    bool MakesMissing() const noexcept { return disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS; }
    bool OpensFolder() const noexcept
    {
        return disposition == OPEN_EXISTING && (attributes & FILE_FLAG_BACKUP_SEMANTICS) != 0;
    }
    bool IsValid() const noexcept
    {
        return disposition >= CREATE_NEW && disposition <= TRUNCATE_EXISTING &&
               (disposition != TRUNCATE_EXISTING || Writes());
    }
};

struct OpenedFile {
    FileDescriptor descriptor;
    struct stat state = {};
    bool existed = true;
};

// O_NONBLOCK, so that opening a pipe waits for nobody; it means nothing for a regular file.
FileDescriptor OpenPath(const SystemPath& path, int flags, mode_t mode = 0) noexcept
{
    return FileDescriptor(open(path.Text(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode));
}

// A file opened for writing is opened for reading too where that is allowed: its locks need it.
FileDescriptor OpenExisting(const SystemPath& path, const OpenRequest& request) noexcept
{
    FileDescriptor file = OpenPath(path, request.Changes() ? O_RDWR : O_RDONLY);
    if (!file.IsOpen() && errno == EACCES && request.Changes() && !request.Reads())
        file = OpenPath(path, O_WRONLY);
    return file;
}

constexpr mode_t Permissions = 0777;

// With errno EEXIST if there is something of that name.
FileDescriptor MakeNew(const SystemPath& path, const OpenRequest& request) noexcept
{
    const bool isReadOnly = (request.attributes & FILE_ATTRIBUTE_READONLY) != 0;
    const mode_t mode = request.hasModel ? request.model.st_mode & Permissions : isReadOnly ? 0444 : 0666;
    return OpenPath(path, O_RDWR | O_CREAT | O_EXCL, mode);
}

// Where the group cannot be kept, the one that the file has instead may do no more than everybody.
void MakeLike(const struct stat& model, const OpenedFile& file) noexcept
{
    const int descriptor = file.descriptor.Get();
    mode_t mode = model.st_mode & Permissions;
    const bool isOthers = model.st_uid != file.state.st_uid || model.st_gid != file.state.st_gid;
    if (isOthers && fchown(descriptor, model.st_uid, model.st_gid) != 0 &&
        fchown(descriptor, file.state.st_uid, model.st_gid) != 0)
        mode &= ~mode_t{S_IRWXG} | (mode & S_IRWXO) << 3;
    if (mode != (file.state.st_mode & Permissions))
        fchmod(descriptor, mode);
}

FileDescriptor OpenOrMake(const SystemPath& path, const OpenRequest& request, bool& existed) noexcept
{
    existed = request.disposition != CREATE_NEW;
    if (!existed)
        return MakeNew(path, request);
    FileDescriptor file = OpenExisting(path, request);
    if (file.IsOpen() || errno != ENOENT || !request.MakesMissing())
        return file;
    file = MakeNew(path, request);
    existed = !file.IsOpen();
    // Somebody else was quicker, or the name is a link that leads nowhere, which counts as an existing file.
    if (!file.IsOpen() && errno == EEXIST)
        file = OpenPath(path, O_RDWR | O_CREAT, 0666);
    return file;
}

DWORD OpenError(const SystemPath& path, const OpenRequest& request, int posixError) noexcept
{
    struct stat state = {};
    if (posixError == EISDIR && stat(path.Text(), &state) != 0) // a new file was to be made as "name/"
        return ERROR_INVALID_NAME;
    const bool isThere = posixError == EEXIST || (posixError == EISDIR && request.disposition == CREATE_NEW);
    return isThere ? ERROR_FILE_EXISTS : ErrorForPath(path, posixError);
}

// A file is read-only when its owner may not write it, whoever asks: the superuser as well.
bool IsReadOnly(const struct stat& state) noexcept
{
    return S_ISREG(state.st_mode) && (state.st_mode & S_IWUSR) == 0;
}

DWORD CheckKind(const OpenedFile& file, const OpenRequest& request) noexcept
{
    if (S_ISDIR(file.state.st_mode))
        return request.OpensFolder() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
    return file.existed && request.Changes() && IsReadOnly(file.state) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

// A handle that asks for no access takes no part, nor does what is no regular file.
bool TakesPartInSharing(const OpenedFile& file, const OpenRequest& request) noexcept
{
    return (request.Reads() || request.Changes()) && S_ISREG(file.state.st_mode);
}

DWORD CheckSharing(const OpenedFile& file, const OpenRequest& request) noexcept
{
    const unsigned uses =
        (request.Reads() ? ShareLocks::Reads : 0U) | (request.Changes() ? ShareLocks::Writes : 0U);
    const unsigned denies = ((request.share & FILE_SHARE_READ) != 0 ? 0U : ShareLocks::Reads) |
                            ((request.share & FILE_SHARE_WRITE) != 0 ? 0U : ShareLocks::Writes) |
                            ((request.share & FILE_SHARE_DELETE) != 0 ? 0U : ShareLocks::Deletes);
    return ShareLocks::Enter(file.descriptor.Get(), uses, denies, !file.existed) ? ERROR_SUCCESS
                                                                                 : ERROR_SHARING_VIOLATION;
}

// False if the file was deleted or replaced after it was opened and before its locks were there.
bool IsStillNamed(const SystemPath& path, const OpenedFile& file) noexcept
{
    struct stat state = {};
    return stat(path.Text(), &state) == 0 && state.st_ino == file.state.st_ino &&
           state.st_dev == file.state.st_dev;
}

DWORD OpenShared(const SystemPath& path, const OpenRequest& request, OpenedFile& file) noexcept
{
    constexpr int attempts = 100; // a file system whose inode numbers do not last gets by with the last one
    for (int attempt = 1;; ++attempt) {
        file.descriptor = OpenOrMake(path, request, file.existed);
        if (!file.descriptor.IsOpen())
            return OpenError(path, request, errno);
        if (fstat(file.descriptor.Get(), &file.state) != 0)
            return ErrorForErrno(errno);
        if (const DWORD error = CheckKind(file, request); error != ERROR_SUCCESS)
            return error;
        if (!TakesPartInSharing(file, request))
            return ERROR_SUCCESS;
        if (const DWORD error = CheckSharing(file, request); error != ERROR_SUCCESS)
            return error;
        if (IsStillNamed(path, file) || attempt == attempts)
            return ERROR_SUCCESS;
    }
}

DWORD Finish(OpenedFile& file, const OpenRequest& request, HANDLE& handle) noexcept
{
    const int descriptor = file.descriptor.Get();
    const bool isRegular = S_ISREG(file.state.st_mode);
    if (!isRegular)
        fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    if (isRegular && file.existed && request.Truncates() && ftruncate(descriptor, 0) != 0)
        return ErrorForErrno(errno);
    if (isRegular && (!file.existed || request.Truncates()) && request.hasModel)
        MakeLike(request.model, file);
    handle = OpenFiles::Add(descriptor, (request.Reads() ? OpenFiles::Read : 0U) |
                                            (request.Writes() ? OpenFiles::Write : 0U) |
                                            (isRegular ? OpenFiles::Regular : 0U));
    if (handle == INVALID_HANDLE_VALUE)
        return ERROR_TOO_MANY_OPEN_FILES;
    file.descriptor.Release();
    return file.existed && request.MakesMissing() ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS;
}

// ---- open files -----------------------------------------------------------------------------------------

BOOL SystemResult(int result) noexcept
{
    return result == 0 ? TRUE : Fail(ErrorForErrno(errno));
}

// Whether the handle is open and has a right; if not, the error is set.
bool Has(HANDLE handle, unsigned right) noexcept
{
    const unsigned rights = OpenFiles::RightsOf(handle);
    if (rights == OpenFiles::None)
        return Fail(ERROR_INVALID_HANDLE);
    return (rights & right) != 0 || Fail(ERROR_ACCESS_DENIED);
}

// Repeats `transfer(done)`, a system call for what is still missing, until all is done, the call says 0 or,
// for what is no regular file, something came.
template <class Call>
BOOL Transfer(HANDLE handle, DWORD count, DWORD* done, Call transfer) noexcept
{
    const bool isRegular = (OpenFiles::RightsOf(handle) & OpenFiles::Regular) != 0;
    DWORD moved = 0;
    ssize_t step = 0;
    while (moved < count) {
        step = transfer(moved);
        if (step < 0 && errno == EINTR)
            continue;
        if (step <= 0)
            break;
        moved += static_cast<DWORD>(step);
        if (!isRegular)
            break;
    }
    if (done != nullptr)
        *done = moved;
    return step >= 0 ? TRUE : Fail(ErrorForErrno(errno));
}

bool AddWouldOverflow(int64 a, int64 b) noexcept
{
    return b > 0 && a > std::numeric_limits<int64>::max() - b;
}

// Where a distance is counted from; -1 with the error set.
int64 StartOf(HANDLE handle, DWORD method) noexcept
{
    if (method > FILE_END)
        return Fail(ERROR_INVALID_PARAMETER), -1;
    const int descriptor = OpenFiles::DescriptorOf(handle);
    struct stat state = {};
    const int64 start = method == FILE_BEGIN             ? 0
                        : method == FILE_CURRENT         ? lseek(descriptor, 0, SEEK_CUR)
                        : fstat(descriptor, &state) == 0 ? state.st_size
                                                         : -1;
    if (start < 0)
        Fail(ErrorForErrno(errno));
    return start;
}

} // namespace

HANDLE CreateFileA(const char* path, DWORD access, DWORD share, void*, DWORD disposition, DWORD attributes,
                   HANDLE model) noexcept
{
    OpenRequest request = {access, share, disposition, attributes, false, {}};
    request.hasModel = OpenFiles::RightsOf(model) != OpenFiles::None &&
                       fstat(OpenFiles::DescriptorOf(model), &request.model) == 0;
    const SystemPath name(path);
    OpenedFile file;
    HANDLE handle = INVALID_HANDLE_VALUE;
    DWORD error = !name.IsUsable()     ? ErrorOfUnusable(name)
                  : !request.IsValid() ? ERROR_INVALID_PARAMETER
                                       : OpenShared(name, request, file);
    if (error == ERROR_SUCCESS)
        error = Finish(file, request, handle);
    SetLastError(error);
    return handle;
}

BOOL CloseHandle(HANDLE handle) noexcept
{
    const int descriptor = OpenFiles::Remove(handle);
    if (descriptor < 0)
        return Fail(ERROR_INVALID_HANDLE);
    return close(descriptor) == 0 || errno == EINTR ? TRUE : Fail(ErrorForErrno(errno));
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept
{
    if (done != nullptr)
        *done = 0;
    if (!Has(handle, OpenFiles::Read))
        return FALSE;
    if (overlapped != nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    return Transfer(handle, count, done, [&](DWORD moved) {
        return read(OpenFiles::DescriptorOf(handle), static_cast<char*>(buffer) + moved, count - moved);
    });
}

BOOL WriteFile(HANDLE handle, const void* buffer, DWORD count, DWORD* done, void* overlapped) noexcept
{
    if (done != nullptr)
        *done = 0;
    if (!Has(handle, OpenFiles::Write))
        return FALSE;
    if (overlapped != nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    const HeldSignals held;
    return Transfer(handle, count, done, [&](DWORD moved) {
        const ssize_t step =
            write(OpenFiles::DescriptorOf(handle), static_cast<const char*>(buffer) + moved, count - moved);
        if (step < 0)
            held.TakeAway(errno);
        return step;
    });
}

BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method) noexcept
{
    if (!Has(handle, OpenFiles::Open))
        return FALSE;
    const int64 start = StartOf(handle, method);
    if (start < 0)
        return FALSE;
    if (AddWouldOverflow(start, distance.QuadPart))
        return Fail(ERROR_INVALID_PARAMETER);
    const int64 target = start + distance.QuadPart;
    if (target < 0)
        return Fail(ERROR_NEGATIVE_SEEK);
    if (lseek(OpenFiles::DescriptorOf(handle), target, SEEK_SET) < 0)
        return Fail(ErrorForErrno(errno));
    if (position != nullptr)
        position->QuadPart = target;
    return TRUE;
}

DWORD SetFilePointer(HANDLE handle, LONG low, LONG* high, DWORD method) noexcept
{
    LARGE_INTEGER distance = {low};
    if (high != nullptr)
        distance.QuadPart = static_cast<int64>(static_cast<uint64>(*high) << 32 | static_cast<DWORD>(low));
    LARGE_INTEGER before = {0};
    LARGE_INTEGER target;
    if (!SetFilePointerEx(handle, LARGE_INTEGER{0}, &before, FILE_CURRENT) ||
        !SetFilePointerEx(handle, distance, &target, method))
        return INVALID_SET_FILE_POINTER;
    if (high == nullptr && target.QuadPart > 0xFFFFFFFF) {
        SetFilePointerEx(handle, before, nullptr, FILE_BEGIN);
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (high != nullptr)
        *high = static_cast<LONG>(target.QuadPart >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(target.QuadPart);
}

BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size) noexcept
{
    if (!Has(handle, OpenFiles::Open))
        return FALSE;
    struct stat state = {};
    if (fstat(OpenFiles::DescriptorOf(handle), &state) != 0)
        return Fail(ErrorForErrno(errno));
    size->QuadPart = state.st_size;
    return TRUE;
}

DWORD GetFileSize(HANDLE handle, DWORD* high) noexcept
{
    LARGE_INTEGER size;
    if (!GetFileSizeEx(handle, &size))
        return INVALID_FILE_SIZE;
    if (high != nullptr)
        *high = static_cast<DWORD>(size.QuadPart >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(size.QuadPart);
}

BOOL SetEndOfFile(HANDLE handle) noexcept
{
    if (!Has(handle, OpenFiles::Write))
        return FALSE;
    const int descriptor = OpenFiles::DescriptorOf(handle);
    const off_t position = lseek(descriptor, 0, SEEK_CUR);
    return position < 0 ? Fail(ErrorForErrno(errno)) : SystemResult(ftruncate(descriptor, position));
}

BOOL FlushFileBuffers(HANDLE handle) noexcept
{
    return Has(handle, OpenFiles::Write) ? SystemResult(fsync(OpenFiles::DescriptorOf(handle))) : FALSE;
}

BOOL GetFileTime(HANDLE handle, FILETIME* created, FILETIME* accessed, FILETIME* written) noexcept
{
    if (!Has(handle, OpenFiles::Open))
        return FALSE;
    const auto facts = FactsOf(OpenFiles::DescriptorOf(handle), "");
    if (!facts)
        return Fail(ErrorForErrno(errno));
    if (created != nullptr)
        *created = facts->created;
    if (accessed != nullptr)
        *accessed = facts->accessed;
    if (written != nullptr)
        *written = facts->written;
    return TRUE;
}
