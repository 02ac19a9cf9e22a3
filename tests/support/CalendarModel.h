// The calendar as a walk: slow, written down from the rules, for comparison.
#pragma once

#include <tuple>

namespace CalendarModel {

inline bool IsLeap(int year)
{
    if (year < 1 || year > 9999 || year % 4 != 0)
        return false;
    if (year < 1582)
        return true;
    return year % 100 != 0 || year % 400 == 0;
}

inline int CommonLength(int month)
{
    switch (month) {
    case 2:
        return 28;
    case 4:
    case 6:
    case 9:
    case 11:
        return 30;
    default:
        return 31;
    }
}

inline int MonthLength(int year, int month)
{
    if (year < 1 || year > 9999 || month < 1 || month > 12)
        return 0;
    if (year == 1582 && month == 10)
        return 21;
    return CommonLength(month) + (month == 2 && IsLeap(year) ? 1 : 0);
}

inline bool Exists(int year, int month, int day)
{
    return day >= 1 && day <= MonthLength(year, month);
}

inline int DayOfYear(int year, int month, int day)
{
    if (!Exists(year, month, day))
        return 0;
    int sum = day;
    for (int m = 1; m < month; ++m)
        sum += CommonLength(m) + (m == 2 && IsLeap(year) ? 1 : 0);
    if (year == 1582 && month >= 10 && day >= 15)
        sum -= 10;
    return sum;
}

// The count of days as it is defined, the tenfold subtraction of 1582 included.
inline int DayNumber(int year, int month, int day)
{
    if (!Exists(year, month, day))
        return 0;
    const int before = year - 1;
    int n = 365 * before + before / 4 - before / 100 + before / 400 + DayOfYear(year, month, day);
    n += before <= 1582 ? before / 100 - before / 400 : 12;
    return n > 577737 ? n - 10 : n;
}

inline int LeapYearsInCentury(int year, int month)
{
    int count = 0;
    for (int y = year / 100 * 100; y <= (month == 1 || month == 2 ? year - 1 : year); ++y)
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

// A date that goes from day to day as day numbers are read: October 1582 has 21 days.
struct Walker {
    int year = 1, month = 1, day = 1;
    void Next()
    {
        if (++day <= MonthLength(year, month))
            return;
        day = 1;
        if (++month <= 12)
            return;
        month = 1;
        ++year;
    }
    std::tuple<int, int, int> Date() const { return {year, month, day}; }
};

} // namespace CalendarModel
