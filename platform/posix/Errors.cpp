#include <cerrno>
#include <cstdio>
#include <cstring>
#include <strings.h>

#include "platform/posix/PosixErrors.h"
#include "platform/posix/PosixPlatform.h"

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

struct Pair {
    int posix;
    DWORD error;
    const char* text;
};

// The first row of an error number has its text, the first row of an errno its error number.
constexpr Pair Pairs[] = {
    {0, ERROR_SUCCESS, "The operation completed successfully."},
    {ENOENT, ERROR_FILE_NOT_FOUND, "The system cannot find the file specified."},
    {ENOTDIR, ERROR_PATH_NOT_FOUND, "The system cannot find the path specified."},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES, "The system cannot open the file."},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES, nullptr},
    {EACCES, ERROR_ACCESS_DENIED, "Access is denied."},
    {EPERM, ERROR_ACCESS_DENIED, nullptr},
    {EROFS, ERROR_ACCESS_DENIED, nullptr},
    {EISDIR, ERROR_ACCESS_DENIED, nullptr},
    {EBADF, ERROR_INVALID_HANDLE, "The handle is invalid."},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY, "Not enough memory is available to process this command."},
    {EXDEV, ERROR_NOT_SAME_DEVICE, "The system cannot move the file to a different disk drive."},
    {-1, ERROR_NO_MORE_FILES, "There are no more files."},
    {EWOULDBLOCK, ERROR_SHARING_VIOLATION,
     "The process cannot access the file because it is being used by another process."},
    {ETXTBSY, ERROR_SHARING_VIOLATION, nullptr},
    {-1, ERROR_FILE_EXISTS, "The file exists."},
    {EINVAL, ERROR_INVALID_PARAMETER, "The parameter is incorrect."},
    {-1, ERROR_BUFFER_OVERFLOW, "The file name is too long."},
    {ENOSPC, ERROR_DISK_FULL, "There is not enough space on the disk."},
    {EDQUOT, ERROR_DISK_FULL, nullptr},
    {EFBIG, ERROR_DISK_FULL, nullptr},
    {-1, ERROR_INSUFFICIENT_BUFFER, "The data area passed to a system call is too small."},
    {ENAMETOOLONG, ERROR_INVALID_NAME, "The filename, directory name, or volume label syntax is incorrect."},
    {-1, ERROR_NEGATIVE_SEEK,
     "An attempt was made to move the file pointer before the beginning of the file."},
    {ESPIPE, ERROR_SEEK_ON_DEVICE, "The file pointer cannot be set on the specified device or file."},
    {ENOTEMPTY, ERROR_DIR_NOT_EMPTY, "The directory is not empty."},
    {EEXIST, ERROR_ALREADY_EXISTS, "Cannot create a file when that file already exists."},
    {-1, ERROR_DIRECTORY, "The directory name is invalid."},
    {EFAULT, ERROR_NOACCESS, "Invalid access to memory location."},
    {-1, ERROR_NO_UNICODE_TRANSLATION,
     "No mapping for the Unicode character exists in the target multi-byte code page."},
    {EIO, ERROR_IO_DEVICE, "The request could not be performed because of an I/O device error."},
    {ELOOP, ERROR_CANT_RESOLVE_FILENAME, "The name of the file cannot be resolved by the system."},
};

} // namespace

DWORD GetLastError() noexcept
{
    return lastError;
}

void SetLastError(DWORD error) noexcept
{
    lastError = error;
}

DWORD ErrorForErrno(int posix) noexcept
{
    for (const Pair& pair : Pairs)
        if (pair.posix == posix)
            return pair.error;
    return ERROR_ACCESS_DENIED;
}

DWORD FormatMessageA(DWORD, const void*, DWORD message, DWORD, char* buffer, DWORD size,
                     std::va_list*) noexcept
{
    for (const Pair& pair : Pairs)
        if (pair.error == message && pair.text != nullptr) {
            const int length = std::snprintf(buffer, size, "%s\r\n", pair.text);
            if (length < static_cast<int>(size))
                return static_cast<DWORD>(length);
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return 0;
}

int _stricmp(const char* a, const char* b) noexcept
{
    return strcasecmp(a, b);
}
