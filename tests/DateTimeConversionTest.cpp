// DateTime from and into other forms of a moment, and the present one.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "COleDateTime.h"
#include "DateTime.h"
#include "platform/Platform.h"
#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/TextModels.h"
#include "support/TimeZone.h"

namespace {

const DateTime Before(1900, 5, 6, 7, 8, 9), NoTime = [] {
    DateTime value(2024, 1, 1, 0, 0, 0);
    value.SetInvalidTime();
    return value;
}();

template <class Source>
DateTime From(const Source& source)
{
    DateTime value = Before;
    value.Set(source);
    return value;
}

DateTime FromFileTime(uint64 units)
{
    return From(FILETIME{static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)});
}

DateTime FromOle(double date, COleDateTime::DateTimeStatus status = COleDateTime::valid)
{
    COleDateTime value;
    value.m_dt = date;
    value.SetStatus(status);
    return From(value);
}

TEST(DateTimeFrom, PartsOfATmTakesEachHalfByItself)
{
    for (const auto& [year, month, day, second, isDate, isTime] : NumberCases<int, 6>("tm")) {
        std::tm time = {};
        time.tm_year = year;
        time.tm_mon = month;
        time.tm_mday = day;
        time.tm_hour = 23;
        time.tm_sec = second;
        DateTime expected = Before;
        if (isDate != 0)
            expected.SetDate(year + 1900, month + 1, day);
        if (isTime != 0)
            expected.SetTime(23, 0, second);
        EXPECT_EQ(From(time), expected) << year << ' ' << month << ' ' << day;
    }
}

TEST(DateTimeFrom, ClocksIsLocalTime)
{
    const TimeZone zone("EST5");
    EXPECT_EQ(From(int64{32535215999}), DateTime(3000, 12, 31, 18, 59, 59)); // the last there is
    for (const int64 failing : {int64{-1}, int64{32536800000}, LLONG_MIN, LLONG_MAX})
        EXPECT_EQ(From(failing), DateTime()) << failing;
    EXPECT_EQ(FromFileTime(0x01DC7B1627B5E000), DateTime(2026, 1, 1, 7, 0, 0));
    EXPECT_EQ(FromFileTime(0), DateTime());                                        // before 1601 in New York
    EXPECT_EQ(FromFileTime(0x7FFF35F4F06C7FFF), DateTime(1900, 5, 6, 18, 59, 59)); // in the year 30827
}

TEST(DateTimeFrom, OleDatesTakesTheParts)
{
    EXPECT_EQ(COleDateTime(36526.0).GetDayOfWeek(), 7); // 1 January 2000
    EXPECT_EQ(COleDateTime(std::nan("")).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(FromOle(-1.25), DateTime(1899, 12, 29, 6, 0, 0));
    for (const double outside : {-657435.0, 2958466.0, HUGE_VAL, std::nan("")})
        EXPECT_EQ(FromOle(outside), Before) << outside; // no part is known
    for (const auto status : {COleDateTime::invalid, COleDateTime::null, COleDateTime::error})
        EXPECT_EQ(FromOle(1, status), DateTime());
    EXPECT_EQ(From(COleDateTime(1582, 10, 25, 1, 2, 3)), DateTime(1900, 5, 6, 1, 2, 3)); // no such day here
}

TEST(DateTimeTo, TmAndSecondsKeepTo32Bits)
{
    DateTime early(1969, 1, 1, 0, 0, 0);
    early.SetInvalidTime();
    const struct {
        DateTime value;
        bool isWritten; // into a tm
        int64 seconds;
    } rows[] = {{DateTime(1970, 1, 1, 0, 0, 0), true, 0},
                {DateTime(1969, 12, 31, 23, 59, 59), false, 77},
                {DateTime(2038, 1, 18, 23, 59, 59), true, 2147471999},
                {DateTime(2038, 1, 19, 3, 14, 8), false, -2147483648},
                {DateTime(9999, 12, 31, 23, 59, 59), false, -769665}, // 253402300799 - 59 * 2^32
                {NoTime, true, 0},
                {early, false, 77},
                {DateTime(), false, 0}};
    const MarkerLines markers;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value.GetYear());
        std::tm time = {};
        time.tm_mday = time.tm_wday = time.tm_yday = time.tm_isdst = 77;
        row.value.Get(time);
        EXPECT_EQ(time.tm_wday + time.tm_yday + time.tm_isdst, 3 * 77);
        EXPECT_EQ(time.tm_mday, row.isWritten ? row.value.GetDay() : 77);
        EXPECT_EQ(MarkerLines::Take(),
                  Texts(row.isWritten ? 0 : 1, "{3B9CEE83-5685-4EBF-AF53-16DECF9747B1}"));
        EXPECT_EQ(From(time) == row.value, row.isWritten && row.value.IsValid());
        int64 seconds = 77;
        row.value.Get(seconds);
        EXPECT_EQ(seconds, row.seconds);
    }
}

// Julian leap days of centuries are none there, and neither is what lacks a half.
TEST(DateTimeTo, OleDatesComesBackForEveryDayAndSecond)
{
    DateTime value(99, 12, 31, 0, 0, 0);
    for (int round = 0; value.IsValidDate(); ++round) {
        COleDateTime date(36526.0);
        value.Get(date);
        const bool julianLeapDay = value.GetMonth() == 2 && value.GetDay() == 29 &&
                                   value.GetYear() % 100 == 0 && value.GetYear() % 400 != 0;
        const bool known = value.GetYear() >= 100 && !julianLeapDay;
        ASSERT_EQ(date.GetStatus(), known ? COleDateTime::valid : COleDateTime::invalid);
        const bool readsBack = value.GetYear() != 1582 || value.GetMonth() < 10;
        ASSERT_EQ(From(date), known && readsBack ? value : From(date)) << value.GetYear();
        value.AddDays(1 + round % 60);
        value.AddSeconds(round % 7919);
    }
    for (const DateTime& half : {DateTime(), NoTime}) {
        COleDateTime date(36526.0);
        half.Get(date);
        EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
        EXPECT_EQ(date.m_dt, 0);
    }
}

// ---- the present moment, against the runtime library asked before and after -----------------------------

TEST(Now, IsLocalTimeAndKnowsTheDaysAround)
{
    for (const char* zone : {"UTC0", "ABC-14", "DEF12"}) {
        const TimeZone here(zone);
        const auto moment = [] { return From(int64{std::time(nullptr)}); };
        DateTime before, now, date, time, after;
        do {
            before = moment();
            now.SetToCurrent();
            date.SetToCurrentDate();
            time.SetToCurrentTime();
            after = moment();
        } while (before.CompareDate(after) != 0); // midnight passed in between
        EXPECT_FALSE(now < before || after < now || time.CompareTime(before) < 0 ||
                     time.CompareTime(after) > 0);
        EXPECT_FALSE(date.CompareDate(now) != 0 || date.IsValidTime() || time.IsValidDate());
        for (int days = -2; days <= 2; ++days) {
            DateTime other = date;
            other.AddDays(days);
            const int known = other.IsYesterday() * 1 + other.IsToday() * 2 + other.IsTomorrow() * 4;
            EXPECT_EQ(known, days == -1 ? 1 : days == 0 ? 2 : days == 1 ? 4 : 0) << days;
        }
    }
    EXPECT_FALSE(DateTime().IsToday() || DateTime().IsYesterday() || DateTime().IsTomorrow());
}

} // namespace
