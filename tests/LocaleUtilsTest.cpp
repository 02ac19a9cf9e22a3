#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

#include <unistd.h>

#include "LocaleUtils.h"
#include "framework/FailureMarkers.h"
#include "platform/posix/IcuLoader.h"
#include "support/Table.h"
#include "support/UserSettings.h"

namespace {

const char* const TwoDigitYears = "Control Panel\\International\\Calendars\\TwoDigitYearMax";

using Table::Unescaped;

std::vector<std::string> markers;

class Locale : public testing::Test, public UserSettings {
protected:
    Locale()
    {
        markers.clear();
        FailureMarkers::SetSink([](const CString& line) { markers.push_back(line.GetString()); });
    }
    ~Locale() override { FailureMarkers::SetSink(nullptr); }
};

TEST_F(Locale, FoldsGroupings)
{
    for (const auto& cells : Table::Section("groupings"))
        EXPECT_EQ(LocaleUtils::ConvertGrouping(Unescaped(cells[0])), std::stoul(cells[1])) << cells[0];
    Use("sGrouping", "3;2;0");
    Use("sMonGrouping", "4;0");
    EXPECT_EQ(LocaleUtils::GetDigitGrouping(), 32u);
    EXPECT_EQ(LocaleUtils::GetCurrencyGrouping(), 4u);
}

TEST_F(Locale, NamesDaysFromSundayAndMonthsUpToThirteen)
{
    const char* const days[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    for (int day = 1; day <= 7; ++day) {
        EXPECT_EQ(LocaleUtils::GetDayName(day, false), days[day - 1]);
        EXPECT_EQ(LocaleUtils::GetDayName(day, true), CString(days[day - 1]).Left(3));
    }
    EXPECT_EQ(LocaleUtils::GetMonthName(1, false) + LocaleUtils::GetMonthName(12, true), "JanuaryDec");
    Set("LC_ALL", "fi_FI.UTF-8");
    EXPECT_EQ(LocaleUtils::GetDayName(1, false) + LocaleUtils::GetMonthName(12, false),
              "sunnuntainajoulukuu");
    EXPECT_EQ(LocaleUtils::GetMonthName(13, false) + LocaleUtils::GetMonthName(13, true), "");
    EXPECT_TRUE(markers.empty());
    for (const int wild : {-2147483647 - 1, -1, 0, 14, 2147483647}) {
        markers.clear();
        EXPECT_EQ(LocaleUtils::GetMonthName(wild, false), "");
        EXPECT_EQ(LocaleUtils::GetDayName(wild, true), "");
        EXPECT_EQ(markers, (std::vector<std::string>{"{408654B2-6791-46be-96AE-DECE99832073}",
                                                     "{9358F711-98BB-411f-8F4C-A9BE05892568}"}));
    }
    EXPECT_EQ(LocaleUtils::GetDayName(8, false), "");
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(3), "");
    EXPECT_EQ(markers.back(), "{5F7F49DE-1922-43EA-A2DF-CF45C26EE41B}");
    unsigned int value = 77;
    LocaleUtils::GetLocaleInfoNumberFor(LOCALE_SDECIMAL, value);
    EXPECT_EQ(value, 77u);
}

// What the getters make of the settings, by the setting's name.
std::map<std::string, std::string> Forms()
{
    const auto text = [](auto... values) { return (std::to_string(values) + ...); };
    bool space = false, first = false, parentheses = false, separated = false, minus = false, before = false,
         after = false, enclosed = false, markerFirst = false;
    unsigned int day = 9, month = 9, year = 9;
    LocaleUtils::GetNegNumberFormat(space, first, parentheses);
    LocaleUtils::GetNegCurrencySymbolFormat(minus, before, after, enclosed);
    LocaleUtils::GetDateOrdering(day, month, year);
    const bool isPrefix = LocaleUtils::GetCurrencySymbolIsPrefix(separated);
    const bool is12Hour = LocaleUtils::Get12HourTime(markerFirst);
    return {{"iNegNumber", text(space, first, parentheses)},
            {"iCurrency", text(isPrefix, separated)},
            {"iNegCurr", text(minus, before, after, enclosed)},
            {"iDate", text(day, month, year)},
            {"iTime", text(is12Hour)},
            {"iTimePrefix", text(markerFirst)},
            {"iFirstDayOfWeek", text(LocaleUtils::GetFirstDayOfWeek())},
            {"iCentury", text(LocaleUtils::GetFullYearDisplay())},
            {"iLZero", text(LocaleUtils::GetLeadingZero())},
            {"iDayLZero", text(LocaleUtils::GetDayHasLeadingZero())},
            {"iMonLZero", text(LocaleUtils::GetMonthHasLeadingZero())},
            {"iTLZero", text(LocaleUtils::GetHourHasLeadingZero())},
            {"iMeasure", text(LocaleUtils::GetUSMeasurementSystem())},
            {"iCountry", text(LocaleUtils::GetCountryCode())},
            {"iDigits", text(LocaleUtils::GetNumberFractionalDigits())},
            {"iCurrDigits", text(LocaleUtils::GetCurrencyFractionalDigits())}};
}

TEST_F(Locale, ReadsTheFormsOffTheirNumbers)
{
    for (const auto& cells : Table::Section("forms")) {
        std::istringstream forms(cells[1]);
        int number = 0;
        for (std::string form; forms >> form; ++number) {
            Use(cells[0], std::to_string(number));
            EXPECT_EQ(Forms()[cells[0]], form) << cells[0] << ' ' << number;
        }
    }
}

TEST_F(Locale, TakesAUsersPatternsForTheItemsThatAreReadOffThem)
{
    Use("sShortDate", "dd'd'-MM-yy");
    Use("sTimeFormat", "tt HH.mm");
    const std::map<std::string, std::string> expected = {
        {"iDate", "012"}, {"iDayLZero", "1"},   {"iMonLZero", "1"}, {"iCentury", "0"},
        {"iTime", "0"},   {"iTimePrefix", "1"}, {"iTLZero", "1"}};
    for (const auto& [item, form] : expected)
        EXPECT_EQ(Forms()[item], form) << item;
    EXPECT_EQ(LocaleUtils::GetDateSeparator() + LocaleUtils::GetTimeSeparator(), "'d'-.");
    Use("sDate", "~"); // the item's own setting wins
    EXPECT_EQ(LocaleUtils::GetDateSeparator(), "~");
    for (const char* pattern : {"", "x", "''", "'", "d", "yyyy"}) {
        Use("sShortDate", pattern);
        Use("sTimeFormat", pattern);
        Forms();
    }
}

TEST_F(Locale, GoesByTheCategoryOfTheItem)
{
    for (const auto& cells : Table::Section("categories")) {
        Set(cells[0], cells[1]);
        CString answers;
        answers.Format("%s %u %u %d %u", LocaleUtils::GetDayName(2, false).GetString(),
                       LocaleUtils::GetDigitGrouping(), LocaleUtils::GetCurrencyFractionalDigits(),
                       LocaleUtils::GetUSMeasurementSystem(), LocaleUtils::GetCountryCode());
        EXPECT_EQ(answers, Unescaped(cells[2]).c_str()) << cells[0];
    }
}

TEST_F(Locale, FallsBackToTheLanguageAndThenToEnglish)
{
    for (const auto& cells : Table::Section("locales")) {
        Set("LC_ALL", Unescaped(cells[0]));
        EXPECT_EQ(LocaleUtils::GetDayName(1, false), cells[1].c_str()) << cells[0];
        EXPECT_EQ(LocaleUtils::GetCountryName(), cells[2].c_str()) << cells[0];
    }
    Set("LC_ALL", std::string(100'000, 'd'));
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    Set("LC_ALL", "sr_RS@latin");
    EXPECT_EQ(LocaleUtils::GetLanguageName(), "Serbian (Latin)");
    EXPECT_TRUE(markers.empty());
    for (char first = 'a'; first <= 'z'; ++first) // every language of two letters, known or not
        for (char second = 'a'; second <= 'z'; ++second) {
            Set("LC_ALL", std::string{first, second});
            EXPECT_FALSE(LocaleUtils::GetDayName(1, false).IsEmpty()) << first << second;
            EXPECT_FALSE(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL).IsEmpty()) << first << second;
            EXPECT_NE(LocaleUtils::GetCountryCode(), 0u) << first << second;
        }
}

TEST_F(Locale, SeesChangesAtOnceButKeepsFiveSeparators)
{
    const struct {
        CString (*get)();
        const char *setting, *text;
    } kept[] = {{&LocaleUtils::GetDecimalSeparator, "sDecimal", ","},
                {&LocaleUtils::GetThousandsSeparator, "sThousand", "."},
                {&LocaleUtils::GetCurrencySymbol, "sCurrency", "\x80"},
                {&LocaleUtils::GetCurrencyDecimalSeparator, "sMonDecimalSep", ","},
                {&LocaleUtils::GetCurrencyThousandsSeparator, "sMonThousandSep", "."}};
    Set("LC_ALL", "de_DE");
    for (const auto& row : kept) {
        Use(row.setting, ""); // an empty text is asked for again
        EXPECT_EQ(row.get(), "") << row.setting;
        Use(row.setting, row.text);
        EXPECT_EQ(row.get(), row.text) << row.setting;
        Use(row.setting, "*");
        EXPECT_EQ(row.get(), row.text) << row.setting;
    }
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL), "*");
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL | LOCALE_NOUSEROVERRIDE), ",");

    static char variable[] = "LC_TIME=fr_FR"; // memory of the host's own
    Unset("LC_ALL");
    Unset("LC_TIME");
    putenv(variable);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "dimanche");
    std::memcpy(variable, "LC_TIME=it_IT", sizeof variable);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "domenica");
    unsetenv("LC_TIME");
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    char** const saved = environ;
    char* none[] = {nullptr};
    for (char** const other : {none, none, static_cast<char**>(nullptr), static_cast<char**>(nullptr)}) {
        environ = other;
        EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    }
    environ = saved;
}

