// The version information of program files. Programs of POSIX systems carry none: every question for it fails
// with error 1813.
#pragma once

#include "platform/posix/PosixPlatform.h"

DWORD GetFileVersionInfoSizeA(const char* path, DWORD* ignored) noexcept;
BOOL GetFileVersionInfoA(const char* path, DWORD ignored, DWORD size, void* block) noexcept;
BOOL VerQueryValueA(const void* block, const char* name, void** value, UINT* length) noexcept;
