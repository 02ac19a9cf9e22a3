#include <cerrno>
#include <chrono>
#include <cmath>

#include "platform/posix/PosixPlatform.h"

namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr int64 SecondsPerDay = 86400;
constexpr int64 MillisecondsPerDay = SecondsPerDay * 1000;
constexpr uint64 FileTimeUnitsPerSecond = 10'000'000; // of 100 nanoseconds
constexpr uint64 FileTimeUnitsPerMillisecond = FileTimeUnitsPerSecond / 1000;
constexpr uint64 FileTimeUnitsPerDay = FileTimeUnitsPerSecond * SecondsPerDay;

constexpr sys_days SysDay(int year, unsigned month, unsigned day)
{
    return std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
}
constexpr sys_days FirstFileTimeDay = SysDay(1601, 1, 1);
constexpr sys_days FirstOleDay = SysDay(100, 1, 1);
constexpr sys_days LastOleDay = SysDay(9999, 12, 31);
constexpr sys_days OleDayZero = SysDay(1899, 12, 30);
constexpr int64 LastLocalTime = (SysDay(3001, 1, 1) - sys_days()).count() * SecondsPerDay - 1;
constexpr WORD LastSystemTimeYear = 30827;

int64 OffsetToday() // of local time, in seconds east of UTC
{
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    tzset();
    return localtime_r(&now, &local) == nullptr ? 0 : local.tm_gmtoff;
}