TEST_F(Locale, SeesAnotherProcessWithinASecond)
{
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), ":");
    WriteFile(International() / "sTime", "h\n");
    WriteFile(International() / "Calendars/TwoDigitYearMax/1", "2049\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), "h");
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 49);
    WriteFile(International() / "sTime", "m"); // in place: the folder looks the same
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), "m");
}

TEST_F(Locale, PassesOverSettingsThatAreNone)
{
    std::filesystem::create_directories(International() / "sTime");
    WriteFile(International() / "sDate", std::string(80, '/'));
    WriteFile(International() / "s1159", std::string(10'000'000, 'x'));
    WriteFile(International() / "s2359", std::string("a\0b", 3));
    WriteFile(International() / "sCountry", std::string(79, 'c'));
    for (const char* number : {"", "x", "-1", "1x", " 1", "4294967296", "3"}) {
        Use("iDigits", number);
        EXPECT_EQ(LocaleUtils::GetNumberFractionalDigits(), *number == '3' ? 3u : 2u) << number;
    }
    EXPECT_EQ(LocaleUtils::GetTimeSeparator() + LocaleUtils::GetDateSeparator(), ":/");
    EXPECT_EQ(LocaleUtils::GetTimeAM() + LocaleUtils::GetTimePM(), "AMPM");
    EXPECT_EQ(LocaleUtils::GetCountryName(), CString('c', 79));
}

