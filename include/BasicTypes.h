// The plain names of the interface. The widths of integers are the same on every platform: BYTE 8 bits, WORD
// 16, DWORD, UINT, LONG and BOOL 32, int64, uint64, LONGLONG and ULONGLONG 64; INT_PTR has that of a pointer.
// `int`, `long` and `int64` are three different types everywhere, so that overloads on them stay apart.
//
// So std::int64_t and std::uint64_t are types of their own where the standard library makes them of `long`.
// What takes a reference to a 64-bit number accepts them there as well: see LongInt64.
#pragma once

#include <concepts>
#include <cstddef>

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

// The same types in the system's headers on the original platform.
using BOOL = int;
using INT_PTR = std::ptrdiff_t;
using LONGLONG = int64;
using ULONGLONG = uint64;
using LPCSTR = const char*;
using DATE = double; // as in COleDateTime

// `long` and `unsigned long` where they have 8 bytes.
template <class T>
concept LongInt64 = std::same_as<T, long> && sizeof(T) == sizeof(int64);
template <class T>
concept LongUint64 = std::same_as<T, unsigned long> && sizeof(T) == sizeof(uint64);

static_assert(sizeof(WORD) == 2 && sizeof(UINT) == 4 && sizeof(DWORD) == 4 && sizeof(LONG) == 4);
