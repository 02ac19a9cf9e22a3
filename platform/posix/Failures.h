// How an operation says that it failed: the error for GetLastError, and the answer that stands for failure.
#pragma once

#include "platform/posix/PosixPlatform.h"

inline BOOL Fail(DWORD error) noexcept
{
    SetLastError(error);
    return FALSE;
}

// TRUE for ERROR_SUCCESS; the last error is then left alone.
inline BOOL Answer(DWORD error) noexcept
{
    return error == ERROR_SUCCESS ? TRUE : Fail(error);
}
