// The operations of DateTime that hosts call in loops, and the calendar below them. Part of DateTime.h.
//
// Both directions count whole days from 1 March of year 0, so that a leap day is the last of its year and any
// five months from March or August on have 153 days. A Gregorian count becomes a Julian one by giving back
// the leap days that the centuries dropped; years, months and days then follow from the Julian count alone.
#pragma once

#include "DateTime.h"

namespace DateTimeCalendar {

inline constexpr int FirstYear = 1;
inline constexpr int LastYear = 9999;
inline constexpr int MonthsPerYear = 12;
inline constexpr int February = 2;
inline constexpr int March = 3;
inline constexpr int ShortestMonth = 28; // outside the year of the switch
inline constexpr int DaysPerWeek = 7;

inline constexpr int DaysPerYear = 365;
inline constexpr unsigned DaysPerFourYears = 4 * DaysPerYear + 1;            // of the Julian calendar
inline constexpr unsigned DaysPerFourCenturies = 100 * DaysPerFourYears - 3; // of the Gregorian one
inline constexpr unsigned DaysPerFiveMonths = 31 + 30 + 31 + 30 + 31;
inline constexpr unsigned DaysFromMarchToNewYear = 2 * DaysPerFiveMonths; // March to July, August to December

// The switch to the Gregorian calendar: 4 October 1582 was followed by the 15th.
inline constexpr int SwitchYear = 1582;
inline constexpr int SwitchMonth = 10;
inline constexpr int FirstDayAfterSwitch = 15;
inline constexpr int DaysSkipped = 10;
inline constexpr int DaysInSwitchMonth = 31 - DaysSkipped;
inline constexpr int LastNumberBeforeSwitch = 577737; // 4 October 1582
inline constexpr int LastNumberOfSwitchMonth = LastNumberBeforeSwitch + DaysInSwitchMonth - 4; // "21 October"

// The leap days that the Gregorian rule drops from year 0 up to 1 March of the century's first year.
constexpr unsigned DroppedLeapDays(unsigned century) noexcept
{
    return century - century / 4;
}
// By 1582 that rule would have dropped 12 days; the switch skipped 10.
inline constexpr unsigned DroppedButNotSkipped = DroppedLeapDays(SwitchYear / 100) - DaysSkipped;

// The days from 1 March to the first of the month that comes `months` after March, and the other way round
// the month that a day lies in: 153 days in five months, as multiplications and shifts.
constexpr unsigned DaysBeforeMonth(unsigned months) noexcept
{
    return (979 * months + 16) / 32; // (153 * months + 2) / 5 for 0..11
}
constexpr unsigned MonthOfDay(unsigned days) noexcept
{
    return (535 * days + 331) / 16384; // (5 * days + 2) / 153 for 0..365
}
// Both against the divisions, for every day of a year.
constexpr bool MonthsHaveTheirLengths() noexcept
{
    unsigned month = 0;
    for (unsigned day = 0; day < 366; ++day) {
        if (month < 11 && day == (DaysPerFiveMonths * (month + 1) + 2) / 5)
            ++month;
        if (MonthOfDay(day) != month || DaysBeforeMonth(month) != (DaysPerFiveMonths * month + 2) / 5)
            return false;
    }
    return true;
}
static_assert(MonthsHaveTheirLengths());

} // namespace DateTimeCalendar

inline bool DateTime::IsLeapYear(int year) noexcept
{
    using namespace DateTimeCalendar;
    if (year % 4 != 0 || year < FirstYear || year > LastYear)
        return false;
    return year < SwitchYear || year % 100 != 0 || year % 400 == 0;
}

// A month of 1..12 of a year of 1..9999.
inline int DateTime::MonthLength(int year, int month) noexcept
{
    using namespace DateTimeCalendar;
    constexpr unsigned char Lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month == February)
        return IsLeapYear(year) ? ShortestMonth + 1 : ShortestMonth;
    if (year == SwitchYear && month == SwitchMonth)
        return DaysInSwitchMonth;
    return Lengths[month - 1];
}

// The day, or the month's last day where that is lower.
inline int DateTime::LoweredDay(int year, int month, int day) noexcept
{
    using namespace DateTimeCalendar;
    if (day <= ShortestMonth && year != SwitchYear) [[likely]]
        return day;
    const int last = MonthLength(year, month);
    return day < last ? day : last;
}

inline bool DateTime::IsDate(int year, int month, int day) noexcept
{
    using namespace DateTimeCalendar;
    if (year < FirstYear || year > LastYear || month < 1 || month > MonthsPerYear || day < 1)
        return false;
    return day == LoweredDay(year, month, day);
}

// Two rules that overlap, both kept: the days from the 15th on are lowered by the days skipped, and then
// every number after 4 October is.
constexpr int DateTime::NumberInAutumn1582(int julianNumber, int day) noexcept
{
    using namespace DateTimeCalendar;
    const int number = day >= FirstDayAfterSwitch ? julianNumber - DaysSkipped : julianNumber;
    return number > LastNumberBeforeSwitch ? number - DaysSkipped : number;
}

