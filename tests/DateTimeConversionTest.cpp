// DateTime from and into other forms of a moment, and the present one.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "COleDateTime.h"
#include "DateTime.h"
#include "framework/FailureMarkers.h"
#include "support/TimeZone.h"

namespace {

const DateTime Before(1900, 5, 6, 7, 8, 9);

DateTime DateOnly(int year, int month, int day)
{
    DateTime value;
    value.SetDate(year, month, day);
    return value;
}

template <class Source>
DateTime From(const Source& source)
{
    DateTime value = Before;
    value.Set(source);
    return value;
}

FILETIME FileTimeOf(uint64 units)
{
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

TEST(DateTimeFromTm, TakesEachHalfByItself)
{
    std::tm time = {};
    time.tm_year = 124;
    time.tm_mon = 1;
    time.tm_mday = 29;
    time.tm_hour = 23;
    EXPECT_EQ(From(time), DateTime(2024, 2, 29, 23, 0, 0));
    time.tm_sec = 60; // a leap second
    EXPECT_EQ(From(time), DateTime(2024, 2, 29, 7, 8, 9));
    time.tm_sec = 0;
    for (const int wild : {INT_MIN, -1900, 8100, INT_MAX}) {
        std::tm wildYear = time, wildMonth = time, wildDay = time;
        wildYear.tm_year = wildMonth.tm_mon = wildDay.tm_mday = wild;
        for (const std::tm& each : {wildYear, wildMonth, wildDay})
            EXPECT_EQ(From(each), DateTime(1900, 5, 6, 23, 0, 0)) << wild;
    }
    time.tm_year = 1 - 1900;
    time.tm_mon = time.tm_mday = 1;
    EXPECT_EQ(From(time), DateTime(1, 2, 1, 23, 0, 0));
}

CString lastReport;

TEST(DateTimeToTm, WritesOnlyTheDaysOf31BitSeconds)
{
    const auto oldSink = FailureMarkers::SetSink([](const CString& line) { lastReport = line; });
    const struct {
        DateTime value;
        bool written;
    } rows[] = {
        {DateTime(1970, 1, 1, 0, 0, 0), true},
        {DateTime(1969, 12, 31, 23, 59, 59), false},
        {DateTime(2038, 1, 18, 23, 59, 59), true},
        {DateTime(2038, 1, 19, 0, 0, 0), false},
        {DateTime(), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value.GetYear());
        lastReport.Empty();
        std::tm time = {};
        time.tm_mday = time.tm_wday = time.tm_yday = time.tm_isdst = 77;
        row.value.Get(time);
        EXPECT_EQ(time.tm_wday + time.tm_yday + time.tm_isdst, 3 * 77);
        EXPECT_EQ(time.tm_mday, row.written ? row.value.GetDay() : 77);
        EXPECT_EQ(lastReport, row.written ? "" : "{3B9CEE83-5685-4EBF-AF53-16DECF9747B1}");
        time.tm_isdst = 0;
        EXPECT_EQ(From(time), row.written ? row.value : DateTime(1900, 5, 6, 0, 0, 0));
    }
    FailureMarkers::SetSink(oldSink);
    std::tm time = {};
    DateOnly(2024, 2, 29).Get(time);
    EXPECT_EQ(time.tm_year * 10000 + time.tm_mon * 100 + time.tm_mday, 1240129);
    EXPECT_EQ(time.tm_sec, -1); // no time
}

TEST(DateTimeFromSeconds, IsLocalTime)
{
    const TimeZone berlin("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(From(int64{0}), DateTime(1970, 1, 1, 1, 0, 0));
    EXPECT_EQ(From(int64{1782907200}), DateTime(2026, 7, 1, 14, 0, 0));
    EXPECT_EQ(From(int64{2147483648}), DateTime(2038, 1, 19, 4, 14, 8));
    EXPECT_EQ(From(int64{32535215999}), DateTime(3001, 1, 1, 0, 59, 59));
    for (const int64 failing : {int64{-1}, int64{32536800000}, LLONG_MIN, LLONG_MAX})
        EXPECT_EQ(From(failing), DateTime()) << failing;
}

TEST(DateTimeToSeconds, WrapsIn32Bits)
{
    const struct {
        DateTime value;
        int64 seconds;
    } rows[] = {
        {DateTime(1970, 1, 1, 0, 0, 0), 0},
        {DateTime(1969, 1, 1, 0, 0, 0), 77},
        {DateTime(2038, 1, 19, 3, 14, 7), 2147483647},
        {DateTime(2038, 1, 19, 3, 14, 8), -2147483648},
        {DateTime(2106, 2, 7, 6, 28, 16), 0},
        {DateTime(9999, 12, 31, 23, 59, 59), -769665}, // 253402300799 - 59 * 2^32
        {DateOnly(2024, 1, 1), 0},
        {DateOnly(1969, 1, 1), 77},
        {DateTime(), 0},
    };
    for (const auto& row : rows) {
        int64 seconds = 77;
        row.value.Get(seconds);
        EXPECT_EQ(seconds, row.seconds) << row.value.GetYear();
    }
}

TEST(DateTimeFromFileTime, IsLocalTime)
{
    const TimeZone newYork("EST5");
    EXPECT_EQ(From(FileTimeOf(0x01DC7B1627B5E000)), DateTime(2026, 1, 1, 7, 0, 0));
    EXPECT_EQ(From(FileTimeOf(0x0000002A00000000)), DateTime(1601, 1, 1, 0, 0, 38)); // 5 hours and 38 seconds
    EXPECT_EQ(From(FileTimeOf(0)), DateTime()); // before 1601 in New York
    EXPECT_EQ(From(FileTimeOf(~uint64{0})), DateTime());
    const DateTime farAway =
        From(FileTimeOf(0x7FFF35F4F06C7FFF)); // in the year 30827: only the time can be set
    EXPECT_EQ(farAway, DateTime(1900, 5, 6, 18, 59, 59));
}

TEST(DateTimeFromOleDate, TakesTheParts)
{
    const auto ole = [](double date) {
        COleDateTime value;
        value.m_dt = date;
        return value;
    };
    EXPECT_EQ(From(ole(-1.25)), DateTime(1899, 12, 29, 6, 0, 0));
    EXPECT_EQ(From(ole(36526.999999)), DateTime(2000, 1, 2, 0, 0, 0));
    EXPECT_EQ(From(ole(-657434)), DateTime(100, 1, 1, 0, 0, 0));
    EXPECT_EQ(From(ole(2958465.9999899999)), DateTime(9999, 12, 31, 23, 59, 59));
    for (const double outside : {-657435.0, 2958466.0, 1e300, HUGE_VAL, std::nan("")})
        EXPECT_EQ(From(ole(outside)), Before) << outside; // no part is known
    for (const auto status : {COleDateTime::invalid, COleDateTime::null, COleDateTime::error}) {
        COleDateTime marked = ole(1);
        marked.SetStatus(status);
        EXPECT_EQ(From(marked), DateTime());
    }
    EXPECT_EQ(From(COleDateTime(1582, 10, 25, 1, 2, 3)), DateTime(1900, 5, 6, 1, 2, 3)); // no such day here
}

TEST(DateTimeToOleDate, ComesBackForEveryDayAndSecond)
{
    DateTime value(100, 1, 1, 0, 0, 0);
    for (int round = 0; value.IsValidDate(); ++round) {
        COleDateTime date;
        value.Get(date);
        const bool julianLeapDay = value.GetMonth() == 2 && value.GetDay() == 29 &&
                                   value.GetYear() % 100 == 0 && value.GetYear() % 400 != 0;
        ASSERT_EQ(date.GetStatus(), julianLeapDay ? COleDateTime::invalid : COleDateTime::valid);
        const bool readsBack = value.GetYear() != 1582 || value.GetMonth() < 10;
        if (!julianLeapDay && readsBack) {
            ASSERT_EQ(From(date), value)
                << value.GetYear() << ' ' << value.GetMonth() << ' ' << value.GetDay();
        }
        value.AddDays(1 + round % 60);
        value.AddSeconds(round % 7919);
    }
}

TEST(DateTimeToOleDate, IsInvalidWithoutBothHalves)
{
    for (const DateTime& value : {DateTime(), DateOnly(2024, 1, 1), DateTime(99, 12, 31, 0, 0, 0)}) {
        COleDateTime date(36526.0);
        value.Get(date);
        EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
        EXPECT_EQ(date.m_dt, 0);
    }
}

TEST(OleDate, RefusesWhatDoesNotExist)
{
    const struct {
        int parts[6];
        bool valid;
    } rows[] = {
        {{1900, 2, 29, 0, 0, 0}, false},      {{2000, 2, 29, 23, 59, 59}, true},
        {{99, 12, 31, 0, 0, 0}, false},       {{10000, 1, 1, 0, 0, 0}, false},
        {{2000, 4, 31, 0, 0, 0}, false},      {{2000, 13, 1, 0, 0, 0}, false},
        {{2000, 1, 1, 24, 0, 0}, false},      {{2000, 1, 1, 0, 0, -1}, false},
        {{1582, 10, 10, 0, 0, 0}, true},      {{INT_MIN, 0, 0, 0, 0, 0}, false},
        {{2000, 1, INT_MAX, 0, 0, 0}, false},
    };
    for (const auto& row : rows) {
        const auto& [year, month, day, hour, minute, second] = row.parts;
        const COleDateTime date(year, month, day, hour, minute, second);
        EXPECT_EQ(date.GetStatus() == COleDateTime::valid, row.valid) << year << ' ' << month << ' ' << day;
        EXPECT_EQ(date.GetYear(), row.valid ? year : -1);
        EXPECT_EQ(date.GetSecond(), row.valid ? second : -1);
    }
    EXPECT_EQ(COleDateTime(36526.0).GetDayOfWeek(), 7); // 1 January 2000
    EXPECT_EQ(COleDateTime(std::nan("")).GetStatus(), COleDateTime::invalid);
}

// ---- the present moment, against the runtime library asked before and after -----------------------------

TEST(Now, IsLocalTime)
{
    for (const char* zone : {"UTC0", "<+14>-14", "<-12>12"}) {
        const TimeZone here(zone);
        const int64 before = std::time(nullptr);
        DateTime now, date, time;
        now.SetToCurrent();
        date.SetToCurrentDate();
        time.SetToCurrentTime();
        int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
        DateTime::GetDateTimeNow(year, month, day, hour, minute, second);
        const DateTime parts(year, month, day, hour, minute, second);
        const int64 after = std::time(nullptr);
        EXPECT_FALSE(now < From(before));
        EXPECT_FALSE(parts < now);
        EXPECT_FALSE(From(after) < parts);
        EXPECT_FALSE(date.IsValidTime());
        EXPECT_FALSE(time.IsValidDate());
        EXPECT_TRUE(time.IsValidTime());
        EXPECT_TRUE(date.CompareDate(now) == 0 || date.CompareDate(parts) == 0);
    }
}

TEST(Now, KnowsTheDaysAround)
{
    int matches = 0;
    for (int attempt = 0; attempt < 2 && matches != 3; ++attempt) { // midnight may pass in between
        DateTime today, yesterday, tomorrow;
        today.SetToCurrentDate();
        yesterday = tomorrow = today;
        yesterday.AddDays(-1);
        tomorrow.AddDays(1);
        matches = today.IsToday() + yesterday.IsYesterday() + tomorrow.IsTomorrow();
        matches -= today.IsYesterday() + today.IsTomorrow() + yesterday.IsToday() + tomorrow.IsYesterday();
    }
    EXPECT_EQ(matches, 3);
    const DateTime missing;
    EXPECT_FALSE(missing.IsToday() || missing.IsYesterday() || missing.IsTomorrow());
}

} // namespace
