#include "DateEntry.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "support/CalendarModel.h"
#include "support/Cases.h"
#include "support/RandomSource.h"

namespace {

DateEntry FixedDay(int day, int month, int beforeAfter = 0)
{
    DateEntry entry;
    entry.SetBeforeAfterDay("fixed", day, month, beforeAfter);
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
    for (const auto& cells : Cases<8>("rules")) {
        const auto number = [&](std::size_t cell) { return std::stoi(cells[cell]); };
        DateEntry entry = Weekday(number(0), number(2), number(3), number(4));
        entry.SetDay(number(1));
        entry.SetWeekDay(number(5) != 0);
        DateTime date(1900, 1, 1, 10, 11, 12);
        entry.GetDateFor(number(6), date);
        EXPECT_EQ(date.IsValidDate() ? date.ConvertDateToText(false) : "", cells[7].c_str())
            << testing::PrintToString(cells);
        EXPECT_EQ(date.ConvertTimeToText(false), "10:11:12");
    }
    DateTime missing;
    FixedDay(1, 1, -2).ApplyBeforeAfterDay(missing);
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
        ASSERT_EQ(date, DateByWalk(entry, year)) << year << '-' << entry.GetMonth() << ", round " << round;
    }
}

TEST(DateEntryDates, CountOccurrences)
{
    const std::map<int, int> days = {{INT_MIN, INT_MIN}, {-1, -7},    {0, 0}, {1, 7}, {4, 28}, {5, 0}, {7, 0},
                                     {0x24924925, 3},    {INT_MAX, 0}}; // 32 bits wrap
    for (const auto& [n, day] : days) {
        EXPECT_EQ(Weekday(4, 5, 11).GetOccurrenceDate(n, 2024), day) << n;
        EXPECT_EQ(DateEntry::ConvertOccurrence(static_cast<DateEntry::OCCURRENCE>(n)),
                  n >= 1 && n <= 6 ? n : 0);
    }
}

TEST(DateEntryMatch, GoesByTheRulesMonthAndTheMovedDay)
{
    for (const auto& [ruleDay, ruleMonth, move, day, month, year, matches] : NumberCases<int, 7>("matches"))
        EXPECT_EQ(FixedDay(ruleDay, ruleMonth, move).IsMatch(day, month, year), matches == 1)
            << ruleDay << ' ' << ruleMonth << ' ' << day << ' ' << month;
    EXPECT_FALSE(FixedDay(29, 2).IsDayMatch(0, 2023)); // no date is not day 0
    EXPECT_FALSE(FixedDay(1, 32).IsMonthMatch(32));
}

TEST(DateEntryMatch, FiltersYears)
{
    for (const auto& [type, expected] : Cases<2>("year filters")) {
        DateEntry entry = FixedDay(1, 1);
        entry.SetYear(2023);
        entry.SetYearType(static_cast<DateEntry::YEARTYPE>(std::stoi(type)));
        std::string matches;
        for (const int year : {INT_MIN, 99, 100, 2021, 2022, 2023, 2025, 9999, 10000, INT_MAX})
            matches += entry.IsMatch(1, 1, year) && entry.IsYearMatch(year) ? '1' : '0';
        EXPECT_EQ(matches, '0' + expected + '0') << type;
    }
}

TEST(DateEntryValidity, FollowsTheRuleWithItsDepartures)
{
    for (const auto& [occurrence, day, dayOfWeek, month, beforeAfter, yearType, year, isRule] :
         NumberCases<int, 8>("validity")) {
        DateEntry entry = Weekday(occurrence, dayOfWeek, month, beforeAfter);
        entry.SetDay(day);
        entry.SetYearType(static_cast<DateEntry::YEARTYPE>(yearType));
        entry.SetYear(year);
        EXPECT_EQ(entry.IsValid(), isRule != 0) << occurrence << ' ' << day << ' ' << dayOfWeek << ' '
                                                << month << ' ' << beforeAfter << ' ' << year;
        entry.SetDesc(" \t");
        EXPECT_FALSE(entry.IsValid());
    }
}

TEST(DateEntrySetters, ResetWhatTheyDoNotName)
{
    DateEntry set = Weekday(7, 9, 9, 9);
    set.SetYearType(DateEntry::YearOnly);
    set.SetWeekDay(true);
    set.SetDay(9);
    set.SetYear(9);
    DateEntry day = set, weekday = set, moved = set;
    day.SetDay("", 2, 3);
    weekday.SetDayOfWeek("", DateEntry::OccurrenceSecond, 4, 5);
    moved.SetBeforeAfterDay("", 2, 3, -6);
    const auto numbersOf = [](const DateEntry& entry) {
        return std::vector<int>{entry.GetOccurrence(), entry.GetDay(),      entry.GetDayOfWeek(),
                                entry.GetMonth(),      entry.GetYearType(), entry.GetBeforeAfterDayOfWeek(),
                                entry.GetWeekDay(),    entry.GetYear()};
    };
    EXPECT_EQ(numbersOf(day), (std::vector{0, 2, 0, 3, 0, 9, 0, 0})); // before/after stays
    EXPECT_EQ(numbersOf(weekday), (std::vector{2, 0, 4, 5, 0, 0, 0, 0}));
    EXPECT_EQ(numbersOf(moved), (std::vector{0, 2, 0, 3, 0, -6, 0, 0}));
}

} // namespace
