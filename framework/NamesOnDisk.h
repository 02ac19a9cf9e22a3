// What stands behind a name on disk. A name with a NUL inside stands for nothing: no file can have it.
#pragma once

#include "CString.h"
#include "platform/Platform.h"

namespace NamesOnDisk {

// The platform's attributes; INVALID_FILE_ATTRIBUTES, with the error set, when there is nothing.
inline DWORD Attributes(const CString& path)
{
    if (path.Find('\0') < 0)
        return GetFileAttributesA(path);
    SetLastError(ERROR_INVALID_NAME);
    return INVALID_FILE_ATTRIBUTES;
}

inline bool Exists(const CString& path) // a file or a folder
{
    return path.Find('\0') < 0 && _access(path, 0) == 0;
}

inline bool IsFolder(const CString& path)
{
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

inline bool IsFile(const CString& path)
{
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

} // namespace NamesOnDisk
