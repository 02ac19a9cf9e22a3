// FILETIME: a moment as an unsigned 64-bit count of 100-nanosecond steps since 1 January 1601 UTC, in two
// halves.
#pragma once

#include "BasicTypes.h"

#ifdef _WIN32 // the system's own type, which its headers define
struct _FILETIME;
using FILETIME = _FILETIME;
#else
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
#endif
