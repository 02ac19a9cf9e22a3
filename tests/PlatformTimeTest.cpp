// The platform's time conversions against answers recorded from the original platform.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "RecordedZone.h"
#include "platform/Platform.h"
#include "support/Agreement.h"

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
    SYSTEMTIME parts = PartsOf(row.what);
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

std::string AskShift(const Row& row)
{
    const RecordedZone zone(row.zone, true);
    if (!zone.IsHere)
        return "";
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
    const RecordedZone zone(row.zone, false);
    if (!zone.IsHere)
        return "";
    std::tm parts = {};
    const int64 time = std::strtoll(row.what.c_str(), nullptr, 10);
    const std::string failure = std::to_string(_localtime64_s(row.what == "result NULL" ? nullptr : &parts,
                                                              row.what == "time NULL" ? nullptr : &time));
    if (row.what == "result NULL")
        return failure;
    if (row.what == "time NULL")
        return failure + Formatted(" year=%d", parts.tm_year);
    if (parts.tm_year == -1 && parts.tm_yday == -1 && parts.tm_isdst == -1 && parts.tm_sec == -1)
        return failure + " all fields -1";
    char text[96];
    std::snprintf(text, sizeof text, " year=%d month=%d day=%d %02d:%02d:%02d wday=%d yday=%d dst=%d",
                  parts.tm_year, parts.tm_mon, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  parts.tm_wday, parts.tm_yday, parts.tm_isdst);
    return failure + text;
}

TEST(PlatformTime, AgreesWithTheOriginalPlatform)
{
    Agreement::CompareFiles({{"VariantTimeToSystemTime", AskVariantToSystem},
                             {"SystemTimeToVariantTime", AskSystemToVariant},
                             {"FileTimeToSystemTime", AskFileToSystem},
                             {"SystemTimeToFileTime", AskSystemToFile},
                             {"(LocalFile|File)TimeTo(Local)?FileTime", AskShift},
                             {"_localtime64_s", AskLocalTime}});
}

TEST(PlatformTime, CarriesIntoTheWeekdayAndRefusesWhatIsNoDate)
{
    Agreement::Comparison comparison("odd dates", "odd date exceptions");
    for (const auto& [date, parts] : Cases<2>("odd dates"))
        comparison.Check("to system", date, AskVariantToSystem({"", date, ""}), parts);
    for (const char* parts : {"0100-01-00", "65535-65535-65535 65535:65535:65535.65535 weekday=65535"}) {
        comparison.Check("to variant", parts, AskSystemToVariant({"", parts, ""}), "false");
        EXPECT_EQ(AskSystemToFile({"", parts, ""}), "false error=87") << parts;
    }
}

} // namespace
