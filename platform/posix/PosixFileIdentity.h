// Which file an open handle stands for, under the platform's names.
#pragma once

#include "FileTime.h"
#include "platform/posix/PosixPlatform.h"

struct BY_HANDLE_FILE_INFORMATION {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD dwVolumeSerialNumber;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD nNumberOfLinks;
    DWORD nFileIndexHigh;
    DWORD nFileIndexLow;
};

// Two handles with the same volume and index stand for the same file. The index of a file may be given to a
// new one as soon as it is deleted and no handle stands for it any more.
BOOL GetFileInformationByHandle(HANDLE handle, BY_HANDLE_FILE_INFORMATION* information) noexcept;
