// DateTime from and into the other forms of a moment.
#include "COleDateTime.h"
#include "DateTime.h"

#include "dates/WrappingArithmetic.h"
#include "framework/FailureMarkers.h"
#include "framework/OleDate.h"
#include "platform/Platform.h"

namespace {

constexpr int TmFirstYear = 1900;
constexpr int FirstUnixDay = 719165;            // 1 January 1970
constexpr int LastTmDay = FirstUnixDay + 24854; // 18 January 2038, the last whole day of 31 bits of seconds
constexpr int NoPart = -1;

} // namespace

void DateTime::Set(const std::tm& time) noexcept
{
    SetDate(Wrapping::Sum(time.tm_year, TmFirstYear), Wrapping::Sum(time.tm_mon, 1), time.tm_mday);
    SetTime(time.tm_hour, time.tm_min, time.tm_sec);
}

void DateTime::Set(const int64& secondsSince1970) noexcept
{
    std::tm local = {};
    if (_localtime64_s(&local, &secondsSince1970) == 0)
        Set(local);
    else
        SetInvalid();
}

void DateTime::Set(const FILETIME& fileTime) noexcept
{
    FILETIME local;
    SYSTEMTIME parts;
    if (FileTimeToLocalFileTime(&fileTime, &local) && FileTimeToSystemTime(&local, &parts))
        Set(parts.wYear, parts.wMonth, parts.wDay, parts.wHour, parts.wMinute, parts.wSecond);
    else
        SetInvalid();
}

void DateTime::Set(const COleDateTime& date) noexcept
{
    SYSTEMTIME parts;
    if (date.m_status != COleDateTime::valid)
        SetInvalid();
    else if (GetPartsOfOleDate(date.m_dt, parts))
        Set(parts.wYear, parts.wMonth, parts.wDay, parts.wHour, parts.wMinute, parts.wSecond);
    else
        Set(NoPart, NoPart, NoPart, NoPart, NoPart, NoPart);
}

void DateTime::Get(std::tm& time) const
{
    if (m_nDay < FirstUnixDay || m_nDay > LastTmDay) {
        FailureMarkers::Report("{3B9CEE83-5685-4EBF-AF53-16DECF9747B1}");
        return;
    }
    int year = 0, month = 0;
    Get(year, month, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec);
    time.tm_year = year - TmFirstYear;
    time.tm_mon = month - 1;
}

void DateTime::Get(int64& secondsSince1970) const noexcept
{
    if (IsValidDate() && m_nDay < FirstUnixDay)
        return;
    if (!IsValid())
        secondsSince1970 = 0;
    else // in 32 bits, which wrap
        secondsSince1970 = Wrapping::Sum(Wrapping::Product(m_nDay - FirstUnixDay, SECS_PER_DAY), m_nSecond);
}

void DateTime::Get(COleDateTime& date) const noexcept
{
    const Date day = ReadDate(); // parts of a missing half are out of range there
    date = COleDateTime(day.year, day.month, day.day, GetHour(), GetMinute(), GetSecond());
}
