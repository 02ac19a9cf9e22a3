#include <cerrno>
#include <sys/stat.h>

#include "platform/posix/Failures.h"
#include "platform/posix/FileFacts.h"
#include "platform/posix/OpenFiles.h"
#include "platform/posix/PosixErrors.h"

BOOL GetFileInformationByHandle(HANDLE handle, BY_HANDLE_FILE_INFORMATION* information) noexcept
{
    if (OpenFiles::RightsOf(handle) == OpenFiles::None)
        return Fail(ERROR_INVALID_HANDLE);
    const int descriptor = OpenFiles::DescriptorOf(handle);
    struct stat state = {};
    const auto facts = FactsOf(descriptor, "");
    if (!facts || fstat(descriptor, &state) != 0)
        return Fail(ErrorForErrno(errno));
    facts->CopyTo(*information);
    const uint64 volume = state.st_dev;
    const uint64 index = state.st_ino;
    information->dwVolumeSerialNumber = static_cast<DWORD>(volume ^ volume >> 32);
    information->nNumberOfLinks = static_cast<DWORD>(state.st_nlink);
    information->nFileIndexHigh = static_cast<DWORD>(index >> 32);
    information->nFileIndexLow = static_cast<DWORD>(index);
    return TRUE;
}