// Of a date that exists.
constexpr int DateTime::NumberOf(int year, int month, int day) noexcept
{
    using namespace DateTimeCalendar;
    const bool beforeMarch = month < March;
    const unsigned years = static_cast<unsigned>(beforeMarch ? year - 1 : year); // 0..9999
    const unsigned months = static_cast<unsigned>(beforeMarch ? month + 12 - March : month - March); // 0..11
    const unsigned count = DaysPerFourYears * years / 4 + DaysBeforeMonth(months) +
                           static_cast<unsigned>(day) - 1; // 306..3652498
    const int julianNumber = static_cast<int>(count - DaysFromMarchToNewYear) + MINDAY;
    if (year > SwitchYear)
        return julianNumber - static_cast<int>(DroppedLeapDays(years / 100) - DroppedButNotSkipped);
    if (year == SwitchYear && month >= SwitchMonth)
        return NumberInAutumn1582(julianNumber, day);
    return julianNumber;
}

// Of a number of MINDAY..MAXDAY.
constexpr DateTime::Date DateTime::DateOf(int number) noexcept
{
    using namespace DateTimeCalendar;
    unsigned count = static_cast<unsigned>(number - MINDAY) + DaysFromMarchToNewYear; // 306..3652366
    if (number > LastNumberOfSwitchMonth) {
        count -= DroppedButNotSkipped;
        count += DroppedLeapDays((4 * count + 3) / DaysPerFourCenturies);
    }
    const unsigned years = (4 * count + 3) / DaysPerFourYears;         // 0..9999
    const unsigned dayOfYear = (4 * count + 3) % DaysPerFourYears / 4; // 0..365
    const unsigned months = MonthOfDay(dayOfYear);                     // 0 = March ... 11 = February
    const unsigned day = dayOfYear - DaysBeforeMonth(months) + 1;
    const bool afterDecember = months + March > MonthsPerYear;
    return {static_cast<int>(afterDecember ? years + 1 : years),
            static_cast<int>(afterDecember ? months + March - MonthsPerYear : months + March),
            static_cast<int>(day)};
}

inline int DateTime::DaysFromDay1(int year, int month, int day) const noexcept
{
    return IsDate(year, month, day) ? NumberOf(year, month, day) : NoDay;
}

inline void DateTime::SetDate(int year, int month, int day) noexcept
{
    if (IsDate(year, month, day))
        m_nDay = NumberOf(year, month, day);
}

inline void DateTime::GetDate(int& year, int& month, int& day) const noexcept
{
    const Date date = ReadDate();
    year = date.year;
    month = date.month;
    day = date.day;
}

inline bool DateTime::IsBefore(const DateTime& a, const DateTime& b) noexcept
{
    if (b.IsValidDate()) [[likely]] { // then a lower number comes before it, whatever that stands for
        if (a.m_nDay < b.m_nDay)
            return true;
        if (a.m_nDay != b.m_nDay && a.m_nDay <= MAXDAY) [[likely]]
            return false;
    }
    if (a.DateRank() != b.DateRank())
        return a.DateRank() < b.DateRank();
    return a.TimeRank() < b.TimeRank();
}

// From 1600 to 2599 the weekday moves on with the day number; everywhere else it goes by the rule.
inline int DateTime::GetDayOfWeek() const noexcept
{
    constexpr int First = NumberOf(1600, 1, 1), End = NumberOf(2600, 1, 1);
    constexpr unsigned WeekdayOfFirst = 7; // a Saturday
    const unsigned days = static_cast<unsigned>(m_nDay) - First;
    if (days < static_cast<unsigned>(End - First))
        return static_cast<int>((days + WeekdayOfFirst - 1) % DateTimeCalendar::DaysPerWeek) + 1;
    return WeekdayByRule(ReadDate());
}

// False for a missing date and when the year would leave its range.
inline bool DateTime::MoveMonths(Date& date, int n) noexcept
{
    using namespace DateTimeCalendar;
    const int64 months = int64{date.year} * MonthsPerYear + (date.month - 1) + n; // since January of year 0
    if (date.year < FirstYear || months < FirstYear * MonthsPerYear ||
        months >= (LastYear + 1) * MonthsPerYear)
        return false;
    const auto sinceYear0 = static_cast<unsigned>(months);
    date.year = static_cast<int>(sinceYear0 / MonthsPerYear);
    date.month = static_cast<int>(sinceYear0 % MonthsPerYear) + 1;
    return true;
}

inline void DateTime::AddMonths(int n) noexcept
{
    Date date = ReadDate();
    if (n == 0 || !MoveMonths(date, n))
        return;
    m_nDay = NumberOf(date.year, date.month, LoweredDay(date.year, date.month, date.day));
}
