#include "DateTime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include "support/CalendarModel.h"

namespace {

using Date = std::tuple<int, int, int>;

Date DateOf(const DateTime& value)
{
    int year = -1, month = -1, day = -1;
    value.GetDate(year, month, day);
    return {year, month, day};
}

Date TimeOf(const DateTime& value)
{
    int hour = -1, minute = -1, second = -1;
    value.GetTime(hour, minute, second);
    return {hour, minute, second};
}

// A value with any two stored numbers, reached by arithmetic that is not range-checked.
DateTime WithNumber(int number)
{
    DateTime value(1, 1, 1, 0, 0, 0);
    value.AddDays(static_cast<int>(static_cast<unsigned>(number) - 1u));
    return value;
}

constexpr int Extremes[] = {INT_MIN, INT_MIN + 1, -1900, -1, 0, INT_MAX - 1900, INT_MAX - 1, INT_MAX};

// ---- the calendar over its whole range ------------------------------------------------------------------

TEST(Calendar, ReadsEveryDayNumberAsTheWalkDoes)
{
    CalendarModel::Walker walker;
    DateTime date(1, 1, 1, 0, 0, 0);
    for (int number = 1; number <= DateTime::MAXDAY; ++number, walker.Next(), date.AddDays(1)) {
        ASSERT_EQ(DateOf(date), walker.Date()) << number;
        ASSERT_EQ(date.GetYear(), walker.year) << number;
    }
    EXPECT_EQ(walker.Date(), Date(10000, 1, 1));
    EXPECT_EQ(DateOf(date), Date(0, 0, 0));
}

TEST(Calendar, NumbersEveryDateByTheRule)
{
    const DateTime calendar;
    for (int year = 0; year <= 10000; ++year)
        for (int month = 0; month <= 13; ++month)
            for (int day = 0; day <= 32; ++day) {
                const int number = CalendarModel::DayNumber(year, month, day);
                ASSERT_EQ(calendar.DaysFromDay1(year, month, day), number)
                    << year << ' ' << month << ' ' << day;
                ASSERT_EQ(DateTime::DayOfYear(year, month, day), CalendarModel::DayOfYear(year, month, day));
                DateTime date = WithNumber(4711), expected = WithNumber(number != 0 ? number : 4711);
                date.SetDate(year, month, day);
                ASSERT_EQ(date, expected) << year << ' ' << month << ' ' << day;
            }
}

TEST(Calendar, GivesEveryDayTheWeekdayOfTheRule)
{
    CalendarModel::Walker walker;
    DateTime date(1, 1, 1, 0, 0, 0);
    int firstOfMonth = 0;
    for (int number = 1; number <= DateTime::MAXDAY; ++number, walker.Next(), date.AddDays(1)) {
        if (walker.day == 1)
            firstOfMonth = CalendarModel::Weekday(walker.year, walker.month, 1);
        const int weekday = (firstOfMonth - 1 + walker.day - 1) % 7 + 1;
        ASSERT_EQ(date.GetDayOfWeek(), weekday) << number;
        ASSERT_EQ(DateTime::GetDayOfWeek(walker.year, walker.month, walker.day), weekday) << number;
    }
}

TEST(Calendar, KeepsTheFiguresThatStoredDatesDependOn)
{
    const struct {
        int year, month, day, number;
        Date readBack;
        int weekday; // of what is read back
    } rows[] = {
        {1, 1, 1, 1, {1, 1, 1}, 1},
        {1500, 2, 29, 547569, {1500, 2, 29}, 5},
        {1582, 10, 4, 577737, {1582, 10, 4}, 3},
        {1582, 10, 5, 577728, {1582, 9, 25}, 1},
        {1582, 10, 14, 577737, {1582, 10, 4}, 3},
        {1582, 10, 15, 577728, {1582, 9, 25}, 1},
        {1582, 10, 21, 577734, {1582, 10, 1}, 7},
        {1582, 10, 22, 0, {0, 0, 0}, 6},
        {1582, 11, 1, 577755, {1582, 11, 1}, 3},
        {1582, 11, 14, 577768, {1582, 11, 14}, 2},
        {1582, 11, 15, 577759, {1582, 11, 5}, 7},
        {1582, 12, 31, 577805, {1582, 12, 21}, 4},
        {1583, 1, 1, 577816, {1583, 1, 1}, 1},
        {1899, 12, 30, 693596, {1899, 12, 30}, 7},
        {1970, 1, 1, 719165, {1970, 1, 1}, 5},
        {2000, 2, 29, 730181, {2000, 2, 29}, 3},
        {2023, 12, 31, 738887, {2023, 12, 31}, 1},
        {2024, 1, 1, 738888, {2024, 1, 1}, 2},
        {2599, 12, 31, 949267, {2599, 12, 31}, 3},
        {2600, 1, 1, 949268, {2600, 1, 1}, 1}, // really a Wednesday
        {9999, 12, 31, 3652061, {9999, 12, 31}, 5},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.year << '-' << row.month << '-' << row.day);
        DateTime date;
        EXPECT_EQ(date.DaysFromDay1(row.year, row.month, row.day), row.number);
        date.SetDate(row.year, row.month, row.day);
        EXPECT_EQ(DateOf(date), row.readBack);
        EXPECT_EQ(date.GetDayOfWeek(), row.weekday);
    }
}

