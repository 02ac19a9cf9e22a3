// The integer names of the interface. Their widths are the same on every platform: BYTE 8 bits, WORD 16,
// DWORD, UINT and LONG 32, int64 and uint64 64. `int`, `long` and `int64` are three different types
// everywhere, so that overloads on them stay apart.
#pragma once

using int64 = long long;
using uint64 = unsigned long long;

using BYTE = unsigned char;
using WORD = unsigned short;
using UINT = unsigned int;
#ifdef _WIN32 // the same types as in the system's own headers, so that both may be included
using DWORD = unsigned long;
using LONG = long;
#else
using DWORD = unsigned int;
using LONG = int;
#endif

static_assert(sizeof(WORD) == 2 && sizeof(UINT) == 4 && sizeof(DWORD) == 4 && sizeof(LONG) == 4);
