// What is behind a path, where a name with a NUL inside stands for nothing: no file can have it.
#pragma once

#include "CString.h"
#include "platform/Platform.h"

// The platform's attributes; INVALID_FILE_ATTRIBUTES, with the error set, when there is nothing.
inline DWORD AttributesOfPath(const CString& path)
{
    if (path.Find('\0') < 0)
        return GetFileAttributesA(path);
    SetLastError(ERROR_INVALID_NAME);
    return INVALID_FILE_ATTRIBUTES;
}

inline bool IsFolder(const CString& path)
{
    const DWORD attributes = AttributesOfPath(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// False, with the error that a folder gives, for a folder, a pipe and a device, and for a name with a NUL.
// Reading from a pipe, or writing to it, could wait for ever.
inline bool CanBeOpenedAsText(const CString& path)
{
    const DWORD attributes = AttributesOfPath(path);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return GetLastError() != ERROR_INVALID_NAME;
    if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0)
        return true;
    SetLastError(ERROR_ACCESS_DENIED);
    return false;
}
