#include "DateTime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <map>
#include <vector>

#include "CString.h"
#include "support/CalendarModel.h"
#include "support/Cases.h"
#include "support/RandomSource.h"

namespace {

using Parts = std::array<int, 6>; // year, month, day, hour, minute, second

Parts PartsOf(const DateTime& value)
{
    Parts parts;
    parts.fill(-2);
    value.Get(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
    return parts;
}

// A value with any two stored numbers, reached by arithmetic that is not range-checked; no time for -1.
DateTime Stored(int day, int second = 0)
{
    DateTime value(1, 1, 1, 0, 0, 0);
    value.AddDays(static_cast<int>(static_cast<unsigned>(day) - 1u));
    value.SetInvalidTime();
    value.SetTime(second / 3600, second / 60 % 60, second % 60);
    return value;
}

DateTime On(int year, int month, int day)
{
    return DateTime(year, month, day, 10, 20, 30);
}

// The numbers from low to high, and those that overflow first.
std::vector<int> NumbersAndExtremes(int low, int high)
{
    std::vector<int> numbers = {INT_MIN, -1900, INT_MAX - 1900, INT_MAX};
    for (int number = low; number <= high; ++number)
        numbers.push_back(number);
    return numbers;
}

// ---- the calendar over its whole range ------------------------------------------------------------------

// All dates that exist are met in their order: a second value walks along, from day to day.
TEST(Calendar, FollowsTheRulesForEveryDateAndNoOther)
{
    const auto years = NumbersAndExtremes(-1, 10001), months = NumbersAndExtremes(0, 13),
               days = NumbersAndExtremes(0, 32);
    const DateTime calendar, before = Stored(4711);
    DateTime walk = Stored(1);
    for (const int year : years) {
        const bool isLeap = CalendarModel::IsLeap(year);
        ASSERT_EQ(DateTime::IsLeapYear(year), isLeap) << year;
        ASSERT_EQ(DateTime::GetDaysInYear(year), year == 1582 ? 355 : isLeap ? 366 : 365) << year;
        for (const int month : months) {
            SCOPED_TRACE(testing::Message() << year << '-' << month);
            const int last = CalendarModel::MonthLength(year, month);
            ASSERT_EQ(DateTime::GetDaysInMonth(year, month), last);
            ASSERT_EQ(calendar.GetCenturyLeapYearCount(year, month),
                      CalendarModel::LeapYearsInCentury(year, month));
            const int weekdayBefore = last > 0 ? CalendarModel::Weekday(year, month, 1) - 2 : 0;
            for (const int day : days) {
                const int number = CalendarModel::DayNumber(year, month, day);
                ASSERT_EQ(calendar.DaysFromDay1(year, month, day), number) << day;
                ASSERT_EQ(DateTime::DayOfYear(year, month, day), CalendarModel::DayOfYear(year, month, day));
                DateTime date = before;
                date.SetDate(year, month, day);
                ASSERT_EQ(date, number != 0 ? Stored(number) : before) << day;
                const int weekday = number != 0 ? (weekdayBefore + day) % 7 + 1 : 0;
                ASSERT_EQ(DateTime::GetDayOfWeek(year, month, day), weekday) << day;
                if (number == 0)
                    continue;
                ASSERT_EQ(PartsOf(walk), (Parts{year, month, day, 0, 0, 0}));
                ASSERT_EQ(walk.GetYear(), year);
                ASSERT_EQ(walk.GetDayOfWeek(), weekday) << day;
                walk.AddDays(1);
            }
        }
    }
    EXPECT_EQ(walk, Stored(DateTime::MAXDAY + 1));
    const int codes[] = {5, 4, 2, 0};
    for (const int century : NumbersAndExtremes(-4, 101))
        EXPECT_EQ(calendar.GetCenturyCode(century), century < 0 || century > 25 ? -1 : codes[century % 4]);
    for (const int month : NumbersAndExtremes(13, 14))
        EXPECT_EQ(calendar.GetMonthCode(month), 0);
}

TEST(Calendar, KeepsTheFiguresThatStoredDatesDependOn)
{
    for (const auto& [year, month, day, number, y, m, d, weekday] : NumberCases<int, 8>("figures")) {
        SCOPED_TRACE(number);
        DateTime date = Stored(0);
        EXPECT_EQ(date.DaysFromDay1(year, month, day), number);
        date.SetDate(year, month, day);
        EXPECT_EQ(PartsOf(date), (Parts{y, m, d}));
        EXPECT_EQ(date.GetDayOfWeek(), weekday);
    }
}

// ---- the value ------------------------------------------------------------------------------------------

TEST(DateTimeValue, TakesEachHalfByItselfAndInTheConstructorBoth)
{
    for (const auto& [year, month, day, hour, minute, second, isDate, isTime] :
         NumberCases<int, 8>("halves")) {
        DateTime value(1900, 5, 6, 7, 8, 9);
        value.Set(year, month, day, hour, minute, second);
        const auto [y, m, d, h, min, s] = PartsOf(value);
        EXPECT_EQ((Parts{y, m, d}), (isDate != 0 ? Parts{year, month, day} : Parts{1900, 5, 6}));
        EXPECT_EQ((Parts{h, min, s}), (isTime != 0 ? Parts{hour, minute, second} : Parts{7, 8, 9}));
        EXPECT_EQ(DateTime(year, month, day, hour, minute, second),
                  isDate * isTime != 0 ? value : DateTime());
    }
}

TEST(DateTimeValue, IsChangedByOneNumber)
{
    const std::map<std::string, void (DateTime::*)(int)> changes = {
        {"SetYear", &DateTime::SetYear},     {"SetMonth", &DateTime::SetMonth},
        {"SetDay", &DateTime::SetDay},       {"AddYears", &DateTime::AddYears},
        {"AddWeeks", &DateTime::AddWeeks},   {"AddMonths", &DateTime::AddMonths},
        {"SetHour", &DateTime::SetHour},     {"SetMinute", &DateTime::SetMinute},
        {"SetSecond", &DateTime::SetSecond}, {"AddMonthsSameDay", &DateTime::AddMonthsSameDay}};
    for (const auto& [name, number, from, to] : Cases<4>("changes")) {
        SCOPED_TRACE(name + ' ' + number + ' ' + from);
        const auto changed = [change = changes.at(name)](DateTime value, int n) {
            (value.*change)(n);
            return value;
        };
        int year = 0, month = 0, day = 0;
        ASSERT_EQ(std::sscanf(from.c_str(), "%d-%d-%d", &year, &month, &day), 3);
        const DateTime value = changed(On(year, month, day), std::stoi(number));
        EXPECT_EQ(value.ConvertDateToText(false) + ' ' + value.ConvertTimeToText(false), to);
        // a missing time reads as 0, 0, -1: only its second can be set
        EXPECT_EQ(changed(DateTime(), 5), name == "SetSecond" ? Stored(0, 5) : DateTime());
        for (const int wild : {INT_MIN, -1, 10000, INT_MAX})
            EXPECT_TRUE(name.starts_with("Add") || changed(On(2024, 2, 29), wild) == On(2024, 2, 29));
    }
    DateTime value = On(2024, 2, 9);
    value.SetToLastDay();
    EXPECT_EQ(value, On(2024, 2, 29));
    value.SetToFirstDay();
    EXPECT_EQ(value, On(2024, 2, 1));
    value.SetDate(Stored(INT_MAX)); // the number is taken whatever it is
    value.SetToLastDay();
    EXPECT_EQ(value, Stored(INT_MAX, 37230));
    value = Stored(738888);
    value.AddWeeks(INT_MIN); // 7 x -2^31 wraps
    EXPECT_EQ(value, Stored(738888 + INT_MIN));
}

// The rule of times: a product of 32 bits, then steps of a day.
TEST(DateTimeValue, MovesTimesAsTheLoopDoes)
{
    RandomSource random;
    std::vector<int> counts = {0,      1,      -1,      23,      24,      -24,     86399,   86400,
                               -86401, 596523, -596524, INT_MAX, INT_MIN, 1 << 28, 35791395};
    while (counts.size() < 300)
        counts.push_back(static_cast<int>(random()));
    const struct {
        void (DateTime::*add)(int);
        unsigned unit;
    } operations[] = {{&DateTime::AddHours, 3600}, {&DateTime::AddMinutes, 60}, {&DateTime::AddSeconds, 1}};
    for (const int n : counts)
        for (const int second : {-1, 0, 1, 43200, 86399})
            for (const int day : {0, 1, 738888, 3652061, INT_MAX, INT_MIN})
                for (const auto& [add, unit] : operations) {
                    DateTime moved = Stored(day, second);
                    (moved.*add)(n);
                    auto date = static_cast<unsigned>(day);
                    auto total =
                        static_cast<int>(static_cast<unsigned>(n) * unit + static_cast<unsigned>(second));
                    for (; second >= 0 && total < 0; total += 86400)
                        --date;
                    for (; second >= 0 && total >= 86400; total -= 86400)
                        ++date;
                    ASSERT_EQ(moved, Stored(static_cast<int>(date), second < 0 ? -1 : total))
                        << n << " x " << unit << " from " << day << ", " << second;
                }
}

TEST(DateTimeValue, MovesDatesAsTheWalkDoes)
{
    RandomSource random;
    for (int round = 0; round < 20000; ++round) {
        // Around the switch of the calendars, at both ends of the range, anywhere; by a little or by much.
        const int years[] = {random.From(1581, 1583), random.From(0, 1) * 9996 + random.From(1, 3),
                             random.From(1, 9999)};
        DateTime base = On(years[round % 3], random.From(1, 12), random.From(1, 20));
        base.AddDays(random.From(0, 11));
        const auto [year, month, day, hour, minute, second] = PartsOf(base); // not always what was set
        const int reach = 3 << random.From(0, 15), n = random.From(-reach, reach);
        SCOPED_TRACE(testing::Message() << year << '-' << month << '-' << day << " by " << n);

        DateTime moved[] = {base, base, base}, expected[] = {base, base, base};
        moved[0].AddYears(n);
        moved[1].AddMonths(n);
        moved[2].AddMonthsSameDay(n);
        int toYear = year, toMonth = month + n;
        for (; toMonth > 12; toMonth -= 12)
            ++toYear;
        for (; toMonth < 1; toMonth += 12)
            --toYear;
        const int weekday = CalendarModel::Weekday(year, month, day);
        const auto from = CalendarModel::DaysOn(weekday, year, month),
                   to = CalendarModel::DaysOn(weekday, toYear, toMonth);
        const auto place = static_cast<std::size_t>(std::find(from.begin(), from.end(), day) - from.begin());
        if (n != 0) {
            expected[0].SetDate(std::clamp(year + n, 1, 9999), month, day);
            expected[1].SetDate(toYear, toMonth, std::min(day, CalendarModel::MonthLength(toYear, toMonth)));
            expected[2].SetDate(toYear, toMonth, place < to.size() ? to[place] : 0);
        }
        for (int i = 0; i < 3; ++i)
            ASSERT_EQ(moved[i], expected[i]) << i;
    }
}

TEST(DateTimeValue, ComparesWithMissingHalvesFirst)
{
    struct Ranked {
        DateTime value;
        int day, second; // 0 and -1 where they are missing
    };
    std::vector<Ranked> values;
    for (const int day : {INT_MIN, -1, 0, 1, 2, 738888, DateTime::MAXDAY, DateTime::MAXDAY + 1, INT_MAX})
        for (const int second : {-1, 0, 1, 86399})
            values.push_back({Stored(day, second), day < 1 || day > 3652061 ? 0 : day, second});
    const auto compare = [](int a, int b) { return (a > b) - (a < b); };
    for (const Ranked& a : values)
        for (const Ranked& b : values) {
            const int date = compare(a.day, b.day), time = compare(a.second, b.second);
            ASSERT_EQ(a.value.CompareDate(b.value), date);
            ASSERT_EQ(a.value.CompareTime(b.value), time);
            ASSERT_EQ(a.value < b.value, date < 0 || (date == 0 && time < 0));
            ASSERT_EQ(a.value > b.value, date > 0 || (date == 0 && time > 0));
            ASSERT_EQ(a.value == b.value, &a == &b); // two missing dates may be stored differently
        }
}

TEST(DateTimeSpans, ConvertBothWays)
{
    int64 seconds = -1;
    const DateTime first = Stored(1), last(9999, 12, 31, 23, 59, 59);
    DateTime::ConvertDeltaToSeconds(first, last, seconds);
    EXPECT_EQ(seconds, -315538070399);
    for (const DateTime& half : {Stored(738888, -1), Stored(0, 1)})
        for (const auto& [a, b] : {std::pair(last, half), std::pair(half, last)}) {
            DateTime::ConvertDeltaToSeconds(a, b, seconds = -1);
            EXPECT_EQ(seconds, 0);
        }
    for (const auto& [days, hours, minutes, rest, sum] : NumberCases<int64, 5>("sum of seconds")) {
        DateTime::ConvertToSeconds(static_cast<long>(days), static_cast<int>(hours),
                                   static_cast<int>(minutes), static_cast<int>(rest), seconds);
        EXPECT_EQ(seconds, sum);
    }
    for (auto row : NumberCases<int64, 5>("span")) {
        row[1] = static_cast<long>(row[1]);
        long days = -1;
        int hour = -1, minute = -1, second = -1;
        DateTime::ConvertFromSeconds(row[0], days, hour, minute, second);
        EXPECT_EQ((std::array<int64, 5>{row[0], days, hour, minute, second}), row);
    }
}

} // namespace
