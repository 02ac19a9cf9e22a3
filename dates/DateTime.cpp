#include "DateTime.h"

#include <algorithm>

#include "dates/WrappingArithmetic.h"

using namespace DateTimeCalendar;

namespace {

bool IsTime(int hour, int minute, int second)
{
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
}

int ThreeWay(int a, int b)
{
    return (a > b) - (a < b);
}

} // namespace

// ---- setting --------------------------------------------------------------------------------------------

DateTime::DateTime(int year, int month, int day, int hour, int minute, int second) noexcept
{
    if (IsDate(year, month, day) && IsTime(hour, minute, second))
        Set(year, month, day, hour, minute, second);
}

void DateTime::Set(int year, int month, int day, int hour, int minute, int second) noexcept
{
    SetDate(year, month, day);
    SetTime(hour, minute, second);
}

void DateTime::SetTime(int hour, int minute, int second) noexcept
{
    if (IsTime(hour, minute, second))
        m_nSecond = hour * SECS_PER_HOUR + minute * SECS_PER_MIN + second;
}

void DateTime::SetYear(int year) noexcept
{
    const Date date = ReadDate();
    SetDate(year, date.month, std::min(date.day, GetDaysInMonth(year, date.month)));
}

void DateTime::SetMonth(int month) noexcept
{
    const Date date = ReadDate();
    SetDate(date.year, month, std::min(date.day, GetDaysInMonth(date.year, month)));
}

void DateTime::SetDay(int day) noexcept
{
    const Date date = ReadDate();
    SetDate(date.year, date.month, day);
}

void DateTime::SetToFirstDay() noexcept
{
    SetDay(1);
}

void DateTime::SetToLastDay() noexcept
{
    const Date date = ReadDate();
    SetDate(date.year, date.month, GetDaysInMonth(date.year, date.month));
}

void DateTime::SetHour(int hour) noexcept
{
    SetTime(hour, GetMinute(), GetSecond());
}

void DateTime::SetMinute(int minute) noexcept
{
    SetTime(GetHour(), minute, GetSecond());
}

void DateTime::SetSecond(int second) noexcept
{
    SetTime(GetHour(), GetMinute(), second);
}

// ---- the parts ------------------------------------------------------------------------------------------

void DateTime::Get(int& year, int& month, int& day, int& hour, int& minute, int& second) const noexcept
{
    GetDate(year, month, day);
    GetTime(hour, minute, second);
}

void DateTime::GetTime(int& hour, int& minute, int& second) const noexcept
{
    hour = GetHour();
    minute = GetMinute();
    second = GetSecond();
}

// ---- the calendar ---------------------------------------------------------------------------------------

int DateTime::GetDaysInMonth(int year, int month) noexcept
{
    if (year < FirstYear || year > LastYear || month < 1 || month > MonthsPerYear)
        return 0;
    return MonthLength(year, month);
}

int DateTime::GetDaysInYear(int year) noexcept
{
    if (year == SwitchYear)
        return DaysPerYear - DaysSkipped;
    return IsLeapYear(year) ? DaysPerYear + 1 : DaysPerYear;
}

int DateTime::DayOfYear(int year, int month, int day) noexcept
{
    constexpr int DaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    if (!IsDate(year, month, day))
        return 0;
    const int dayOfYear = DaysBefore[month - 1] + (month > February && IsLeapYear(year)) + day;
    // Only from the 15th of each of the three months on: kept, the day numbers are built on it.
    const bool lowered = year == SwitchYear && month >= SwitchMonth && day >= FirstDayAfterSwitch;
    return lowered ? dayOfYear - DaysSkipped : dayOfYear;
}

// ---- the rule of the weekday ----------------------------------------------------------------------------

int DateTime::GetCenturyCode(int century) const noexcept
{
    constexpr int Codes[] = {5, 4, 2, 0};
    constexpr int LastCentury = 25; // the weekdays from 2600 on are shifted because of this limit
    return century >= 0 && century <= LastCentury ? Codes[century % 4] : -1;
}

int DateTime::GetMonthCode(int month) const noexcept
{
    constexpr int Codes[] = {0, 3, 3, 6, 1, 4, 6, 2, 5, 0, 3, 5};
    return month >= 1 && month <= MonthsPerYear ? Codes[month - 1] : 0;
}

