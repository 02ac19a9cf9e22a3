// The platform's clock and its conversions between forms of a moment, on POSIX systems. The offset of local
// time comes from the system's time-zone data; a change of TZ counts at the next call.
#pragma once

#include <ctime>

#include "BasicTypes.h"
#include "FileTime.h"

struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek; // 0 = Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

// ---- the runtime library: seconds since 1 January 1970 UTC ----------------------------------------------
void _tzset() noexcept;
int64 _time64(int64* result) noexcept; // also stored in *result unless that is nullptr
// 0, or EINVAL (22) with every field -1: a null pointer, a time before 1970, a time after the year 3000
// (UTC). The offset is the one in force at that moment, in past years too.
int _localtime64_s(std::tm* result, const int64* time) noexcept;

DWORD GetTickCount() noexcept; // milliseconds since the system started, modulo 2^32
void Sleep(DWORD milliseconds) noexcept;

// ---- file times; a failure returns FALSE and leaves ERROR_INVALID_PARAMETER in GetLastError -------------
// Local time here is UTC shifted by the offset in force today, whatever the date; no range is checked, 64
// bits wrap.
BOOL FileTimeToLocalFileTime(const FILETIME* fileTime, FILETIME* localTime) noexcept;
BOOL LocalFileTimeToFileTime(const FILETIME* localTime, FILETIME* fileTime) noexcept;
BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* parts) noexcept; // fails from 2^63 on
// 1601 to 30827; a date or time that does not exist fails; the weekday is not looked at.
BOOL SystemTimeToFileTime(const SYSTEMTIME* parts, FILETIME* fileTime) noexcept;

// ---- OLE dates (see COleDateTime.h), years 100 to 9999; TRUE or FALSE -----------------------------------
// Rounded to the nearest second, half a second up, carrying into the day. FALSE for what is no number, and
// when rounding leads past the last day.
BOOL VariantTimeToSystemTime(double date, SYSTEMTIME* parts) noexcept;
// Milliseconds and the weekday are not looked at. Days 0 and 29 to 31 of a shorter month run over into the
// month beside it. Years 0 to 29 are taken as 2000 to 2029, 30 to 99 as 1930 to 1999.
BOOL SystemTimeToVariantTime(const SYSTEMTIME* parts, double* date) noexcept;
