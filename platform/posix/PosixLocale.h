// The user's regional settings on POSIX systems, under the platform's names.
//
// An item is answered for the locale that LC_ALL names, else the variable of the item's category (LC_NUMERIC,
// LC_MONETARY, LC_TIME, LC_MEASUREMENT, LC_MESSAGES), else LANG, else for "C", which answers as en_US. An
// unknown locale answers for its language, an unknown language as en_US. A user's own settings win: the
// values of the registry key `Control Panel\International` under the item's name there (sDecimal, iNegNumber,
// ...; a sShortDate or sTimeFormat also decides the items that are read off it). A value that is longer than
// 79 characters, and a number that is none, does not count.
//
// A change of the environment and one made through the functions of PosixRegistry.h count at once, one made
// to the files by another process within a second. Any thread may call; answers come from memory and cost
// some ten nanoseconds.
//
// The data come from ICU by way of the module beside the library, which is loaded at the first question about
// a locale other than en_US. Without it every answer is that of en_US. Texts are in the process code
// page, with lookalikes as WideCharToMultiByte puts them in; a narrow no-break space between groups of digits
// becomes the plain one.
#pragma once

#include "BasicTypes.h"
#include "LocaleUtils.h" // the items that hosts know too

using LCID = DWORD;
using LCTYPE = DWORD;

inline constexpr DWORD ERROR_INVALID_FLAGS = 1004;

inline constexpr LCID LOCALE_USER_DEFAULT = 0x400;

inline constexpr LCTYPE LOCALE_NOUSEROVERRIDE =
    0x80000000;                                            // may be added to an item: the locale's own answer
inline constexpr LCTYPE LOCALE_RETURN_NUMBER = 0x20000000; // may be added to an item whose answer is a number

inline constexpr LCTYPE LOCALE_SSHORTDATE = 31;
inline constexpr LCTYPE LOCALE_SLONGDATE = 32;
inline constexpr LCTYPE LOCALE_SISO639LANGNAME = 89;
inline constexpr LCTYPE LOCALE_SISO3166CTRYNAME = 90;
inline constexpr LCTYPE LOCALE_STIMEFORMAT = 4099;

// Only LOCALE_USER_DEFAULT and the items above and in LocaleUtils.h. Returns the bytes written with the final
// NUL, or with size 0 the bytes needed; for a number 4. 0 is failure: ERROR_INVALID_FLAGS for an item that is
// not there or has no number, ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_PARAMETER.
int GetLocaleInfoA(LCID locale, LCTYPE item, char* buffer, int size);

struct NUMBERFMTA {
    UINT NumDigits;   // behind the decimal separator, 0..9, rounded half away from zero
    UINT LeadingZero; // 1: 0.5 is written with its zero; 0: without, unless nothing else would be left
    UINT Grouping;    // sizes of groups, the digit of the last group first: see below
    const char* lpDecimalSep;
    const char* lpThousandSep;
    UINT NegativeOrder; // 0 (1), 1 -1, 2 - 1, 3 1-, 4 1 -
};

// Writes a number, an optional minus and digits with an optional point among them, in the given form. Returns
// the bytes written with the final NUL, or with size 0 the bytes needed. 0 is failure:
// ERROR_INVALID_PARAMETER for another text, a missing format or one out of range (an order above 4 fails for
// negative numbers only), ERROR_INVALID_FLAGS for flags, ERROR_INSUFFICIENT_BUFFER. All of the buffer is
// written to: what stands behind the text, or after a failure in any of it, means nothing.
//   Grouping 3: 1,234,567   32: 12,34,567   30: 1234,567   0: 1234567
//   a 0 with digits behind it is an empty group: 203: 1,234,567,,89
int GetNumberFormatA(LCID locale, DWORD flags, const char* value, const NUMBERFMTA* format, char* buffer,
                     int size);