int DateTime::GetCenturyLeapYearCount(int year, int month) const noexcept
{
    if (year < FirstYear || year > LastYear)
        return 0;
    const int yearsIntoCentury = year % 100 - (month == 1 || month == 2 ? 1 : 0);
    if (yearsIntoCentury < 0)
        return 0;
    return yearsIntoCentury / 4 + (IsLeapYear(year - year % 100) ? 1 : 0);
}

int DateTime::WeekdayByRule(const Date& date) noexcept
{
    const DateTime rule;
    const int sum = date.year % 100 + rule.GetMonthCode(date.month) + date.day +
                    rule.GetCenturyLeapYearCount(date.year, date.month) +
                    rule.GetCenturyCode(date.year / 100);
    return sum % DaysPerWeek + 1;
}

int DateTime::GetDayOfWeek(int year, int month, int day) noexcept
{
    return IsDate(year, month, day) ? WeekdayByRule({year, month, day}) : 0;
}

// ---- arithmetic -----------------------------------------------------------------------------------------

void DateTime::AddDays(int n) noexcept
{
    if (IsValidDate())
        m_nDay = Wrapping::Sum(m_nDay, n);
}

void DateTime::AddWeeks(int n) noexcept
{
    AddDays(Wrapping::Product(n, DaysPerWeek));
}

void DateTime::AddHours(int n) noexcept
{
    AddSeconds(Wrapping::Product(n, SECS_PER_HOUR));
}

void DateTime::AddMinutes(int n) noexcept
{
    AddSeconds(Wrapping::Product(n, SECS_PER_MIN));
}

void DateTime::AddSeconds(int n) noexcept
{
    if (!IsValidTime())
        return;
    const int total = Wrapping::Sum(m_nSecond, n);
    const bool beforeMidnight = total % SECS_PER_DAY < 0;
    m_nSecond = total % SECS_PER_DAY + (beforeMidnight ? SECS_PER_DAY : 0);
    m_nDay = Wrapping::Sum(m_nDay, total / SECS_PER_DAY - (beforeMidnight ? 1 : 0));
}

void DateTime::AddYears(int n) noexcept
{
    const Date date = ReadDate();
    const int64 year = std::clamp<int64>(int64{date.year} + n, FirstYear, LastYear);
    if (n != 0)
        SetDate(static_cast<int>(year), date.month, date.day);
}

void DateTime::AddMonthsSameDay(int n) noexcept
{
    const Date date = ReadDate();
    Date target = date;
    if (n == 0 || !MoveMonths(target, n))
        return;
    const int firstWeekday = WeekdayByRule({target.year, target.month, 1});
    const int firstDay = (WeekdayByRule(date) - firstWeekday + DaysPerWeek) % DaysPerWeek + 1;
    const int weeksBefore = (date.day - 1) / DaysPerWeek;
    SetDate(target.year, target.month, firstDay + weeksBefore * DaysPerWeek);
}

// ---- comparing ------------------------------------------------------------------------------------------

int DateTime::CompareDate(const DateTime& other) const noexcept
{
    return ThreeWay(DateRank(), other.DateRank());
}

int DateTime::CompareTime(const DateTime& other) const noexcept
{
    return ThreeWay(TimeRank(), other.TimeRank());
}

// ---- spans of seconds -----------------------------------------------------------------------------------

void DateTime::ConvertDeltaToSeconds(const DateTime& a, const DateTime& b, int64& seconds) noexcept
{
    seconds = 0;
    if (a.IsValid() && b.IsValid())
        seconds = int64{a.m_nDay - b.m_nDay} * SECS_PER_DAY + a.m_nSecond - b.m_nSecond;
}

void DateTime::ConvertToSeconds(long days, int hours, int minutes, int seconds, int64& result) noexcept
{
    const uint64 wholeDays =
        static_cast<uint64>(days) * SECS_PER_DAY; // wraps: a host's `long` may have 64 bits
    const int64 rest =
        int64{Wrapping::Product(hours, SECS_PER_HOUR)} + Wrapping::Product(minutes, SECS_PER_MIN) + seconds;
    result = static_cast<int64>(wholeDays + static_cast<uint64>(rest));
}

void DateTime::ConvertFromSeconds(int64 total, long& days, int& hours, int& minutes, int& seconds) noexcept
{
    const int sign = total < 0 ? -1 : 1;
    days = static_cast<long>(total / SECS_PER_DAY * sign);
    const int rest = static_cast<int>(total % SECS_PER_DAY) * sign;
    hours = rest / SECS_PER_HOUR;
    minutes = rest % SECS_PER_HOUR / SECS_PER_MIN;
    seconds = rest % SECS_PER_MIN;
}
