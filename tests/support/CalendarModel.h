// The calendar as a walk: slow, written down from the rules, for comparison.
#pragma once

#include <vector>

namespace CalendarModel {

inline bool IsYear(int year)
{
    return year >= 1 && year <= 9999;
}

inline bool IsLeap(int year)
{
    return IsYear(year) && year % 4 == 0 && (year < 1582 || year % 100 != 0 || year % 400 == 0);
}

// All 31 days of October 1582, too.
inline int UsualLength(int year, int month)
{
    if (month == 2)
        return IsLeap(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

inline int MonthLength(int year, int month)
{
    if (!IsYear(year) || month < 1 || month > 12)
        return 0;
    return year == 1582 && month == 10 ? 21 : UsualLength(year, month);
}

inline int DayOfYear(int year, int month, int day)
{
    if (day < 1 || day > MonthLength(year, month))
        return 0;
    int sum = year == 1582 && month >= 10 && day >= 15 ? day - 10 : day;
    while (--month > 0)
        sum += UsualLength(year, month);
    return sum;
}

// The count of days as it is defined, the tenfold subtraction of 1582 included.
inline int DayNumber(int year, int month, int day)
{
    const int dayOfYear = DayOfYear(year, month, day), before = year - 1;
    if (dayOfYear == 0)
        return 0;
    int n = 365 * before + before / 4 - before / 100 + before / 400 + dayOfYear;
    n += before <= 1582 ? before / 100 - before / 400 : 12;
    return n > 577737 ? n - 10 : n;
}

inline int LeapYearsInCentury(int year, int month)
{
    int count = 0;
    for (int y = year / 100 * 100; IsYear(year) && y <= (month == 1 || month == 2 ? year - 1 : year); ++y)
        count += IsLeap(y) ? 1 : 0;
    return count;
}

// 1 = Sunday
inline int Weekday(int year, int month, int day)
{
    const int monthCodes[] = {0, 3, 3, 6, 1, 4, 6, 2, 5, 0, 3, 5};
    const int centuryCodes[] = {5, 4, 2, 0};
    const int century = year / 100;
    const int sum = year % 100 + monthCodes[month - 1] + day + LeapYearsInCentury(year, month) +
                    (century <= 25 ? centuryCodes[century % 4] : -1);
    return sum % 7 + 1;
}

// The days of a month that fall on a weekday.
inline std::vector<int> DaysOn(int weekday, int year, int month)
{
    std::vector<int> days;
    for (int day = 1; day <= MonthLength(year, month); ++day)
        if (Weekday(year, month, day) == weekday)
            days.push_back(day);
    return days;
}

} // namespace CalendarModel
