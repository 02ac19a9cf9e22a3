// Opening, reading and writing files.
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/FileFacts.h"
#include "platform/posix/PosixErrors.h"
#include "platform/posix/ShareLocks.h"
#include "platform/posix/SystemPath.h"

namespace {

// A descriptor that is closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(other.m_number) { other.m_number = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            close(m_number);
    }
    int Number() const { return m_number; }
    explicit operator bool() const { return m_number >= 0; }

private:
    int m_number;
};

// What a file's HANDLE points to.
struct OpenFile {
    Descriptor descriptor;
    DWORD access;
};

HANDLE Refuse(DWORD error)
{
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

BOOL Fail(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

// The file behind a handle that grants `access`; else nullptr and the error is set.
OpenFile* FileOf(HANDLE handle, DWORD access)
{
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    auto* const file = static_cast<OpenFile*>(handle);
    if ((file->access & access) == access)
        return file;
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

bool TruncatesExisting(DWORD disposition)
{
    return disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING;
}

bool MakesMissing(DWORD disposition)
{
    return disposition == CREATE_NEW || disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
}

// Why a file that is there may not be opened so; ERROR_SUCCESS if it may.
DWORD ObjectionTo(const FileFacts& facts, const std::string& path, DWORD access, DWORD disposition)
{
    if (!facts.IsFolder() && path.back() == '/')
        return ERROR_INVALID_NAME;
    if (disposition == CREATE_NEW)
        return ERROR_FILE_EXISTS;
    if (facts.IsFolder())
        return ERROR_ACCESS_DENIED;
    const bool changes = (access & GENERIC_WRITE) != 0 || TruncatesExisting(disposition);
    if (facts.IsReadOnly() && changes)
        return ERROR_ACCESS_DENIED;
    return disposition == TRUNCATE_EXISTING && (access & GENERIC_WRITE) == 0 ? ERROR_INVALID_PARAMETER
                                                                             : ERROR_SUCCESS;
}

// Opens without waiting for the other end of a pipe. Writing alone asks for reading too, for locks need it.
Descriptor OpenExisting(const std::string& path, DWORD access, DWORD disposition)
{
    const bool writes = (access & GENERIC_WRITE) != 0 || TruncatesExisting(disposition);
    const int always = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    Descriptor file(open(path.c_str(), always | (writes ? O_RDWR : O_RDONLY)));
    if (!file && errno == EACCES && writes && (access & GENERIC_READ) == 0)
        file = Descriptor(open(path.c_str(), always | O_WRONLY));
    else if (!file && errno == EACCES && access == 0)
        file = Descriptor(open(path.c_str(), O_CLOEXEC | O_PATH));
    return file;
}

Descriptor MakeNew(const std::string& path, DWORD attributes)
{
    const mode_t mode = (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? 0444 : 0666;
    return Descriptor(open(path.c_str(), O_CLOEXEC | O_NOCTTY | O_RDWR | O_CREAT | O_EXCL, mode));
}

HANDLE HandleFor(Descriptor descriptor, const std::string& path, DWORD access, DWORD share, DWORD disposition,
                 bool isNew)
{
    if (!ShareLocks::Claim(descriptor.Number(), access, share))
        return Refuse(ERROR_SHARING_VIOLATION);
    if (!isNew && TruncatesExisting(disposition) && ftruncate(descriptor.Number(), 0) != 0 && errno != EINVAL)
        return Refuse(ErrorForPath(path, errno)); // EINVAL: no regular file, there is nothing to cut
    auto file = std::make_unique<OpenFile>(OpenFile{std::move(descriptor), access});
    const bool reportsExisting = disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
    SetLastError(!isNew && reportsExisting ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return file.release();
}

HANDLE OpenOrMake(const std::string& path, DWORD access, DWORD share, DWORD disposition, DWORD attributes)
{
    for (;;) {
        if (const auto facts = FactsOf(path)) {
            if (const DWORD objection = ObjectionTo(*facts, path, access, disposition);
                objection != ERROR_SUCCESS)
                return Refuse(objection);
            Descriptor existing = OpenExisting(path, access, disposition);
            if (existing)
                return HandleFor(std::move(existing), path, access, share, disposition, false);
            if (errno != ENOENT || !MakesMissing(disposition))
                return Refuse(ErrorForPath(path, errno));
        } else if (errno != ENOENT || !MakesMissing(disposition)) {
            return Refuse(ErrorForPath(path, errno));
        }
        Descriptor made = MakeNew(path, attributes);
        if (made)
            return HandleFor(std::move(made), path, access, share, disposition, true);
        if (errno != EEXIST) // somebody else was quicker: look again
            return Refuse(ErrorForPath(path, errno));
        struct stat link = {};
        if (lstat(path.c_str(), &link) == 0 && S_ISLNK(link.st_mode))
            return Refuse(ERROR_FILE_NOT_FOUND); // a link that leads nowhere
    }
}

// Where a handle would be after this move, or -1 with the error set.
int64 Move(HANDLE handle, int64 distance, DWORD method)
{
    constexpr int Origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const OpenFile* const file = FileOf(handle, 0);
    if (file == nullptr)
        return -1;
    if (method > FILE_END) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return -1;
    }
    const off_t position = lseek(file->descriptor.Number(), distance, Origins[method]);
    if (position < 0)
        SetLastError(errno == EINVAL ? ERROR_NEGATIVE_SEEK : ErrorForErrno(errno));
    return position;
}

// Repeats a read or write until all is done, nothing more comes, or it fails.
template <class Step>
BOOL Transfer(DWORD count, DWORD* done, Step step)
{
    DWORD total = 0;
    bool isFailed = false;
    while (total < count && !isFailed) {
        const ssize_t moved = step(total, count - total);
        if (moved == 0)
            break;
        isFailed = moved < 0 && errno != EINTR;
        total += static_cast<DWORD>(std::max<ssize_t>(moved, 0));
    }
    const DWORD error = isFailed ? ErrorForErrno(errno) : ERROR_SUCCESS;
    if (done != nullptr)
        *done = total;
    SetLastError(error);
    return isFailed ? FALSE : TRUE;
}

} // namespace

HANDLE CreateFileA(const char* path, DWORD access, DWORD share, void*, DWORD disposition, DWORD attributes,
                   HANDLE) noexcept
try {
    if (disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING)
        return Refuse(ERROR_INVALID_PARAMETER);
    const std::string system = SystemPath(path);
    if (system.empty())
        return Refuse(ERROR_PATH_NOT_FOUND);
    return OpenOrMake(system, access & (GENERIC_READ | GENERIC_WRITE), share, disposition, attributes);
} catch (const std::bad_alloc&) {
    return Refuse(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL CloseHandle(HANDLE handle) noexcept
{
    const std::unique_ptr<OpenFile> file(FileOf(handle, 0));
    return file != nullptr ? TRUE : FALSE;
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD count, DWORD* done, void*) noexcept
{
    if (done != nullptr)
        *done = 0;
    const OpenFile* const file = FileOf(handle, GENERIC_READ);
    if (file == nullptr)
        return FALSE;
    return Transfer(count, done, [&](DWORD at, DWORD left) {
        return read(file->descriptor.Number(), static_cast<char*>(buffer) + at, left);
    });
}

BOOL WriteFile(HANDLE handle, const void* buffer, DWORD count, DWORD* done, void*) noexcept
{
    if (done != nullptr)
        *done = 0;
    const OpenFile* const file = FileOf(handle, GENERIC_WRITE);
    if (file == nullptr)
        return FALSE;
    return Transfer(count, done, [&](DWORD at, DWORD left) {
        return write(file->descriptor.Number(), static_cast<const char*>(buffer) + at, left);
    });
}

BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD method) noexcept
{
    const int64 moved = Move(handle, distance.QuadPart, method);
    if (moved >= 0 && position != nullptr)
        position->QuadPart = moved;
    return moved >= 0 ? TRUE : FALSE;
}

DWORD SetFilePointer(HANDLE handle, LONG distance, LONG* distanceHigh, DWORD method) noexcept
{
    int64 whole = distance;
    if (distanceHigh != nullptr)
        whole = static_cast<int64>(static_cast<uint64>(static_cast<DWORD>(*distanceHigh)) << 32 |
                                   static_cast<DWORD>(distance));
    const int64 moved = Move(handle, whole, method);
    if (moved < 0)
        return INVALID_SET_FILE_POINTER;
    SetLastError(ERROR_SUCCESS); // for a position whose low half looks like a failure
    if (distanceHigh != nullptr)
        *distanceHigh = static_cast<LONG>(moved >> 32);
    return static_cast<DWORD>(moved);
}

BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size) noexcept
{
    const OpenFile* const file = FileOf(handle, 0);
    if (file == nullptr)
        return FALSE;
    struct stat facts = {};
    if (fstat(file->descriptor.Number(), &facts) != 0)
        return Fail(ErrorForErrno(errno));
    size->QuadPart = facts.st_size;
    return TRUE;
}

BOOL SetEndOfFile(HANDLE handle) noexcept
{
    const OpenFile* const file = FileOf(handle, GENERIC_WRITE);
    if (file == nullptr)
        return FALSE;
    const off_t position = lseek(file->descriptor.Number(), 0, SEEK_CUR);
    return position >= 0 && ftruncate(file->descriptor.Number(), position) == 0 ? TRUE
                                                                                : Fail(ErrorForErrno(errno));
}

BOOL FlushFileBuffers(HANDLE handle) noexcept
{
    const OpenFile* const file = FileOf(handle, GENERIC_WRITE);
    if (file == nullptr)
        return FALSE;
    return fsync(file->descriptor.Number()) == 0 || errno == EINVAL ? TRUE : Fail(ErrorForErrno(errno));
}