TEST_F(Locale, HasATwoDigitYearLimit)
{
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 29);
    auto rows = Table::Section("limit of two digits");
    rows.push_back({std::string(254, ' ') + "12", "12"});
    for (const auto& cells : rows) {
        Use("1", Unescaped(cells[0]), TwoDigitYears);
        EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), std::stoi(cells[1])) << cells[0];
    }
    const auto file = International() / "Calendars/TwoDigitYearMax/1";
    WriteFile(file, std::string(10'000'000, '1'));
    Use("another", "", TwoDigitYears); // so that the file is read again
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 11);
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    Use("another", "", TwoDigitYears);
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 29);
}

TEST_F(Locale, KeepsToTheRoomOfTheCaller)
{
    char buffer[8] = "#";
    DWORD error = 0;
    const auto ask = [&](LCTYPE item, int size) {
        SetLastError(0);
        const int result = GetLocaleInfoA(LOCALE_USER_DEFAULT, item, buffer, size);
        error = GetLastError();
        return result;
    };
    constexpr LCTYPE Number = LOCALE_IDIGITS | LOCALE_RETURN_NUMBER;
    for (const LCTYPE item : {LOCALE_SGROUPING, Number}) { // "3;0", and four bytes
        EXPECT_EQ(ask(item, 0), 4);
        EXPECT_EQ(ask(item, 3), 0);
        EXPECT_EQ(error, ERROR_INSUFFICIENT_BUFFER);
    }
    EXPECT_EQ(ask(LOCALE_SGROUPING, -1), 0);
    EXPECT_EQ(error, ERROR_INVALID_PARAMETER);
    for (const LCTYPE item : {LCTYPE{0}, LCTYPE{127}, LCTYPE{128}, LCTYPE{4095}, LCTYPE{4224},
                              LCTYPE{0x1FFFFFFF}, LOCALE_SDECIMAL | LOCALE_RETURN_NUMBER}) {
        EXPECT_EQ(ask(item, 8), 0) << item;
        EXPECT_EQ(error, ERROR_INVALID_FLAGS);
    }
    EXPECT_EQ(GetLocaleInfoA(1031, LOCALE_SDECIMAL, buffer, 8), 0);
    EXPECT_STREQ(buffer, "#");
    EXPECT_EQ(ask(LOCALE_SGROUPING, 4), 4);
    EXPECT_STREQ(buffer, "3;0");
}

TEST_F(Locale, MayBeAskedByManyThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 5000; ++round) {
                EXPECT_EQ(LocaleUtils::GetDayName(round % 7 + 1, true).GetLength(), 3);
                EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax() / 10, 2);
            }
        });
    for (int i = 0; i < 100; ++i)
        Use("1", "202" + std::to_string(i % 10), TwoDigitYears);
    for (std::thread& thread : threads)
        thread.join();
}

// In a process of its own, as the module is looked for only once. Exits with 0 when all is as it should be.
void AskWithoutTheModule()
{
    IcuLoader::moduleFolder = [] { return std::string("/nowhere"); };
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    FailureMarkers::SetSink([](const CString& line) {
        markers.push_back(line.GetString());
        LocaleUtils::GetMonthName(1, false); // the log asks for the locale itself
    });
    markers.clear();
    const bool isEnglish = LocaleUtils::GetDayName(1, false) == "Sunday" &&
                           LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL) == "." &&
                           LocaleUtils::GetCountryCode() == 1;
    std::exit(isEnglish && markers.size() == 1 && markers[0].size() == 38 ? 0 : 1);
}

TEST(LocaleDeathTest, AnswersInEnglishWithoutTheModuleAndSaysSoOnce)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(AskWithoutTheModule(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(IcuLoader::Load("/nowhere/libkvt01_icu.so"), nullptr);
    EXPECT_EQ(IcuLoader::Load("libm.so.6"), nullptr); // another library
}

} // namespace