TEST(Calendar, CountsLeapYearsAndLengthsAsTheWalkDoes)
{
    const DateTime calendar;
    for (int year = -1; year <= 10001; ++year) {
        ASSERT_EQ(DateTime::IsLeapYear(year), CalendarModel::IsLeap(year)) << year;
        ASSERT_EQ(DateTime::GetDaysInYear(year), year == 1582                  ? 355
                                                 : CalendarModel::IsLeap(year) ? 366
                                                                               : 365);
        for (int month = -1; month <= 14; ++month) {
            ASSERT_EQ(DateTime::GetDaysInMonth(year, month), CalendarModel::MonthLength(year, month)) << year;
            const bool inRange = year >= 1 && year <= 9999;
            ASSERT_EQ(calendar.GetCenturyLeapYearCount(year, month),
                      inRange ? CalendarModel::LeapYearsInCentury(year, month) : 0)
                << year << ' ' << month;
        }
    }
    const int codes[] = {5, 4, 2, 0};
    for (int century = -4; century <= 101; ++century)
        EXPECT_EQ(calendar.GetCenturyCode(century), century < 0 || century > 25 ? -1 : codes[century % 4]);
}

TEST(Calendar, AnswersNeutrallyOutOfRange)
{
    const DateTime calendar;
    for (const int wild : Extremes) {
        SCOPED_TRACE(wild);
        EXPECT_FALSE(DateTime::IsLeapYear(wild));
        EXPECT_EQ(DateTime::GetDaysInYear(wild), 365);
        EXPECT_EQ(DateTime::GetDaysInMonth(wild, 1) + DateTime::GetDaysInMonth(2000, wild), 0);
        EXPECT_EQ(calendar.GetCenturyLeapYearCount(wild, 3), 0);
        EXPECT_EQ(calendar.GetMonthCode(wild), 0);
        EXPECT_EQ(calendar.GetCenturyCode(wild), wild == 0 ? 5 : -1);
        for (const auto& [year, month, day] : {Date(wild, 1, 1), Date(2000, wild, 1), Date(2000, 1, wild)}) {
            EXPECT_EQ(calendar.DaysFromDay1(year, month, day), 0);
            EXPECT_EQ(DateTime::DayOfYear(year, month, day), 0);
            EXPECT_EQ(DateTime::GetDayOfWeek(year, month, day), 0);
        }
    }
    EXPECT_EQ(calendar.GetDayOfWeek(), 6);
    EXPECT_EQ(calendar.GetCenturyLeapYearCount(10000, 3), 0);
}

// ---- the value ------------------------------------------------------------------------------------------

