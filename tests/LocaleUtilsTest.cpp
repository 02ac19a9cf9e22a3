#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cstring>
#include <map>
#include <thread>
#include <vector>

#include <unistd.h>

#include "LocaleUtils.h"
#include "framework/FailureMarkers.h"
#include "platform/posix/IcuLoader.h"
#include "support/Cases.h"
#include "support/UserSettings.h"

namespace {

const char* const TwoDigitYears = "Control Panel\\International\\Calendars\\TwoDigitYearMax";

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
    for (const auto& [grouping, number] : Cases<2>("groupings"))
        EXPECT_EQ(LocaleUtils::ConvertGrouping(grouping), std::stoul(number)) << grouping;
    Use("sGrouping", "3;2;0");
    Use("sMonGrouping", "4;0");
    EXPECT_EQ(LocaleUtils::GetDigitGrouping(), 32u);
    EXPECT_EQ(LocaleUtils::GetCurrencyGrouping(), 4u);
}

TEST_F(Locale, NamesDaysFromSundayAndMonthsUpToThirteen)
{
    CString names;
    for (int day = 1; day <= 7; ++day)
        names += LocaleUtils::GetDayName(day, false) + ' ' + LocaleUtils::GetDayName(day, true) + ' ';
    EXPECT_EQ(names, "Sunday Sun Monday Mon Tuesday Tue Wednesday Wed Thursday Thu Friday Fri Saturday Sat ");
    EXPECT_EQ(LocaleUtils::GetMonthName(1, false) + LocaleUtils::GetMonthName(12, true), "JanuaryDec");
    Set("LC_ALL", "fi_FI.UTF-8");
    EXPECT_EQ(LocaleUtils::GetDayName(1, false) + LocaleUtils::GetMonthName(12, false),
              "sunnuntainajoulukuu");
    EXPECT_EQ(LocaleUtils::GetMonthName(13, false) + LocaleUtils::GetMonthName(13, true), "");
    EXPECT_TRUE(markers.empty());
    for (const int wild : {INT_MIN, -1, 0, 14, INT_MAX}) {
        markers.clear();
        EXPECT_EQ(LocaleUtils::GetMonthName(wild, false) + LocaleUtils::GetDayName(wild, true), "");
        EXPECT_EQ(markers, (std::vector<std::string>{"{9358F711-98BB-411f-8F4C-A9BE05892568}",
                                                     "{408654B2-6791-46be-96AE-DECE99832073}"}));
    }
    for (const unsigned long item : {0ul, 3ul, 127ul, 128ul, 4095ul, 4224ul, 0x1FFFFFFFul, ~0ul}) {
        markers.clear();
        EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(item), "");
        EXPECT_EQ(markers, std::vector<std::string>{"{5F7F49DE-1922-43EA-A2DF-CF45C26EE41B}"}) << item;
        unsigned int value = 77;
        LocaleUtils::GetLocaleInfoNumberFor(item == 0 ? LOCALE_SDECIMAL : item, value);
        EXPECT_EQ(value, 77u);
    }
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
    for (const auto& [setting, forms] : Cases<2>("forms"))
        for (int number = 0; const std::string& form : CellsOf(forms, ' ')) {
            Use(setting, std::to_string(number));
            EXPECT_EQ(Forms()[setting], form) << setting << ' ' << number;
            ++number;
        }
}

TEST_F(Locale, TakesAUsersPatternsForTheItemsThatAreReadOffThem)
{
    Use("sShortDate", "dd'd'-MM-yy");
    Use("sTimeFormat", "tt HH.mm");
    auto forms = Forms();
    EXPECT_EQ(forms["iDate"] + forms["iDayLZero"] + forms["iMonLZero"] + forms["iCentury"], "012110");
    EXPECT_EQ(forms["iTime"] + forms["iTimePrefix"] + forms["iTLZero"], "011");
    EXPECT_EQ(LocaleUtils::GetDateSeparator() + LocaleUtils::GetTimeSeparator(), "'d'-.");
    Use("sDate", "~"); // the item's own setting wins
    EXPECT_EQ(LocaleUtils::GetDateSeparator(), "~");
}

TEST_F(Locale, GoesByTheCategoryOfTheItem)
{
    for (const auto& [variable, locale, expected] : Cases<3>("categories")) {
        Set(variable, locale);
        CString answers;
        answers.Format("%s %u %u %d %u", LocaleUtils::GetDayName(2, false).GetString(),
                       LocaleUtils::GetDigitGrouping(), LocaleUtils::GetCurrencyFractionalDigits(),
                       LocaleUtils::GetUSMeasurementSystem(), LocaleUtils::GetCountryCode());
        EXPECT_EQ(answers, expected) << variable;
    }
}

TEST_F(Locale, FallsBackToTheLanguageAndThenToEnglish)
{
    auto rows = Cases<3>("locales");
    rows.push_back({std::string(100'000, 'd'), "Sunday", "United States"});
    for (const auto& [locale, sunday, country] : rows) {
        Set("LC_ALL", locale);
        EXPECT_EQ(LocaleUtils::GetDayName(1, false), sunday) << locale;
        EXPECT_EQ(LocaleUtils::GetCountryName(), country) << locale;
    }
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
    char** const saved = std::exchange(environ, nullptr);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    environ = saved;
}

TEST_F(Locale, SeesAnotherProcessWithinASecond)
{
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), ":");
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 29);
    WriteFile(International() / "sTime", "h\n");
    WriteFile(International() / "Calendars/TwoDigitYearMax/1", "2049\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), "h");
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 49);
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
    auto rows = Cases<2>("limit of two digits");
    rows.push_back({std::string(10'000'000, '1'), "11"});
    for (const auto& [setting, limit] : rows) {
        Use("1", setting, TwoDigitYears);
        EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), std::stoi(limit)) << setting.substr(0, 10);
    }
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
