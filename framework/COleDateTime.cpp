#include "COleDateTime.h"

#include "framework/OleDate.h"

namespace {

constexpr int FirstYear = 100;
constexpr int LastYear = 9999;

bool IsLeapYear(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

bool IsDay(int year, int month, int day)
{
    constexpr int Lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (year < FirstYear || year > LastYear || month < 1 || month > 12)
        return false;
    const int length = Lengths[month - 1] + (month == 2 && IsLeapYear(year));
    return day >= 1 && day <= length;
}

bool IsTime(int hour, int minute, int second)
{
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
}

int PartOf(const COleDateTime& date, WORD SYSTEMTIME::*part)
{
    SYSTEMTIME parts;
    if (date.m_status != COleDateTime::valid || !GetPartsOfOleDate(date.m_dt, parts))
        return -1;
    return parts.*part;
}

} // namespace

COleDateTime::COleDateTime(double date) noexcept : m_dt(date)
{
    SYSTEMTIME parts;
    if (!GetPartsOfOleDate(date, parts))
        m_status = invalid;
}

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept
{
    SetDateTime(year, month, day, hour, minute, second);
}

COleDateTime::DateTimeStatus COleDateTime::SetDateTime(int year, int month, int day, int hour, int minute,
                                                       int second) noexcept
{
    m_status = invalid;
    if (!IsDay(year, month, day) || !IsTime(hour, minute, second))
        return m_status;
    SYSTEMTIME parts = {};
    parts.wYear = static_cast<WORD>(year);
    parts.wMonth = static_cast<WORD>(month);
    parts.wDay = static_cast<WORD>(day);
    parts.wHour = static_cast<WORD>(hour);
    parts.wMinute = static_cast<WORD>(minute);
    parts.wSecond = static_cast<WORD>(second);
    if (SystemTimeToVariantTime(&parts, &m_dt) != FALSE)
        m_status = valid;
    return m_status;
}

COleDateTime::DateTimeStatus COleDateTime::SetDate(int year, int month, int day) noexcept
{
    return SetDateTime(year, month, day, 0, 0, 0);
}

COleDateTime::DateTimeStatus COleDateTime::SetTime(int hour, int minute, int second) noexcept
{
    return SetDateTime(1899, 12, 30, hour, minute, second);
}

int COleDateTime::GetYear() const noexcept
{
    return PartOf(*this, &SYSTEMTIME::wYear);
}

int COleDateTime::GetMonth() const noexcept
{
    return PartOf(*this, &SYSTEMTIME::wMonth);
}

int COleDateTime::GetDay() const noexcept
{
    return PartOf(*this, &SYSTEMTIME::wDay);
}

int COleDateTime::GetHour() const noexcept
{
    return PartOf(*this, &SYSTEMTIME::wHour);
}

int COleDateTime::GetMinute() const noexcept
{
    return PartOf(*this, &SYSTEMTIME::wMinute);
}

int COleDateTime::GetSecond() const noexcept
{
    return PartOf(*this, &SYSTEMTIME::wSecond);
}

int COleDateTime::GetDayOfWeek() const noexcept
{
    const int sundayIsZero = PartOf(*this, &SYSTEMTIME::wDayOfWeek);
    return sundayIsZero < 0 ? -1 : sundayIsZero + 1;
}
