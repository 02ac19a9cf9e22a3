#include "DateEntry.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <random>
#include <tuple>

#include "support/CalendarModel.h"

namespace {

using Date = std::tuple<int, int, int>;

Date DateFor(const DateEntry& entry, int year)
{
    DateTime date(1900, 1, 1, 10, 11, 12);
    entry.GetDateFor(year, date);
    EXPECT_EQ(date.GetHour() * 10000 + date.GetMinute() * 100 + date.GetSecond(), 101112);
    Date parts;
    date.GetDate(std::get<0>(parts), std::get<1>(parts), std::get<2>(parts));
    return parts;
}

const Date None(0, 0, 0);

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
        Date date;
    } rows[] = {
        {"fourth Thursday of November", Weekday(4, 5, 11), 2024, {2024, 11, 28}},
        {"fifth Thursday of November", Weekday(5, 5, 11), 2024, None},
        {"fifth Friday of November", Weekday(5, 6, 11), 2024, {2024, 11, 29}},
        {"a sixth weekday", Weekday(6, 1, 12), 2024, None},
        {"last Monday of May", Weekday(7, 2, 5), 2024, {2024, 5, 27}},
        {"last Thursday of February", Weekday(7, 5, 2), 2024, {2024, 2, 29}},
        {"Monday on or before 24 May", FixedDay(24, 5, -2), 2024, {2024, 5, 20}},
        {"Monday on 24 May", FixedDay(24, 5, -2), 2027, {2027, 5, 24}},
        {"Monday on or after 24 May", FixedDay(24, 5, 2), 2024, {2024, 5, 27}},
        {"Tuesday after the first Monday", Weekday(1, 2, 11, 3), 2024, {2024, 11, 5}},
        {"4 July, a Saturday", FixedDay(4, 7, 0, true), 2026, {2026, 7, 3}},
        {"4 July, a Sunday", FixedDay(4, 7, 0, true), 2027, {2027, 7, 5}},
        {"4 July, a Thursday", FixedDay(4, 7, 0, true), 2024, {2024, 7, 4}},
        {"into the next month and year", FixedDay(31, 12, 1), 2024, {2025, 1, 5}},
        {"moved to a Sunday, then off it", FixedDay(31, 12, 1, true), 2024, {2025, 1, 6}},
        {"29 February", FixedDay(29, 2), 2023, None},
        {"30 February", FixedDay(30, 2), 2024, None},
        {"no month", FixedDay(1, 0), 2024, None},
        {"year 0", FixedDay(1, 1), 0, None},
        {"year 10000", Weekday(7, 1, 1), 10000, None},
        {"last of no weekday", Weekday(7, 0, 5), 2024, None},
        {"last of weekday 8", Weekday(7, 8, 5), 2024, None},
        {"first of no weekday", Weekday(1, 0, 5), 2024, None},
        {"unknown occurrence", Weekday(8, 2, 5), 2024, None},
        {"negative occurrence", Weekday(INT_MIN, 2, 5), 2024, None},
        {"before/after out of range", FixedDay(24, 5, -8), 2024, {2024, 5, 24}},
        {"before/after INT_MIN", FixedDay(24, 5, INT_MIN), 2024, {2024, 5, 24}},
        {"no step before the first day", FixedDay(1, 1, -7), 1, {1, 1, 1}},
        {"no step after the last day", FixedDay(31, 12, 7), 9999, {9999, 12, 31}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(DateFor(row.entry, row.year), row.date) << row.what;
}

// The date of a rule by walking days, from the day numbers of the calendar alone.
DateTime DateByWalk(const DateEntry& entry, int year)
{
    const int month = entry.GetMonth(), occurrence = entry.GetOccurrence();
    DateTime date;
    if (occurrence == 0)
        date.SetDate(year, month, entry.GetDay());
    int found = 0;
    for (int day = 1; occurrence != 0 && day <= CalendarModel::MonthLength(year, month); ++day)
        if (CalendarModel::Weekday(year, month, day) == entry.GetDayOfWeek() &&
            (++found == occurrence || occurrence == 7))
            date.SetDate(year, month, day);
    const int target = std::abs(entry.GetBeforeAfterDayOfWeek()),
              step = entry.GetBeforeAfterDayOfWeek() < 0 ? -1 : 1;
    for (int steps = 0; date.IsValidDate() && target != 0 && date.GetDayOfWeek() != target; ++steps) {
        EXPECT_LT(steps, 14);
        date.AddDays(step);
    }
    if (date.IsValidDate() && entry.GetWeekDay())
        date.AddDays(date.GetDayOfWeek() == 1 ? 1 : date.GetDayOfWeek() == 7 ? -1 : 0);
    return date;
}

TEST(DateEntryDates, AreThoseOfTheWalk)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto number = [&](int low, int high) { return std::uniform_int_distribution<>(low, high)(random); };
    for (int round = 0; round < 50000; ++round) {
        int year = number(2, 9998);
        if (round % 4 == 0) // around the turns of centuries, where the numbering of weekdays jumps
            year = std::min(year / 100 * 100 + number(99, 100), 9998);
        if (year == 1582)
            continue;
        DateEntry entry = number(0, 1) == 0 ? FixedDay(number(1, 31), number(1, 12))
                                            : Weekday(number(1, 7), number(1, 7), number(1, 12));
        entry.SetBeforeAfterDayOfWeek(number(-7, 7));
        entry.SetWeekDay(number(0, 1) == 1);
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
    const int days[] = {0, 7, 14, 21, 28, 0, 0};
    for (int n = 0; n <= 6; ++n)
        EXPECT_EQ(thursdays.GetOccurrenceDate(n, 2024), days[n]) << n;
    for (const int n : {INT_MIN, -1, 7, INT_MAX})
        EXPECT_EQ(thursdays.GetOccurrenceDate(n, 2024), 0);
    for (const int year : {INT_MIN, 0, 10000, INT_MAX})
        EXPECT_EQ(thursdays.GetOccurrenceDate(1, year), 0);
    for (const int occurrence : {INT_MIN, -1, 0, 7, 8, INT_MAX})
        EXPECT_EQ(DateEntry::ConvertOccurrence(static_cast<DateEntry::OCCURRENCE>(occurrence)), 0);
    EXPECT_EQ(DateEntry::ConvertOccurrence(DateEntry::OccurrenceSixth), 6);
    DateTime missing;
    FixedDay(1, 1, -2, true).ApplyBeforeAfterDay(missing);
    EXPECT_EQ(missing, DateTime());
}

TEST(DateEntryMatch, GoesByTheRulesMonthAndTheMovedDay)
{
    const DateEntry newYearsEve = FixedDay(31, 12, 1); // 5 January 2025 for 2024
    EXPECT_TRUE(newYearsEve.IsMatch(5, 12, 2024));
    EXPECT_FALSE(newYearsEve.IsMatch(5, 1, 2025));
    EXPECT_FALSE(newYearsEve.IsMatch(31, 12, 2024));
    EXPECT_FALSE(FixedDay(29, 2).IsMatch(29, 2, 2023));
    EXPECT_FALSE(FixedDay(29, 2).IsDayMatch(0, 2023)); // no date is not day 0
    EXPECT_TRUE(FixedDay(29, 2).IsMatch(29, 2, 2024));
    for (const int wild : {INT_MIN, 0, 32, INT_MAX}) {
        EXPECT_FALSE(FixedDay(wild, wild).IsMatch(wild, wild, 2024));
        EXPECT_FALSE(FixedDay(1, wild).IsMonthMatch(wild));
    }
}

TEST(DateEntryMatch, FiltersYears)
{
    const struct {
        int type;
        bool odd, even, same, later;
    } rows[] = {{0, true, true, true, true},     {1, true, false, true, true},
                {2, false, true, false, false},  {3, false, false, true, false},
                {4, false, false, true, true},   {5, true, true, true, false},
                {6, false, false, false, false}, {-1, false, false, false, false}};
    DateEntry entry = FixedDay(1, 1);
    entry.SetYear(2023);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        entry.SetYearType(static_cast<DateEntry::YEARTYPE>(row.type));
        EXPECT_EQ(entry.IsYearMatch(2021), row.odd);
        EXPECT_EQ(entry.IsYearMatch(2022), row.even);
        EXPECT_EQ(entry.IsYearMatch(2023), row.same);
        EXPECT_EQ(entry.IsYearMatch(2025), row.later);
        for (const int outside : {INT_MIN, 99, 10000, INT_MAX})
            EXPECT_FALSE(entry.IsYearMatch(outside));
    }
}

