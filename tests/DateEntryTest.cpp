#include "DateEntry.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <string>
#include <tuple>

#include "support/CalendarModel.h"
#include "support/RandomSource.h"

namespace {

using Date = std::array<int, 3>;

DateEntry FixedDay(int day, int month, int beforeAfter = 0, bool offWeekend = false)
{
    DateEntry entry;
    entry.SetBeforeAfterDay("fixed", day, month, beforeAfter);
    entry.SetWeekDay(offWeekend);
    return entry;
}

DateEntry Weekday(int occurrence, int dayOfWeek, int month, int beforeAfter = 0)
{
    DateEntry entry;
    entry.SetBeforeAfterDayOfWeek("weekday", static_cast<DateEntry::OCCURRENCE>(occurrence), dayOfWeek, month,
                                  beforeAfter);
    return entry;
}

TEST(DateEntryDates, AreThoseOfTheAlmanac)
{
    const struct {
        const char* what;
        DateEntry entry;
        int year;
        Date date; // zeros for none
    } rows[] = {
        {"fourth Thursday of November", Weekday(4, 5, 11), 2024, {2024, 11, 28}},
        {"fifth Thursday of November", Weekday(5, 5, 11), 2024, {}},
        {"last Monday of May", Weekday(7, 2, 5), 2024, {2024, 5, 27}},
        {"Monday on or before 24 May", FixedDay(24, 5, -2), 2024, {2024, 5, 20}},
        {"Monday on 24 May", FixedDay(24, 5, -2), 2027, {2027, 5, 24}},
        {"Tuesday after the first Monday", Weekday(1, 2, 11, 3), 2024, {2024, 11, 5}},
        {"4 July, a Saturday", FixedDay(4, 7, 0, true), 2026, {2026, 7, 3}},
        {"4 July, a Sunday", FixedDay(4, 7, 0, true), 2027, {2027, 7, 5}},
        {"moved to a Sunday, then off it", FixedDay(31, 12, 1, true), 2024, {2025, 1, 6}},
        {"30 February", FixedDay(30, 2), 2024, {}},
        {"no month", FixedDay(1, 0), 2024, {}},
        {"year 0", FixedDay(1, 1), 0, {}},
        {"year 10000", Weekday(7, 1, 1), 10000, {}},
        {"last of no weekday", Weekday(7, 0, 5), 2024, {}},
        {"last of weekday 8", Weekday(7, 8, 5), 2024, {}},
        {"first of no weekday", Weekday(1, 0, 5), 2024, {}},
        {"unknown occurrence", Weekday(8, 2, 5), 2024, {}},
        {"negative occurrence", Weekday(INT_MIN, 2, 5), 2024, {}},
        {"before out of range", FixedDay(24, 5, -8), 2024, {2024, 5, 24}},
        {"after out of range", FixedDay(24, 5, 8), 2024, {2024, 5, 24}},
        {"before/after INT_MIN", FixedDay(24, 5, INT_MIN), 2024, {2024, 5, 24}},
        {"no step before the first day", FixedDay(1, 1, -7), 1, {1, 1, 1}},
        {"no step after the last day", FixedDay(31, 12, 7), 9999, {9999, 12, 31}},
    };
    for (const auto& row : rows) {
        DateTime date(1900, 1, 1, 10, 11, 12);
        row.entry.GetDateFor(row.year, date);
        EXPECT_EQ((Date{date.GetYear(), date.GetMonth(), date.GetDay()}), row.date) << row.what;
        EXPECT_EQ(date.GetHour() * 10000 + date.GetMinute() * 100 + date.GetSecond(), 101112);
    }
    DateTime missing;
    FixedDay(1, 1, -2, true).ApplyBeforeAfterDay(missing);
    EXPECT_EQ(missing, DateTime());
}

// The date of a rule by walking days, from the day numbers of the calendar alone.
DateTime DateByWalk(const DateEntry& entry, int year)
{
    const int month = entry.GetMonth(), target = entry.GetBeforeAfterDayOfWeek();
    const auto occurrence = static_cast<std::size_t>(entry.GetOccurrence());
    const auto days = CalendarModel::DaysOn(entry.GetDayOfWeek(), year, month);
    DateTime date;
    if (occurrence == 0)
        date.SetDate(year, month, entry.GetDay());
    else if (occurrence == 7 || occurrence <= days.size())
        date.SetDate(year, month, occurrence == 7 ? days.back() : days[occurrence - 1]);
    while (date.IsValidDate() && target != 0 && date.GetDayOfWeek() != std::abs(target))
        date.AddDays(target < 0 ? -1 : 1);
    if (entry.GetWeekDay())
        date.AddDays(date.GetDayOfWeek() == 1 ? 1 : date.GetDayOfWeek() == 7 ? -1 : 0);
    return date;
}

TEST(DateEntryDates, AreThoseOfTheWalk)
{
    RandomSource random;
    for (int round = 0; round < 50000; ++round) {
        int year = random.From(2, 9998);
        if (round % 4 == 0) // around the turns of centuries, where the numbering of weekdays jumps
            year = std::min(year / 100 * 100 + random.From(99, 100), 9998);
        if (year == 1582)
            continue;
        DateEntry entry = random.From(0, 1) == 0
                              ? FixedDay(random.From(1, 31), random.From(1, 12))
                              : Weekday(random.From(1, 7), random.From(1, 7), random.From(1, 12));
        entry.SetBeforeAfterDayOfWeek(random.From(-7, 7));
        entry.SetWeekDay(random.From(0, 1) == 1);
        DateTime date;
        entry.GetDateFor(year, date);
        ASSERT_EQ(date, DateByWalk(entry, year))
            << year << " occurrence " << entry.GetOccurrence() << " day " << entry.GetDay() << " month "
            << entry.GetMonth() << " day of week " << entry.GetDayOfWeek() << " move "
            << entry.GetBeforeAfterDayOfWeek() << " off weekend " << entry.GetWeekDay();
    }
}

TEST(DateEntryDates, CountOccurrences)
{
    const DateEntry thursdays = Weekday(4, 5, 11);
    for (const int n : {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, INT_MAX})
        EXPECT_EQ(thursdays.GetOccurrenceDate(n, 2024), n >= 1 && n <= 4 ? 7 * n : 0) << n;
    for (const int year : {INT_MIN, 0, 10000, INT_MAX})
        EXPECT_EQ(thursdays.GetOccurrenceDate(1, year), 0);
    for (const int n : {INT_MIN, -1, 0, 1, 6, 7, 8, INT_MAX})
        EXPECT_EQ(DateEntry::ConvertOccurrence(static_cast<DateEntry::OCCURRENCE>(n)),
                  n == 1 || n == 6 ? n : 0);
}

TEST(DateEntryMatch, GoesByTheRulesMonthAndTheMovedDay)
{
    const DateEntry newYearsEve = FixedDay(31, 12, 1); // 5 January 2025 for 2024
    EXPECT_TRUE(newYearsEve.IsMatch(5, 12, 2024));
    EXPECT_FALSE(newYearsEve.IsMatch(5, 1, 2025));
    EXPECT_FALSE(newYearsEve.IsMatch(31, 12, 2024));
    EXPECT_FALSE(FixedDay(29, 2).IsMatch(29, 2, 2023));
    EXPECT_FALSE(FixedDay(29, 2).IsDayMatch(0, 2023)); // no date is not day 0
    for (const int wild : {INT_MIN, 0, 32, INT_MAX}) {
        EXPECT_FALSE(FixedDay(wild, wild).IsMatch(wild, wild, 2024));
        EXPECT_FALSE(FixedDay(1, wild).IsMonthMatch(wild));
    }
}

TEST(DateEntryMatch, FiltersYears)
{
    const struct {
        int type;
        const char* matches; // in 99, 100, 2021, 2022, 2023, 2025, 9999, 10000
    } rows[] = {{0, "01111110"}, {1, "00101110"}, {2, "01010000"}, {3, "00001000"},
                {4, "00001110"}, {5, "01111000"}, {6, "00000000"}, {-1, "00000000"}};
    for (const auto& row : rows) {
        DateEntry entry = FixedDay(1, 1);
        entry.SetYear(2023);
        entry.SetYearType(static_cast<DateEntry::YEARTYPE>(row.type));
        std::string matches;
        for (const int year : {99, 100, 2021, 2022, 2023, 2025, 9999, 10000})
            matches += entry.IsMatch(1, 1, year) ? '1' : '0';
        EXPECT_EQ(matches, row.matches) << row.type;
        EXPECT_FALSE(entry.IsYearMatch(INT_MIN) || entry.IsYearMatch(INT_MAX));
    }
}

TEST(DateEntryValidity, FollowsTheRuleWithItsDepartures)
{
    const struct {
        const char* description;
        int occurrence, day, dayOfWeek, month, beforeAfter, yearType, year;
        bool valid;
    } rows[] = {
        {"d", 0, 25, 0, 12, 0, 0, 0, true},      {"", 0, 25, 0, 12, 0, 0, 0, false},
        {" \t", 0, 25, 0, 12, 0, 0, 0, false},   {"d", 0, 25, 0, 0, 0, 0, 0, false},
        {"d", 0, 25, 0, 13, 0, 0, 0, false},     {"d", 0, 32, 0, 12, 0, 0, 0, false},
        {"d", 0, -1, 0, 12, 0, 0, 0, false},     {"d", 0, 30, 0, 2, 0, 0, 0, true}, // no such day, but a rule
        {"d", 0, 25, 0, 12, 0, 3, 99, false},    {"d", 0, 25, 0, 12, 0, 3, 100, true},
        {"d", 0, 25, 0, 12, 0, 3, 10000, false}, {"d", 4, 0, 5, 11, 0, 0, 0, true},
        {"d", 0, 0, 5, 11, 0, 0, 0, false},      {"d", 4, 0, 8, 11, 0, 0, 0, false},
        {"d", 4, 1, 0, 11, 0, 0, 0, false},      {"d", 0, 1, 5, 11, 0, 0, 0, false}, // a day and a weekday
        {"d", 4, 1, 5, 11, -2, 0, 0, true}, // both are taken with a before/after
        {"d", 0, 24, 0, 5, -2, 0, 0, true},      {"d", 0, 24, 0, 5, -2, 1, 0, false}, // odd years refuse it
        {"d", 0, 24, 0, 5, -2, 2, 0, false},                                          // even years too
        {"d", 0, 24, 0, 5, 0, 1, 0, true},       {"d", 0, 24, 0, 5, 7, 4, 2000, true},
        {"d", 0, 24, 0, 5, 8, 0, 0, false},      {"d", 0, 24, 0, 5, INT_MIN, 0, 0, false},
        {"d", 0, 0, 0, 5, -2, 0, 0, false},
    };
    for (const auto& row : rows) {
        DateEntry entry;
        entry.SetDesc(row.description);
        entry.SetOccurrence(static_cast<DateEntry::OCCURRENCE>(row.occurrence));
        entry.SetDay(row.day);
        entry.SetDayOfWeek(row.dayOfWeek);
        entry.SetMonth(row.month);
        entry.SetBeforeAfterDayOfWeek(row.beforeAfter);
        entry.SetYearType(static_cast<DateEntry::YEARTYPE>(row.yearType));
        entry.SetYear(row.year);
        EXPECT_EQ(entry.IsValid(), row.valid) << &row - rows;
    }
}

TEST(DateEntrySetters, ResetWhatTheyDoNotName)
{
    const auto fields = [](const DateEntry& entry) {
        return std::tuple(static_cast<int>(entry.GetOccurrence()), static_cast<int>(entry.GetYearType()),
                          entry.GetWeekDay(), entry.GetDay(), entry.GetDayOfWeek(),
                          entry.GetBeforeAfterDayOfWeek(), entry.GetMonth(), entry.GetYear(), entry.GetID(),
                          std::string(entry.GetDesc()));
    };
    DateEntry filled = Weekday(7, 9, 9, 9);
    EXPECT_EQ(fields(DateEntry()), std::tuple(0, 0, false, 0, 0, 0, 0, 0, -1, ""));
    filled.SetYearType(DateEntry::YearOnly);
    filled.SetWeekDay(true);
    filled.SetDay(9);
    filled.SetYear(9);
    filled.SetID(9);
    DateEntry day = filled, dayOfWeek = filled, movedDay = filled, movedWeekday = filled;
    day.SetDay("a", 2, 3);
    dayOfWeek.SetDayOfWeek("b", DateEntry::OccurrenceSecond, 4, 5);
    movedDay.SetBeforeAfterDay("c", 2, 3, -6);
    movedWeekday.SetBeforeAfterDayOfWeek("d", DateEntry::OccurrenceSecond, 4, 5, -6);
    EXPECT_EQ(fields(day), std::tuple(0, 0, false, 2, 0, 9, 3, 0, 9, "a")); // before/after stays
    EXPECT_EQ(fields(dayOfWeek), std::tuple(2, 0, false, 0, 4, 0, 5, 0, 9, "b"));
    EXPECT_EQ(fields(movedDay), std::tuple(0, 0, false, 2, 0, -6, 3, 0, 9, "c"));
    EXPECT_EQ(fields(movedWeekday), std::tuple(2, 0, false, 0, 4, -6, 5, 0, 9, "d"));
}

} // namespace