TEST(DateTimeSetters, TakeEachHalfByItselfAndTheConstructorBoth)
{
    const struct {
        int year, month, day, hour, minute, second;
        bool date, time;
    } rows[] = {
        {2024, 2, 29, 23, 59, 59, true, true},    {2023, 2, 29, 0, 0, 0, false, true},
        {2024, 1, 1, 24, 0, 0, true, false},      {2024, 1, 1, 0, 60, 0, true, false},
        {2024, 1, 1, 0, 0, 60, true, false},      {2024, 1, 1, -1, 0, 0, true, false},
        {2024, 1, 1, 0, INT_MIN, 0, true, false}, {0, 1, 1, 0, 0, 0, false, true},
        {10000, 1, 1, 0, 0, 0, false, true},      {2024, 13, 1, 0, 0, -1, false, false},
        {1582, 10, 25, 1, 1, 1, false, true},     {INT_MIN, INT_MIN, INT_MAX, INT_MAX, 0, 0, false, false},
    };
    const DateTime before(1900, 5, 6, 7, 8, 9);
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.year << '-' << row.month << '-' << row.day << ' ' << row.hour);
        DateTime value = before;
        value.Set(row.year, row.month, row.day, row.hour, row.minute, row.second);
        const Date date(row.year, row.month, row.day), time(row.hour, row.minute, row.second);
        EXPECT_EQ(DateOf(value), row.date ? date : DateOf(before));
        EXPECT_EQ(TimeOf(value), row.time ? time : TimeOf(before));
        const DateTime made(row.year, row.month, row.day, row.hour, row.minute, row.second);
        EXPECT_EQ(made, row.date && row.time ? value : DateTime());
    }
}

TEST(DateTimeSetters, ChangeOnePart)
{
    const DateTime leapDay(2024, 2, 29, 10, 20, 30);
    const auto change = [&](auto setter, int argument, DateTime value) {
        (value.*setter)(argument);
        return value;
    };
    EXPECT_EQ(DateOf(change(&DateTime::SetYear, 2025, leapDay)), Date(2025, 2, 28));
    EXPECT_EQ(DateOf(change(&DateTime::SetMonth, 4, DateTime(2024, 5, 31, 0, 0, 0))), Date(2024, 4, 30));
    EXPECT_EQ(DateOf(change(&DateTime::SetDay, 30, leapDay)), Date(2024, 2, 29));
    EXPECT_EQ(TimeOf(change(&DateTime::SetHour, 23, leapDay)), Date(23, 20, 30));
    EXPECT_EQ(TimeOf(change(&DateTime::SetMinute, 59, leapDay)), Date(10, 59, 30));
    EXPECT_EQ(TimeOf(change(&DateTime::SetSecond, 0, leapDay)), Date(10, 20, 0));
    EXPECT_EQ(change(&DateTime::SetHour, 5, DateTime()), DateTime());
    EXPECT_EQ(change(&DateTime::SetMinute, 5, DateTime()), DateTime());
    EXPECT_EQ(TimeOf(change(&DateTime::SetSecond, 5, DateTime())), Date(0, 0, 5));
    for (const auto setter : {&DateTime::SetYear, &DateTime::SetMonth, &DateTime::SetDay}) {
        EXPECT_EQ(change(setter, 1, DateTime()), DateTime());
        for (const int wild : Extremes)
            EXPECT_EQ(change(setter, wild, leapDay), leapDay) << wild;
    }
    for (const auto setter : {&DateTime::SetHour, &DateTime::SetMinute, &DateTime::SetSecond})
        for (const int wild : {INT_MIN, -1, 60, INT_MAX})
            EXPECT_EQ(change(setter, wild, leapDay), leapDay) << wild;
    DateTime value = leapDay;
    value.SetToFirstDay();
    EXPECT_EQ(DateOf(value), Date(2024, 2, 1));
    value.SetToLastDay();
    EXPECT_EQ(value, leapDay);
    value.SetInvalidDate();
    value.SetToLastDay();
    EXPECT_EQ(DateOf(value), Date(0, 0, 0));
}

// ---- arithmetic -----------------------------------------------------------------------------------------

struct Stored {
    int day, second;
};

