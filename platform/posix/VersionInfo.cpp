#include "platform/posix/Failures.h"

DWORD GetFileVersionInfoSizeA(const char*, DWORD*) noexcept
{
    SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
    return 0;
}

BOOL GetFileVersionInfoA(const char*, DWORD, DWORD, void*) noexcept
{
    return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
}

BOOL VerQueryValueA(const void*, const char*, void**, UINT*) noexcept
{
    return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
}
