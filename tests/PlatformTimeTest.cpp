// The platform's time conversions against answers recorded from the original platform.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "platform/Platform.h"
#include "support/Agreement.h"
#include "support/TimeZone.h"

namespace {

using Agreement::Row;

std::string TextOf(const SYSTEMTIME& parts)
{
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d weekday=%d", parts.wYear,
                  parts.wMonth, parts.wDay, parts.wHour, parts.wMinute, parts.wSecond, parts.wMilliseconds,
                  parts.wDayOfWeek);
    return text;
}

SYSTEMTIME PartsOf(const std::string& text)
{
    SYSTEMTIME parts = {};
    std::sscanf(text.c_str(), "%hu-%hu-%hu %hu:%hu:%hu.%hu weekday=%hu", &parts.wYear, &parts.wMonth,
                &parts.wDay, &parts.wHour, &parts.wMinute, &parts.wSecond, &parts.wMilliseconds,
                &parts.wDayOfWeek);
    return parts;
}

FILETIME FileTimeOf(uint64 units)
{
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

uint64 UnitsOf(const FILETIME& time)
{
    return uint64{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

std::string Formatted(const char* format, auto value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string Refused()
{
    return "false error=" + std::to_string(GetLastError());
}

std::string AskVariantToSystem(const Row& row)
{
    SYSTEMTIME parts;
    return VariantTimeToSystemTime(std::strtod(row.what.c_str(), nullptr), &parts) ? TextOf(parts) : "false";
}

std::string AskSystemToVariant(const Row& row)
{
    const SYSTEMTIME parts = PartsOf(row.what);
    double date = 0;
    return SystemTimeToVariantTime(&parts, &date) ? Formatted("%.16g", date) : "false";
}

std::string AskFileToSystem(const Row& row)
{
    const FILETIME time = FileTimeOf(std::stoull(row.what, nullptr, 0));
    SYSTEMTIME parts;
    return FileTimeToSystemTime(&time, &parts) ? TextOf(parts) : Refused();
}

std::string AskSystemToFile(const Row& row)
{
    const SYSTEMTIME parts = PartsOf(row.what);
    FILETIME time;
    return SystemTimeToFileTime(&parts, &time) ? Formatted("0x%016llX", UnitsOf(time)) : Refused();
}

// The zones of the recording by their rules of 2026. File times were recorded in winter.
const char* RuleOf(const std::string& zone, bool isWinter)
{
    return zone == "UTC"             ? "UTC0"
           : zone == "Europe/Berlin" ? isWinter ? "<+01>-1" : "CET-1CEST,M3.5.0,M10.5.0/3"
           : isWinter                ? "EST5"
                                     : "EST5EDT,M3.2.0,M11.1.0";
}

std::string AskShift(const Row& row)
{
    const TimeZone zone(RuleOf(row.zone, true));
    const FILETIME from = FileTimeOf(std::stoull(row.what, nullptr, 0));
    FILETIME to;
    const BOOL done = row.operation == "FileTimeToLocalFileTime" ? FileTimeToLocalFileTime(&from, &to)
                                                                 : LocalFileTimeToFileTime(&from, &to);
    const auto added = static_cast<int64>(UnitsOf(to) - UnitsOf(from)) / 10'000'000;
    return (done ? "true seconds_added=" : "false") + std::to_string(added) +
           Formatted(" result=0x%016llX", UnitsOf(to));
}

std::string AskLocalTime(const Row& row)
{
    const TimeZone zone(RuleOf(row.zone, false));
    std::tm parts = {};
    const int64 time = std::strtoll(row.what.c_str(), nullptr, 10);
    const int failure = _localtime64_s(row.what == "result NULL" ? nullptr : &parts,
                                       row.what == "time NULL" ? nullptr : &time);
    if (row.what.ends_with("NULL"))
        return std::to_string(failure) +
               (row.what == "time NULL" ? Formatted(" year=%d", parts.tm_year) : "");
    const int all[] = {parts.tm_year, parts.tm_mon,  parts.tm_mday, parts.tm_hour, parts.tm_min,
                       parts.tm_sec,  parts.tm_wday, parts.tm_yday, parts.tm_isdst};
    if (std::count(std::begin(all), std::end(all), -1) == std::ssize(all))
        return std::to_string(failure) + " all fields -1";
    char text[96];
    std::snprintf(text, sizeof text, "%d year=%d month=%d day=%d %02d:%02d:%02d wday=%d yday=%d dst=%d",
                  failure, parts.tm_year, parts.tm_mon, parts.tm_mday, parts.tm_hour, parts.tm_min,
                  parts.tm_sec, parts.tm_wday, parts.tm_yday, parts.tm_isdst);
    return text;
}

TEST(PlatformTime, AgreesWithTheOriginalPlatform)
{
    Agreement::Compare("files-answers.tsv",
                       {{"VariantTimeToSystemTime", AskVariantToSystem},
                        {"SystemTimeToVariantTime", AskSystemToVariant},
                        {"FileTimeToSystemTime", AskFileToSystem},
                        {"SystemTimeToFileTime", AskSystemToFile},
                        {"FileTimeToLocalFileTime", AskShift},
                        {"LocalFileTimeToFileTime", AskShift},
                        {"_localtime64_s", AskLocalTime}},
                       {});
}

TEST(PlatformTime, CarriesIntoTheWeekdayAndRefusesWhatIsNoDate)
{
    const struct {
        const char *date, *parts;
    } dates[] = {{"36526.999994999998", "2000-01-02 00:00:00.000 weekday=0"},
                 {"-36526.999999", "1799-12-29 00:00:00.000 weekday=0"},
                 {"2958465.9999999", "false"}, // rounds up past the last day
                 {"nan", "false"}};
    for (const auto& row : dates)
        EXPECT_EQ(AskVariantToSystem({"", row.date, ""}), row.parts) << row.date;
    for (const char* parts : {"0100-01-00", "65535-65535-65535 65535:65535:65535.65535 weekday=65535"}) {
        EXPECT_EQ(AskSystemToVariant({"", parts, ""}), "false") << parts;
        EXPECT_EQ(AskSystemToFile({"", parts, ""}), "false error=87") << parts;
    }
    for (const char* parts : {"1900-02-29", "2023-257-01"})
        EXPECT_EQ(AskSystemToFile({"", parts, ""}), "false error=87") << parts;
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
