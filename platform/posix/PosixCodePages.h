// Narrow text in a code page against UTF-16, under the platform's names.
//
// The process code page, CP_ACP and CP_THREAD_ACP, is Windows-1252; CP_OEMCP is 437. 1252 and UTF-8 are built
// in. The other pages of one byte per character come from ICU by way of the module beside the library:
// 437, 737, 775, 850, 852, 855, 857, 858, 860 to 866, 869, 874, 1250 to 1258, 20866, 21866, 28591 to 28599,
// 28603, 28605. Without the module they convert as 1252, and the log gets one marker line. No other number is
// a page.
//
// Both operations: a negative `length` stands for all up to the NUL, and the NUL. The answer is the number of
// units written, or with `size` 0 the number needed. It is 0 for a failure:
//   ERROR_INVALID_PARAMETER       no text or one of length 0, a size below 0, a size without a buffer, text
//                                 and buffer at one place, a number that is no page
//   ERROR_INVALID_FLAGS           flags that are not named here, or not for this page
//   ERROR_INSUFFICIENT_BUFFER     the buffer then holds what fits, without a NUL
//   ERROR_NO_UNICODE_TRANSLATION  what a strict flag refuses
// The first question about a page from ICU costs a millisecond, all others go through tables in memory.
#pragma once

#include "BasicTypes.h"

using WCHAR = char16_t;

inline constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_OEMCP = 1;
inline constexpr UINT CP_THREAD_ACP = 3;
inline constexpr UINT CP_UTF8 = 65001;

inline constexpr DWORD MB_PRECOMPOSED = 1; // no effect; not for UTF-8
inline constexpr DWORD MB_ERR_INVALID_CHARS = 8;
// A byte without a character in its page becomes U+0081 and the like in 0x80 to 0x9F, elsewhere the character
// for private use that the page's published table gives it, or U+FFFD; the strict flag refuses the latter
// two. In UTF-8 each bad piece becomes one U+FFFD: the bytes that begin a sequence and are cut off, or the
// first two of one that is too long for its character, stands for a surrogate or lies beyond U+10FFFF; any
// other byte alone. A byte order mark is kept.
//   E2 82 -> FFFD    C3 28 -> FFFD 0028    E0 80 AF -> FFFD FFFD    F5 80 80 80 -> four FFFD
int MultiByteToWideChar(UINT page, DWORD flags, const char* text, int length, WCHAR* buffer,
                        int size) noexcept;

inline constexpr DWORD WC_ERR_INVALID_CHARS = 0x80;  // for UTF-8 only: a lone surrogate is refused
inline constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x400; // no lookalikes; not for UTF-8
// What the page lacks becomes a lookalike (a minus sign a hyphen, infinity 8) and, where there is none, the
// first byte of `defaultChar`, '?' when that is null: one for each unit, so two for a surrogate pair.
// `usedDefault` (may be null) is set to whether that happened. In UTF-8 a lone surrogate becomes U+FFFD, and
// both pointers must be null (else ERROR_INVALID_PARAMETER). The lookalikes of 1252 are those of the page's
// published table; of the other pages, those that ICU knows.
int WideCharToMultiByte(UINT page, DWORD flags, const WCHAR* text, int length, char* buffer, int size,
                        const char* defaultChar, int* usedDefault) noexcept;