uint64 UnitsOf(const FILETIME& time)
{
    return uint64{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

FILETIME FileTimeOf(uint64 units)
{
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

void SetDay(SYSTEMTIME& parts, sys_days day)
{
    const std::chrono::year_month_day date(day);
    parts.wYear = static_cast<WORD>(int{date.year()});
    parts.wMonth = static_cast<WORD>(unsigned{date.month()});
    parts.wDay = static_cast<WORD>(unsigned{date.day()});
    parts.wDayOfWeek = static_cast<WORD>(std::chrono::weekday(day).c_encoding());
}

void SetTimeOfDay(SYSTEMTIME& parts, int64 milliseconds)
{
    const std::chrono::hh_mm_ss time{std::chrono::milliseconds(milliseconds)};
    parts.wHour = static_cast<WORD>(time.hours().count());
    parts.wMinute = static_cast<WORD>(time.minutes().count());
    parts.wSecond = static_cast<WORD>(time.seconds().count());
    parts.wMilliseconds = static_cast<WORD>(time.subseconds().count());
}

int64 SecondOfDay(const SYSTEMTIME& parts)
{
    return (int64{parts.wHour} * 60 + parts.wMinute) * 60 + parts.wSecond;
}

bool IsTimeOfDay(const SYSTEMTIME& parts)
{
    return parts.wHour < 24 && parts.wMinute < 60 && parts.wSecond < 60;
}

int FullOleYear(WORD year)
{
    constexpr int LastTwoDigitYearAfter2000 = 29;
    if (year >= 100)
        return year;
    return year + (year <= LastTwoDigitYearAfter2000 ? 2000 : 1900);
}

BOOL InvalidParameter()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

} // namespace

void _tzset() noexcept {} // every conversion here looks at the zone itself

int64 _time64(int64* result) noexcept
{
    const int64 now = std::time(nullptr);
    if (result != nullptr)
        *result = now;
    return now;
}

int _localtime64_s(std::tm* result, const int64* time) noexcept
{
    if (result == nullptr)
        return EINVAL;
    tzset(); // localtime_r alone would keep the zone of the first call
    if (time != nullptr && *time >= 0 && *time <= LastLocalTime) {
        const std::time_t seconds = *time;
        if (localtime_r(&seconds, result) != nullptr)
            return 0;
    }
    *result = {};
    result->tm_sec = result->tm_min = result->tm_hour = result->tm_mday = result->tm_mon = -1;
    result->tm_year = result->tm_wday = result->tm_yday = result->tm_isdst = -1;
    return EINVAL;
}

DWORD GetTickCount() noexcept
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

void Sleep(DWORD milliseconds) noexcept
{
    std::timespec left = {static_cast<std::time_t>(milliseconds / 1000),
                          static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

BOOL FileTimeToLocalFileTime(const FILETIME* fileTime, FILETIME* localTime) noexcept
{
    const uint64 offset = static_cast<uint64>(OffsetToday()) * FileTimeUnitsPerSecond;
    *localTime = FileTimeOf(UnitsOf(*fileTime) + offset);
    return TRUE;
}

BOOL LocalFileTimeToFileTime(const FILETIME* localTime, FILETIME* fileTime) noexcept
{
    const uint64 offset = static_cast<uint64>(OffsetToday()) * FileTimeUnitsPerSecond;
    *fileTime = FileTimeOf(UnitsOf(*localTime) - offset);
    return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* parts) noexcept
{
    const uint64 units = UnitsOf(*fileTime);
    if (units >> 63 != 0)
        return InvalidParameter();
    SetDay(*parts, FirstFileTimeDay + days(static_cast<int>(units / FileTimeUnitsPerDay)));
    SetTimeOfDay(*parts, static_cast<int64>(units % FileTimeUnitsPerDay / FileTimeUnitsPerMillisecond));
    return TRUE;
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* parts, FILETIME* fileTime) noexcept
{
    if (parts->wYear < 1601 || parts->wYear > LastSystemTimeYear || parts->wMonth > 12 || parts->wDay > 31)
        return InvalidParameter();
    const auto date =
        std::chrono::year(parts->wYear) / std::chrono::month(parts->wMonth) / std::chrono::day(parts->wDay);
    if (!date.ok() || !IsTimeOfDay(*parts) || parts->wMilliseconds >= 1000)
        return InvalidParameter();
    const auto day = static_cast<uint64>((sys_days(date) - FirstFileTimeDay).count());
    const auto milliseconds = static_cast<uint64>(SecondOfDay(*parts) * 1000 + parts->wMilliseconds);
    *fileTime = FileTimeOf(day * FileTimeUnitsPerDay + milliseconds * FileTimeUnitsPerMillisecond);
    return TRUE;
}

BOOL VariantTimeToSystemTime(double date, SYSTEMTIME* parts) noexcept
{
    constexpr double Lowest = static_cast<double>((FirstOleDay - OleDayZero).count() - 1);
    constexpr double Highest = static_cast<double>((LastOleDay - OleDayZero).count() + 1);
    if (!(date > Lowest && date < Highest))
        return FALSE;
    double wholeDays = 0;
    const double timeOfDay = std::fabs(std::modf(date, &wholeDays));
    // By way of milliseconds: half a second is seldom exact in a date, and has to count as half.
    const int64 milliseconds = std::llround(timeOfDay * static_cast<double>(MillisecondsPerDay));
    const int64 seconds = (milliseconds + 500) / 1000;
    const sys_days day =
        OleDayZero + days(static_cast<int>(wholeDays) + static_cast<int>(seconds / SecondsPerDay));
    if (day > LastOleDay)
        return FALSE;
    SetDay(*parts, day);
    SetTimeOfDay(*parts, seconds % SecondsPerDay * 1000);
    return TRUE;
}

BOOL SystemTimeToVariantTime(const SYSTEMTIME* parts, double* date) noexcept
{
    if (parts->wYear > 9999 || parts->wMonth < 1 || parts->wMonth > 12 || parts->wDay > 31 ||
        !IsTimeOfDay(*parts))
        return FALSE;
    const sys_days firstOfMonth = SysDay(FullOleYear(parts->wYear), parts->wMonth, 1);
    const sys_days day = firstOfMonth + days(parts->wDay - 1);
    if (day < FirstOleDay)
        return FALSE;
    const auto wholeDays = static_cast<double>((day - OleDayZero).count());
    const double timeOfDay = static_cast<double>(SecondOfDay(*parts)) / static_cast<double>(SecondsPerDay);
    *date = wholeDays < 0 ? wholeDays - timeOfDay : wholeDays + timeOfDay;
    return TRUE;
}