// As it is defined: a product of 32 bits, then steps of a day.
Stored AddTimeByLoop(Stored value, int n, int unit)
{
    if (n == 0 || value.second < 0 || value.second >= 86400)
        return value;
    auto total = static_cast<int>(static_cast<unsigned>(n) * static_cast<unsigned>(unit) +
                                  static_cast<unsigned>(value.second));
    for (; total < 0; total += 86400)
        value.day = static_cast<int>(static_cast<unsigned>(value.day) - 1u);
    for (; total >= 86400; total -= 86400)
        value.day = static_cast<int>(static_cast<unsigned>(value.day) + 1u);
    value.second = total;
    return value;
}

TEST(DateTimeArithmetic, MovesTimesAsTheLoopDoes)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::vector<int> counts = {0,       1,           -1,      23,       24,
                               -24,     86399,       86400,   -86400,   -86401,
                               596523,  596524,      -596524, INT_MAX,  INT_MAX - 86399,
                               INT_MIN, INT_MIN + 1, 1 << 28, 35791394, 35791395};
    while (counts.size() < 300)
        counts.push_back(static_cast<int>(random()));
    for (const int n : counts)
        for (const int second : {0, 1, 43200, 86399})
            for (const int day : {0, 1, 738888, 3652061, INT_MAX, INT_MIN}) {
                DateTime base = WithNumber(day);
                base.SetTime(second / 3600, second / 60 % 60, second % 60);
                const struct {
                    void (DateTime::*add)(int);
                    int unit;
                } operations[] = {
                    {&DateTime::AddHours, 3600}, {&DateTime::AddMinutes, 60}, {&DateTime::AddSeconds, 1}};
                for (const auto& operation : operations) {
                    const Stored expected = AddTimeByLoop({day, second}, n, operation.unit);
                    DateTime moved = base, wanted = WithNumber(expected.day);
                    wanted.SetTime(expected.second / 3600, expected.second / 60 % 60, expected.second % 60);
                    (moved.*operation.add)(n);
                    ASSERT_EQ(moved, wanted)
                        << n << " x " << operation.unit << " from " << day << ", " << second;
                }
            }
    DateTime noTime;
    noTime.SetDate(2024, 1, 1);
    DateTime moved = noTime;
    moved.AddMinutes(5);
    EXPECT_EQ(moved, noTime);
    DateTime noDate;
    noDate.SetTime(0, 30, 0);
    noDate.AddHours(-1); // the day number goes to -1, so one day later it is 0 again
    noDate.AddHours(1);
    DateTime again;
    again.SetTime(0, 30, 0);
    EXPECT_EQ(noDate, again);
}

// The date of a move by months, by single steps; the year 0 for none.
CalendarModel::Walker MoveMonthsByLoop(CalendarModel::Walker date, int n)
{
    int64 month = int64{date.month} + n, year = date.year;
    for (; month > 12; month -= 12)
        ++year;
    for (; month < 1; month += 12)
        --year;
    date.year = year < 1 || year > 9999 ? 0 : static_cast<int>(year);
    date.month = static_cast<int>(month);
    return date;
}

int PlaceInMonth(CalendarModel::Walker date)
{
    int place = 0;
    for (int day = 1; day <= date.day; ++day)
        place += CalendarModel::Weekday(date.year, date.month, day) ==
                 CalendarModel::Weekday(date.year, date.month, date.day);
    return place;
}

int DayOfPlace(int year, int month, int weekday, int place)
{
    for (int day = 1; day <= CalendarModel::MonthLength(year, month); ++day)
        if (CalendarModel::Weekday(year, month, day) == weekday && --place == 0)
            return day;
    return 0;
}

