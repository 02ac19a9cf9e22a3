// Which names text files are read from and written to.
#pragma once

#include "framework/NamesOnDisk.h"

// False, with the error that a folder gives, for a folder, a pipe and a device, and for a name with a NUL.
// Reading from a pipe, or writing to it, could wait for ever.
inline bool CanBeOpenedAsText(const CString& path)
{
    const DWORD attributes = NamesOnDisk::Attributes(path);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return GetLastError() != ERROR_INVALID_NAME;
    if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0)
        return true;
    SetLastError(ERROR_ACCESS_DENIED);
    return false;
}
