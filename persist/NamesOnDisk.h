// Whether a name is that of something on disk; never with a NUL inside, which no name can have.
#pragma once

#include "CString.h"
#include "platform/Platform.h"

namespace NamesOnDisk {

inline DWORD Attributes(const CString& path)
{
    return path.Find('\0') >= 0 ? INVALID_FILE_ATTRIBUTES : GetFileAttributesA(path);
}

inline bool IsThere(const CString& path)
{
    return Attributes(path) != INVALID_FILE_ATTRIBUTES;
}

inline bool IsFile(const CString& path)
{
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

} // namespace NamesOnDisk
