// DateTime and the present moment.
#include "DateTime.h"

#include "platform/Platform.h"

namespace {

constexpr int TmFirstYear = 1900;

// False if the platform cannot tell.
bool GetLocalNow(std::tm& now) noexcept
{
    _tzset();
    const int64 time = _time64(nullptr);
    return _localtime64_s(&now, &time) == 0;
}

int NumberOfToday() noexcept
{
    int year = 0, month = 0, day = 0;
    DateTime::GetDateNow(year, month, day);
    return DateTime().DaysFromDay1(year, month, day);
}

} // namespace

void DateTime::SetToCurrent() noexcept
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    GetDateTimeNow(year, month, day, hour, minute, second);
    Set(year, month, day, hour, minute, second); // all 0 where the platform cannot tell: midnight and no date
}

void DateTime::SetToCurrentDate() noexcept
{
    int year = 0, month = 0, day = 0;
    GetDateNow(year, month, day);
    SetDate(year, month, day);
}

void DateTime::SetToCurrentTime() noexcept
{
    int hour = 0, minute = 0, second = 0;
    GetTimeNow(hour, minute, second);
    SetTime(hour, minute, second);
}

void DateTime::GetDateNow(int& year, int& month, int& day) noexcept
{
    int hour = 0, minute = 0, second = 0;
    GetDateTimeNow(year, month, day, hour, minute, second);
}

void DateTime::GetTimeNow(int& hour, int& minute, int& second) noexcept
{
    int year = 0, month = 0, day = 0;
    GetDateTimeNow(year, month, day, hour, minute, second);
}

void DateTime::GetDateTimeNow(int& year, int& month, int& day, int& hour, int& minute, int& second) noexcept
{
    year = month = day = hour = minute = second = 0;
    std::tm now = {};
    if (!GetLocalNow(now))
        return;
    year = now.tm_year + TmFirstYear;
    month = now.tm_mon + 1;
    day = now.tm_mday;
    hour = now.tm_hour;
    minute = now.tm_min;
    second = now.tm_sec;
}

bool DateTime::IsToday() const noexcept
{
    return IsValidDate() && m_nDay == NumberOfToday();
}

bool DateTime::IsYesterday() const noexcept
{
    return IsValidDate() && m_nDay + 1 == NumberOfToday();
}

bool DateTime::IsTomorrow() const noexcept
{
    return IsValidDate() && m_nDay - 1 == NumberOfToday();
}