TEST(DateTimeArithmetic, MovesDatesAsTheWalkDoes)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto number = [&](int low, int high) { return std::uniform_int_distribution<>(low, high)(random); };
    const int spread[] = {1, 14, 400, 120000};
    for (int round = 0; round < 20000; ++round) {
        CalendarModel::Walker date;
        date.year = round % 4 == 0   ? number(1581, 1583)
                    : round % 4 == 1 ? number(0, 1) * 9996 + number(1, 3)
                                     : number(1, 9999);
        date.month = number(1, 12);
        date.day = number(1, CalendarModel::MonthLength(date.year, date.month));
        DateTime base;
        base.SetDate(date.year, date.month, date.day);
        base.GetDate(date.year, date.month, date.day); // in autumn 1582 another one
        const int reach = spread[round % 4 == 0 ? round / 4 % 4 : 3];
        const int n = number(-reach, reach);
        const auto target = MoveMonthsByLoop(date, n);
        SCOPED_TRACE(testing::Message() << date.year << '-' << date.month << '-' << date.day << " by " << n);

        DateTime expected = base, moved = base;
        if (n != 0 && target.year != 0) {
            const int last = CalendarModel::MonthLength(target.year, target.month);
            expected.SetDate(
                WithNumber(CalendarModel::DayNumber(target.year, target.month, std::min(date.day, last))));
        }
        moved.AddMonths(n);
        ASSERT_EQ(moved, expected) << "AddMonths";

        expected = moved = base;
        const int weekday = CalendarModel::Weekday(date.year, date.month, date.day);
        const int day = DayOfPlace(target.year, target.month, weekday, PlaceInMonth(date));
        if (n != 0 && day != 0)
            expected.SetDate(target.year, target.month, day);
        moved.AddMonthsSameDay(n);
        ASSERT_EQ(moved, expected) << "AddMonthsSameDay";

        expected = moved = base;
        if (n != 0)
            expected.SetDate(std::clamp(date.year + n, 1, 9999), date.month, date.day);
        moved.AddYears(n);
        ASSERT_EQ(moved, expected) << "AddYears";
    }
}

TEST(DateTimeArithmetic, TakesTheExamplesAndTheExtremes)
{
    const auto moved = [](auto add, int n, Date from) {
        DateTime date;
        date.SetDate(std::get<0>(from), std::get<1>(from), std::get<2>(from));
        (date.*add)(n);
        return DateOf(date);
    };
    EXPECT_EQ(moved(&DateTime::AddYears, 1, {2024, 2, 29}), Date(2024, 2, 29));
    EXPECT_EQ(moved(&DateTime::AddYears, INT_MAX, {2023, 5, 6}), Date(9999, 5, 6));
    EXPECT_EQ(moved(&DateTime::AddYears, INT_MIN, {2023, 5, 6}), Date(1, 5, 6));
    EXPECT_EQ(moved(&DateTime::AddMonths, 1, {2023, 1, 31}), Date(2023, 2, 28));
    EXPECT_EQ(moved(&DateTime::AddMonths, 1, {9999, 12, 31}), Date(9999, 12, 31));
    EXPECT_EQ(moved(&DateTime::AddMonths, -1, {1, 1, 31}), Date(1, 1, 31));
    EXPECT_EQ(moved(&DateTime::AddMonths, -1, {2024, 3, 31}), Date(2024, 2, 29));
    EXPECT_EQ(moved(&DateTime::AddMonthsSameDay, 1, {2024, 1, 9}), Date(2024, 2, 13));
    EXPECT_EQ(moved(&DateTime::AddMonthsSameDay, 1, {2024, 5, 31}),
              Date(2024, 5, 31)); // no fifth Friday in June
    EXPECT_EQ(moved(&DateTime::AddWeeks, -1, {2024, 3, 5}), Date(2024, 2, 27));
    EXPECT_EQ(moved(&DateTime::AddWeeks, INT_MIN, {2024, 3, 5}), Date(0, 0, 0)); // 7 x -2^31 wraps to -2^31
    for (const int n : {INT_MIN, INT_MAX}) {
        EXPECT_EQ(moved(&DateTime::AddMonths, n, {2024, 3, 5}), Date(2024, 3, 5));
        EXPECT_EQ(moved(&DateTime::AddMonthsSameDay, n, {2024, 3, 5}), Date(2024, 3, 5));
        EXPECT_EQ(moved(&DateTime::AddDays, n, {2024, 3, 5}), Date(0, 0, 0));
    }
    for (const auto add : {&DateTime::AddDays, &DateTime::AddWeeks, &DateTime::AddMonths,
                           &DateTime::AddMonthsSameDay, &DateTime::AddYears}) {
        DateTime missing;
        (missing.*add)(1);
        EXPECT_EQ(missing, DateTime());
    }
}