TEST(DateEntryValidity, FollowsTheRuleWithItsDepartures)
{
    const auto entry = [](const char* desc, int occurrence, int day, int dayOfWeek, int month,
                          int beforeAfter, int yearType, int year) {
        DateEntry made;
        made.SetDesc(desc);
        made.SetOccurrence(static_cast<DateEntry::OCCURRENCE>(occurrence));
        made.SetDay(day);
        made.SetDayOfWeek(dayOfWeek);
        made.SetMonth(month);
        made.SetBeforeAfterDayOfWeek(beforeAfter);
        made.SetYearType(static_cast<DateEntry::YEARTYPE>(yearType));
        made.SetYear(year);
        return made;
    };
    const struct {
        DateEntry entry;
        bool valid;
    } rows[] = {
        {DateEntry(), false},
        {entry("d", 0, 25, 0, 12, 0, 0, 0), true},
        {entry("", 0, 25, 0, 12, 0, 0, 0), false},
        {entry(" \t", 0, 25, 0, 12, 0, 0, 0), false},
        {entry("d", 0, 25, 0, 13, 0, 0, 0), false},
        {entry("d", 0, 32, 0, 12, 0, 0, 0), false},
        {entry("d", 0, -1, 0, 12, 0, 0, 0), false},
        {entry("d", 0, 30, 0, 2, 0, 0, 0), true}, // no such day, but a rule
        {entry("d", 0, 25, 0, 12, 0, 3, 99), false},
        {entry("d", 0, 25, 0, 12, 0, 3, 100), true},
        {entry("d", 0, 25, 0, 12, 0, 3, 10000), false},
        {entry("d", 4, 0, 5, 11, 0, 0, 0), true},
        {entry("d", 0, 0, 5, 11, 0, 0, 0), false},
        {entry("d", 4, 0, 8, 11, 0, 0, 0), false},
        {entry("d", 4, 1, 5, 11, 0, 0, 0), false}, // a day and a weekday
        {entry("d", 4, 1, 5, 11, -2, 0, 0), true}, // both are taken with a before/after
        {entry("d", 0, 24, 0, 5, -2, 0, 0), true},
        {entry("d", 0, 24, 0, 5, -2, 1, 0), false}, // odd years refuse it
        {entry("d", 0, 24, 0, 5, -2, 2, 0), false}, // even years too
        {entry("d", 0, 24, 0, 5, 0, 1, 0), true},
        {entry("d", 0, 24, 0, 5, 7, 4, 2000), true},
        {entry("d", 0, 24, 0, 5, 8, 0, 0), false},
        {entry("d", 0, 24, 0, 5, INT_MIN, 0, 0), false},
        {entry("d", 0, 0, 0, 5, -2, 0, 0), false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.entry.IsValid(), row.valid) << &row - rows;
}

TEST(DateEntrySetters, ResetWhatTheyDoNotName)
{
    const auto filled = [] {
        DateEntry entry;
        entry.SetOccurrence(DateEntry::OccurrenceLast);
        entry.SetYearType(DateEntry::YearOnly);
        entry.SetWeekDay(true);
        entry.SetDay(9);
        entry.SetDayOfWeek(9);
        entry.SetBeforeAfterDayOfWeek(9);
        entry.SetMonth(9);
        entry.SetYear(9);
        entry.SetID(9);
        return entry;
    };
    const auto fields = [](const DateEntry& entry) {
        return std::tuple(static_cast<int>(entry.GetOccurrence()), static_cast<int>(entry.GetYearType()),
                          entry.GetWeekDay(), entry.GetDay(), entry.GetDayOfWeek(),
                          entry.GetBeforeAfterDayOfWeek(), entry.GetMonth(), entry.GetYear(), entry.GetID(),
                          std::string(entry.GetDesc()));
    };
    DateEntry day = filled(), dayOfWeek = filled(), movedDay = filled(), movedWeekday = filled();
    day.SetDay("a", 2, 3);
    dayOfWeek.SetDayOfWeek("b", DateEntry::OccurrenceSecond, 4, 5);
    movedDay.SetBeforeAfterDay("c", 2, 3, -6);
    movedWeekday.SetBeforeAfterDayOfWeek("d", DateEntry::OccurrenceSecond, 4, 5, -6);
    EXPECT_EQ(fields(day), std::tuple(0, 0, false, 2, 0, 9, 3, 0, 9, "a")); // before/after stays
    EXPECT_EQ(fields(dayOfWeek), std::tuple(2, 0, false, 0, 4, 0, 5, 0, 9, "b"));
    EXPECT_EQ(fields(movedDay), std::tuple(0, 0, false, 2, 0, -6, 3, 0, 9, "c"));
    EXPECT_EQ(fields(movedWeekday), std::tuple(2, 0, false, 0, 4, -6, 5, 0, 9, "d"));
    EXPECT_EQ(fields(DateEntry()), std::tuple(0, 0, false, 0, 0, 0, 0, 0, -1, ""));
}

} // namespace
