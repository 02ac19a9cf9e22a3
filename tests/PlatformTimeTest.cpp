// The platform's time conversions against answers recorded from the platform itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "platform/Platform.h"
#include "support/TimeZone.h"

namespace {

std::string TextOf(const SYSTEMTIME& parts)
{
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d %d", parts.wYear, parts.wMonth,
                  parts.wDay, parts.wHour, parts.wMinute, parts.wSecond, parts.wMilliseconds,
                  parts.wDayOfWeek);
    return text;
}

FILETIME FileTimeOf(uint64 units)
{
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

uint64 UnitsOf(const FILETIME& time)
{
    return uint64{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// clang-format off
TEST(PlatformTime, TurnsOleDatesIntoParts)
{
    const struct { double date; const char* parts; } rows[] = {
        {0, "1899-12-30 00:00:00.000 6"},
        {-0.0, "1899-12-30 00:00:00.000 6"},
        {0.5, "1899-12-30 12:00:00.000 6"},
        {-0.5, "1899-12-30 12:00:00.000 6"},
        {1, "1899-12-31 00:00:00.000 0"},
        {-1, "1899-12-29 00:00:00.000 5"},
        {-1.25, "1899-12-29 06:00:00.000 5"},
        {-1.75, "1899-12-29 18:00:00.000 5"},
        {1.25, "1899-12-31 06:00:00.000 0"},
        {2, "1900-01-01 00:00:00.000 1"},
        {59, "1900-02-27 00:00:00.000 2"},
        {60, "1900-02-28 00:00:00.000 3"},
        {61, "1900-03-01 00:00:00.000 4"},
        {25569, "1970-01-01 00:00:00.000 4"},
        {36526.75, "2000-01-01 18:00:00.000 6"},
        {36526.999989999997, "2000-01-01 23:59:59.000 6"},
        {36526.999993999998, "2000-01-01 23:59:59.000 6"},
        {36526.999994999998, "2000-01-02 00:00:00.000 0"},
        {36526.999998500003, "2000-01-02 00:00:00.000 0"},
        {36526.999999, "2000-01-02 00:00:00.000 0"},
        {36526.000000100001, "2000-01-01 00:00:00.000 6"},
        {36526.000005000002, "2000-01-01 00:00:00.000 6"},
        {36526.000006000002, "2000-01-01 00:00:01.000 6"},
        {36525.999999999003, "2000-01-01 00:00:00.000 6"},
        {36526.500005787035, "2000-01-01 12:00:01.000 6"},
        {36526.500005775466, "2000-01-01 12:00:00.000 6"},
        {36526.500005798611, "2000-01-01 12:00:01.000 6"},
        {36526.500017361112, "2000-01-01 12:00:02.000 6"},
        {36526.123456788999, "2000-01-01 02:57:47.000 6"},
        {-36526.75, "1799-12-28 18:00:00.000 6"},
        {-36526.999999, "1799-12-29 00:00:00.000 0"},
        {50424.134826388887, "2038-01-19 03:14:09.000 2"},
        {2958465, "9999-12-31 00:00:00.000 5"},
        {2958465.5, "9999-12-31 12:00:00.000 5"},
        {2958465.9999799998, "9999-12-31 23:59:58.000 5"},
        {2958465.9999899999, "9999-12-31 23:59:59.000 5"},
        {2958465.999994, "9999-12-31 23:59:59.000 5"},
        {2958466, "false"},
        {2958466.5, "false"},
        {-657434, "0100-01-01 00:00:00.000 5"},
        {-657434.5, "0100-01-01 12:00:00.000 5"},
        {-657434.99999000004, "0100-01-01 23:59:59.000 5"},
        {-657434.9999999, "0100-01-02 00:00:00.000 6"},
        {-657435, "false"},
        {-657435.5, "false"},
        {1e10, "false"},
        {-1e10, "false"},
        {1e300, "false"},
        {HUGE_VAL, "false"},
        {-HUGE_VAL, "false"},
        {std::nan(""), "false"},
        {2958465.9999999, "false"}, // rounds up past the last day
    };
    for (const auto& row : rows) {
        SYSTEMTIME parts;
        const bool done = VariantTimeToSystemTime(row.date, &parts) != FALSE;
        EXPECT_EQ(done ? TextOf(parts) : "false", row.parts) << std::to_string(row.date);
    }
}

TEST(PlatformTime, TurnsPartsIntoOleDates)
{
    const double Fails = -1e9;
    const struct { SYSTEMTIME parts; double date; } rows[] = {
        {{1899, 12, 0, 30, 0, 0, 0, 0}, 0},
        {{1899, 12, 0, 29, 18, 0, 0, 0}, -1.75},
        {{1899, 12, 0, 31, 0, 0, 0, 0}, 1},
        {{1900, 2, 0, 28, 0, 0, 0, 0}, 60},
        {{1900, 3, 0, 1, 0, 0, 0, 0}, 61},
        {{100, 1, 0, 1, 0, 0, 0, 0}, -657434},
        {{99, 12, 0, 31, 0, 0, 0, 0}, 36525},
        {{0, 1, 0, 1, 0, 0, 0, 0}, 36526},
        {{9999, 12, 0, 31, 23, 59, 59, 0}, 2958465.999988426},
        {{9999, 12, 0, 31, 23, 59, 59, 999}, 2958465.999988426},
        {{10000, 1, 0, 1, 0, 0, 0, 0}, Fails},
        {{2000, 2, 0, 30, 0, 0, 0, 0}, 36586},
        {{2000, 4, 0, 31, 0, 0, 0, 0}, 36647},
        {{2000, 4, 0, 32, 0, 0, 0, 0}, Fails},
        {{2000, 13, 0, 1, 0, 0, 0, 0}, Fails},
        {{2000, 1, 0, 0, 0, 0, 0, 0}, 36525},
        {{2000, 1, 0, 1, 12, 0, 0, 500}, 36526.5},
        {{2000, 1, 0, 1, 18, 0, 0, 0}, 36526.75},
        {{100, 1, 0, 0, 0, 0, 0, 0}, Fails}, // the day before the first
        {{65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535}, Fails},
    };
    for (const auto& row : rows) {
        double date = Fails;
        SystemTimeToVariantTime(&row.parts, &date);
        EXPECT_DOUBLE_EQ(date, row.date) << TextOf(row.parts);
    }
}

TEST(PlatformTime, TurnsFileTimesIntoParts)
{
    const struct { uint64 units; const char* parts; } rows[] = {
        {0x0000000000000000, "1601-01-01 00:00:00.000 1"},
        {0x0000000000000001, "1601-01-01 00:00:00.000 1"},
        {0x019DB1DED53E8000, "1970-01-01 00:00:00.000 4"},
        {0x019DB1DED4A5E980, "1969-12-31 23:59:59.000 3"},
        {0x01BF82AC81016000, "2000-02-29 12:00:00.000 2"},
        {0x01DC7B1627B5E000, "2026-01-01 12:00:00.000 4"},
        {0x01DD0951247AA000, "2026-07-01 12:00:00.000 3"},
        {0x01E9FD1ED4A5E980, "2038-01-19 03:14:07.000 2"},
        {0x01E9FD1ED53E8000, "2038-01-19 03:14:08.000 2"},
        {0x0236485ED53E8000, "2106-02-07 06:28:16.000 0"},
        {0x24C85A5ED1C03FFF, "9999-12-31 23:59:59.999 5"},
        {0x7FFF35F4F06C7FFF, "30827-12-31 23:59:59.999 5"},
        {0x8000000000000000, "false"},
        {0xFFFFFFFFFFFFFFFF, "false"},
    };
    for (const auto& row : rows) {
        const FILETIME time = FileTimeOf(row.units);
        SYSTEMTIME parts;
        SetLastError(0);
        const bool done = FileTimeToSystemTime(&time, &parts) != FALSE;
        EXPECT_EQ(done ? TextOf(parts) : "false", row.parts) << row.units;
        EXPECT_EQ(GetLastError(), done ? 0u : ERROR_INVALID_PARAMETER);
    }
}

TEST(PlatformTime, TurnsPartsIntoFileTimes)
{
    const uint64 Fails = 12345;
    const struct { SYSTEMTIME parts; uint64 units; } rows[] = {
        {{1600, 12, 0, 31, 0, 0, 0, 0}, Fails},
        {{1601, 1, 0, 1, 0, 0, 0, 0}, 0x0000000000000000},
        {{1970, 1, 0, 1, 0, 0, 0, 0}, 0x019DB1DED53E8000},
        {{2000, 2, 0, 29, 23, 59, 59, 999}, 0x01BF8311163618F0},
        {{2023, 2, 0, 30, 0, 0, 0, 0}, Fails},
        {{2023, 0, 0, 1, 0, 0, 0, 0}, Fails},
        {{2023, 13, 0, 1, 0, 0, 0, 0}, Fails},
        {{2023, 1, 0, 0, 0, 0, 0, 0}, Fails},
        {{2023, 1, 0, 32, 0, 0, 0, 0}, Fails},
        {{2023, 1, 0, 1, 24, 0, 0, 0}, Fails},
        {{2023, 1, 0, 1, 0, 60, 0, 0}, Fails},
        {{2023, 1, 0, 1, 0, 0, 60, 0}, Fails},
        {{2023, 1, 0, 1, 0, 0, 0, 1000}, Fails},
        {{2023, 1, 9, 1, 0, 0, 0, 0}, 0x01D91D73FDC30000},
        {{30827, 12, 0, 31, 23, 59, 59, 999}, 0x7FFF35F4F06C58F0},
        {{0, 1, 0, 1, 0, 0, 0, 0}, Fails},
        {{1900, 2, 0, 29, 0, 0, 0, 0}, Fails}, // no leap year
        {{2023, 257, 0, 1, 0, 0, 0, 0}, Fails},
        {{65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535}, Fails},
    };
    for (const auto& row : rows) {
        FILETIME time = FileTimeOf(Fails);
        SetLastError(0);
        const bool done = SystemTimeToFileTime(&row.parts, &time) != FALSE;
        EXPECT_EQ(UnitsOf(time), row.units) << TextOf(row.parts);
        EXPECT_EQ(GetLastError(), done ? 0u : ERROR_INVALID_PARAMETER);
    }
}

TEST(PlatformTime, ShiftsFileTimesWithoutACheck)
{
    const struct {
        BOOL (*shift)(const FILETIME*, FILETIME*) noexcept;
        const char* zone;
        uint64 from, to;
    } rows[] = {
        {&FileTimeToLocalFileTime, "<+01>-1", 0x0000000000000000, 0x0000000861C46800},
        {&LocalFileTimeToFileTime, "<+01>-1", 0x0000000000000000, 0xFFFFFFF79E3B9800},
        {&FileTimeToLocalFileTime, "<+01>-1", 0x019DB1DED53E8000, 0x019DB1E73702E800},
        {&FileTimeToLocalFileTime, "<+01>-1", 0x01DC7B1627B5E000, 0x01DC7B1E897A4800},
        {&LocalFileTimeToFileTime, "<+01>-1", 0x01DC7B1627B5E000, 0x01DC7B0DC5F17800},
        {&FileTimeToLocalFileTime, "<+01>-1", 0x01DD0951247AA000, 0x01DD0959863F0800},
        {&LocalFileTimeToFileTime, "<+01>-1", 0x01DD0951247AA000, 0x01DD0948C2B63800},
        {&FileTimeToLocalFileTime, "<+01>-1", 0x7FFF35F4F06C7FFF, 0x7FFF35FD5230E7FF},
        {&FileTimeToLocalFileTime, "<+01>-1", 0x7FFFFFFFFFFFFFFF, 0x8000000861C467FF},
        {&FileTimeToLocalFileTime, "<+01>-1", 0x8000000000000000, 0x8000000861C46800},
        {&FileTimeToLocalFileTime, "<+01>-1", 0xFFFFFFFFFFFFFFFF, 0x0000000861C467FF},
        {&FileTimeToLocalFileTime, "EST5", 0x0000000000000000, 0xFFFFFFD61729F800},
        {&LocalFileTimeToFileTime, "EST5", 0x0000000000000000, 0x00000029E8D60800},
        {&FileTimeToLocalFileTime, "EST5", 0x019DB1DED53E8000, 0x019DB1B4EC687800},
        {&FileTimeToLocalFileTime, "EST5", 0x01DC7B1627B5E000, 0x01DC7AEC3EDFD800},
        {&LocalFileTimeToFileTime, "EST5", 0x01DC7B1627B5E000, 0x01DC7B40108BE800},
        {&FileTimeToLocalFileTime, "EST5", 0x01DD0951247AA000, 0x01DD09273BA49800},
        {&LocalFileTimeToFileTime, "EST5", 0x01DD0951247AA000, 0x01DD097B0D50A800},
        {&FileTimeToLocalFileTime, "EST5", 0x7FFF35F4F06C7FFF, 0x7FFF35CB079677FF},
        {&FileTimeToLocalFileTime, "EST5", 0x7FFFFFFFFFFFFFFF, 0x7FFFFFD61729F7FF},
        {&FileTimeToLocalFileTime, "EST5", 0x8000000000000000, 0x7FFFFFD61729F800},
        {&FileTimeToLocalFileTime, "EST5", 0xFFFFFFFFFFFFFFFF, 0xFFFFFFD61729F7FF},
    };
    for (const auto& row : rows) {
        const TimeZone zone(row.zone);
        const FILETIME from = FileTimeOf(row.from);
        FILETIME to;
        EXPECT_EQ(row.shift(&from, &to), TRUE);
        EXPECT_EQ(UnitsOf(to), row.to) << row.zone << ' ' << row.from;
    }
}

TEST(PlatformTime, BreaksDownLocalTime)
{
    const char* const Berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
    const char* const NewYork = "EST5EDT,M3.2.0,M11.1.0";
    const struct { const char* zone; int64 time; const char* parts; } rows[] = {
        {"UTC0", -LLONG_MAX, "22"},
        {"UTC0", -43201, "22"},
        {"UTC0", -43200, "22"},
        {"UTC0", -3600, "22"},
        {"UTC0", -1, "22"},
        {"UTC0", 0, "1970-01-01 00:00:00 4 0 0"},
        {"UTC0", 1, "1970-01-01 00:00:01 4 0 0"},
        {"UTC0", 86399, "1970-01-01 23:59:59 4 0 0"},
        {"UTC0", 2147483647, "2038-01-19 03:14:07 2 18 0"},
        {"UTC0", 2147483648, "2038-01-19 03:14:08 2 18 0"},
        {"UTC0", 1767268800, "2026-01-01 12:00:00 4 0 0"},
        {"UTC0", 1782907200, "2026-07-01 12:00:00 3 181 0"},
        {"UTC0", 32535215999, "3000-12-31 23:59:59 3 364 0"},
        {"UTC0", 32536800000, "22"},
        {"UTC0", 32536850399, "22"},
        {"UTC0", 32536850400, "22"},
        {"UTC0", 253402300799, "22"},
        {"UTC0", 253402300800, "22"},
        {"UTC0", 67768036191676799, "22"},
        {"UTC0", LLONG_MAX, "22"},
        {Berlin, -1, "22"},
        {Berlin, 0, "1970-01-01 01:00:00 4 0 0"},
        {Berlin, 86399, "1970-01-02 00:59:59 5 1 0"},
        {Berlin, 2147483648, "2038-01-19 04:14:08 2 18 0"},
        {Berlin, 1767268800, "2026-01-01 13:00:00 4 0 0"},
        {Berlin, 1782907200, "2026-07-01 14:00:00 3 181 1"},
        {Berlin, 32535215999, "3001-01-01 00:59:59 4 0 0"},
        {Berlin, 1772953199, "2026-03-08 07:59:59 0 66 0"},
        {Berlin, 1772953200, "2026-03-08 08:00:00 0 66 0"},
        {Berlin, 1774745999, "2026-03-29 01:59:59 0 87 0"},
        {Berlin, 1774746000, "2026-03-29 03:00:00 0 87 1"},
        {Berlin, 1792889999, "2026-10-25 02:59:59 0 297 1"},
        {Berlin, 1792890000, "2026-10-25 02:00:00 0 297 0"},
        {Berlin, 1793512799, "2026-11-01 06:59:59 0 304 0"},
        {Berlin, 1793512800, "2026-11-01 07:00:00 0 304 0"},
        {NewYork, -1, "22"},
        {NewYork, 0, "1969-12-31 19:00:00 3 364 0"},
        {NewYork, 86399, "1970-01-01 18:59:59 4 0 0"},
        {NewYork, 2147483648, "2038-01-18 22:14:08 1 17 0"},
        {NewYork, 1767268800, "2026-01-01 07:00:00 4 0 0"},
        {NewYork, 1782907200, "2026-07-01 08:00:00 3 181 1"},
        {NewYork, 32535215999, "3000-12-31 18:59:59 3 364 0"},
        {NewYork, 1772953199, "2026-03-08 01:59:59 0 66 0"},
        {NewYork, 1772953200, "2026-03-08 03:00:00 0 66 1"},
        {NewYork, 1774745999, "2026-03-28 20:59:59 6 86 1"},
        {NewYork, 1774746000, "2026-03-28 21:00:00 6 86 1"},
        {NewYork, 1792889999, "2026-10-24 20:59:59 6 296 1"},
        {NewYork, 1792890000, "2026-10-24 21:00:00 6 296 1"},
        {NewYork, 1793512799, "2026-11-01 01:59:59 0 304 1"},
        {NewYork, 1793512800, "2026-11-01 01:00:00 0 304 0"},
    };
    for (const auto& row : rows) {
        const TimeZone zone(row.zone);
        std::tm parts = {};
        const int failure = _localtime64_s(&parts, &row.time);
        char text[64];
        if (failure == 0)
            std::snprintf(text, sizeof text, "%d-%02d-%02d %02d:%02d:%02d %d %d %d", parts.tm_year + 1900, parts.tm_mon + 1,
                          parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec, parts.tm_wday, parts.tm_yday, parts.tm_isdst);
        else
            std::snprintf(text, sizeof text, "%d", failure);
        EXPECT_STREQ(text, row.parts) << row.zone << ' ' << row.time;
        const int all[] = {parts.tm_year, parts.tm_mon,  parts.tm_mday, parts.tm_hour, parts.tm_min,
                           parts.tm_sec,  parts.tm_wday, parts.tm_yday, parts.tm_isdst};
        EXPECT_EQ(std::count(std::begin(all), std::end(all), -1), failure == 0 ? 0 : 9);
    }
}
// clang-format on

TEST(PlatformTime, RefusesMissingArguments)
{
    std::tm parts = {};
    const int64 time = 0;
    EXPECT_EQ(_localtime64_s(&parts, nullptr), 22);
    EXPECT_EQ(parts.tm_year, -1);
    EXPECT_EQ(_localtime64_s(nullptr, &time), 22);
}

// Clocks in Berlin went without summer time in 1975, whatever the rule of today says.
TEST(PlatformTime, TakesPastOffsetsFromTheZonesData)
{
    if (!std::filesystem::exists("/usr/share/zoneinfo/Europe/Berlin"))
        GTEST_SKIP() << "no time-zone data";
    const TimeZone zone("Europe/Berlin");
    const int64 july1975 = 173448000;
    std::tm parts = {};
    ASSERT_EQ(_localtime64_s(&parts, &july1975), 0);
    EXPECT_EQ(parts.tm_hour, 13);
    EXPECT_EQ(parts.tm_isdst, 0);
}

// File times all move by the same offset, that of today: in summer an hour more than in winter.
TEST(PlatformTime, ShiftsSummerAndWinterFileTimesAlike)
{
    const TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const uint64 january2026 = 0x01DC7B1627B5E000, july2026 = 0x01DD0951247AA000, hour = 36000000000;
    for (const uint64 units : {january2026, july2026}) {
        const FILETIME time = FileTimeOf(units);
        FILETIME local, back;
        FileTimeToLocalFileTime(&time, &local);
        LocalFileTimeToFileTime(&local, &back);
        EXPECT_EQ(UnitsOf(back), units);
        std::time_t now = std::time(nullptr);
        EXPECT_EQ(UnitsOf(local) - units, std::localtime(&now)->tm_isdst != 0 ? 2 * hour : hour);
    }
}

} // namespace