// ---- comparing ------------------------------------------------------------------------------------------

TEST(DateTimeComparison, PutsMissingHalvesFirst)
{
    std::vector<DateTime> values;
    for (const int day : {INT_MIN, -1, 0, 1, 2, 738888, DateTime::MAXDAY, DateTime::MAXDAY + 1, INT_MAX})
        for (const int second : {-1, 0, 1, 86399}) {
            values.push_back(WithNumber(day));
            values.back().SetInvalidTime();
            if (second >= 0)
                values.back().SetTime(second / 3600, second / 60 % 60, second % 60);
        }
    const auto compare = [](bool validA, bool validB, auto a, auto b) {
        if (!validA || !validB)
            return int{validA} - int{validB};
        return a < b ? -1 : a == b ? 0 : 1;
    };
    for (const DateTime& a : values)
        for (const DateTime& b : values) {
            const int date = compare(a.IsValidDate(), b.IsValidDate(), DateOf(a), DateOf(b));
            const int time = compare(a.IsValidTime(), b.IsValidTime(), TimeOf(a), TimeOf(b));
            ASSERT_EQ(a.CompareDate(b), date);
            ASSERT_EQ(a.CompareTime(b), time);
            ASSERT_EQ(a < b, date != 0 ? date < 0 : time < 0);
            ASSERT_EQ(a > b, date != 0 ? date > 0 : time > 0);
        }
    EXPECT_NE(WithNumber(0), WithNumber(DateTime::MAXDAY + 1)); // both missing, stored differently
}

// ---- spans of seconds -----------------------------------------------------------------------------------

TEST(DateTimeSpans, ConvertBothWays)
{
    int64 seconds = -1;
    DateTime::ConvertDeltaToSeconds(DateTime(9999, 12, 31, 23, 59, 59), DateTime(1, 1, 1, 0, 0, 0), seconds);
    EXPECT_EQ(seconds, 315538070399);
    DateTime::ConvertDeltaToSeconds(DateTime(2024, 1, 1, 0, 0, 0), DateTime(2024, 1, 1, 0, 0, 1), seconds);
    EXPECT_EQ(seconds, -1);
    DateTime::ConvertDeltaToSeconds(DateTime(2024, 1, 1, 0, 0, 0), DateTime(), seconds);
    EXPECT_EQ(seconds, 0);

    const struct {
        long days;
        int hours, minutes, seconds;
        int64 total;
    } sums[] = {
        {1, 1, 1, 1, 90061},
        {-1, 0, 0, 1, -86399},
        {100000, 0, 0, 0, 8640000000},
        {0, 596524, 0, 0, -2147480896},              // 2147486400 in 32 bits
        {0, 0, 35791395, 0, -2147483596},            // 2147483700 in 32 bits
        {0, 596523, 35791394, INT_MAX, 6442450087},  // large, but nothing wraps
        {0, INT_MIN, INT_MIN, INT_MIN, -2147483648}, // the products are 0
    };
    for (const auto& row : sums) {
        DateTime::ConvertToSeconds(row.days, row.hours, row.minutes, row.seconds, seconds);
        EXPECT_EQ(seconds, row.total);
    }

    const struct {
        int64 total;
        long days;
        int hours, minutes, seconds;
    } parts[] = {
        {-90, 0, 0, 1, 30},
        {90061, 1, 1, 1, 1},
        {-90061, 1, 1, 1, 1},
        {0, 0, 0, 0, 0},
        {8640000000 * 30, 3000000, 0, 0, 0},
        {LLONG_MAX, 106751991167300, 15, 30, 7},
        {LLONG_MIN, 106751991167300, 15, 30, 8},
    };
    for (const auto& row : parts) {
        long days = -1;
        int hour = -1, minute = -1, second = -1;
        DateTime::ConvertFromSeconds(row.total, days, hour, minute, second);
        EXPECT_EQ(days, row.days) << row.total;
        EXPECT_EQ(Date(hour, minute, second), Date(row.hours, row.minutes, row.seconds)) << row.total;
    }
}

} // namespace
