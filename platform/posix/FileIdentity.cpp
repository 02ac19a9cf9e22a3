#include <cerrno>

#include "platform/posix/Failures.h"
#include "platform/posix/FileFacts.h"
#include "platform/posix/OpenFiles.h"
#include "platform/posix/PosixErrors.h"

BOOL GetFileInformationByHandle(HANDLE handle, BY_HANDLE_FILE_INFORMATION* information) noexcept
{
    if (OpenFiles::RightsOf(handle) == OpenFiles::None)
        return Fail(ERROR_INVALID_HANDLE);
    const int descriptor = OpenFiles::DescriptorOf(handle);
    const auto facts = FactsOf(descriptor, "");
    if (!facts)
        return Fail(ErrorForErrno(errno));
    facts->CopyTo(*information);
    information->dwVolumeSerialNumber = static_cast<DWORD>(facts->volume ^ facts->volume >> 32);
    information->nNumberOfLinks = facts->links;
    information->nFileIndexHigh = static_cast<DWORD>(facts->index >> 32);
    information->nFileIndexLow = static_cast<DWORD>(facts->index);
    return TRUE;
}
