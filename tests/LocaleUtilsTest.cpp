#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include "LocaleUtils.h"
#include "framework/FailureMarkers.h"
#include "platform/Platform.h"
#include "platform/posix/IcuLoader.h"
#include "support/UserSettings.h"

namespace {

std::vector<std::string> markers;

class Locale : public testing::Test {
protected:
    Locale()
    {
        markers.clear();
        FailureMarkers::SetSink([](const CString& line) { markers.push_back(line.GetString()); });
    }
    ~Locale() override { FailureMarkers::SetSink(nullptr); }

    void Use(const std::string& name, const std::string& text,
             const char* path = "Control Panel\\International")
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
                  0);
        EXPECT_EQ(RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                                 static_cast<DWORD>(text.size() + 1)),
                  0);
        RegCloseKey(key);
    }
    // The flags that a getter sets, and its answer as the last one where it has one: "0110".
    template <class Getter>
    std::string Flags(const char* setting, int number, Getter getter)
    {
        Use(setting, std::to_string(number));
        std::string text;
        for (const bool flag : getter())
            text += flag ? '1' : '0';
        return text;
    }

    UserSettings m_user;
};

TEST_F(Locale, FoldsGroupings)
{
    struct {
        const char* text;
        unsigned int grouping;
    } const cases[] = {{"", 0},
                       {"3;0", 3},
                       {"3;2;0", 32},
                       {"3", 3},
                       {"9;0", 0},
                       {"0", 0},
                       {"3;9;2", 32},
                       {"12345678", 12345678},
                       {"\xB3;3", 3},
                       {"x3y", 3},
                       {"4;2;1;4;1;8;1;8;1;8;3", 42141818183 % 4294967296}};
    for (const auto& row : cases)
        EXPECT_EQ(LocaleUtils::ConvertGrouping(row.text), row.grouping) << row.text;
    m_user.Set("LC_ALL", "hi_IN");
    EXPECT_EQ(LocaleUtils::GetDigitGrouping(), 32u);
    EXPECT_EQ(LocaleUtils::GetCurrencyGrouping(), 32u);
}

TEST_F(Locale, NamesDaysFromSundayAndMonthsUpToThirteen)
{
    const char* const days[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    for (int day = 1; day <= 7; ++day) {
        EXPECT_EQ(LocaleUtils::GetDayName(day, false), days[day - 1]);
        EXPECT_EQ(LocaleUtils::GetDayName(day, true), CString(days[day - 1]).Left(3));
    }
    EXPECT_EQ(LocaleUtils::GetMonthName(1, false), "January");
    EXPECT_EQ(LocaleUtils::GetMonthName(12, true), "Dec");
    m_user.Set("LC_ALL", "fi_FI.UTF-8");
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "sunnuntaina");
    EXPECT_EQ(LocaleUtils::GetMonthName(12, false), "joulukuu");
    EXPECT_EQ(LocaleUtils::GetMonthName(13, false) + LocaleUtils::GetMonthName(13, true), "");
    EXPECT_TRUE(markers.empty());
}

TEST_F(Locale, LogsWhatIsOutOfRangeAndAnswersWithNothing)
{
    for (const int month : {0, 14, -1, 2147483647, -2147483647 - 1})
        EXPECT_EQ(LocaleUtils::GetMonthName(month, false), "");
    for (const int day : {0, 8, -1, 2147483647, -2147483647 - 1})
        EXPECT_EQ(LocaleUtils::GetDayName(day, true), "");
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(3), "");
    std::vector<std::string> expected(5, "{408654B2-6791-46be-96AE-DECE99832073}");
    expected.insert(expected.end(), 5, "{9358F711-98BB-411f-8F4C-A9BE05892568}");
    expected.push_back("{5F7F49DE-1922-43EA-A2DF-CF45C26EE41B}");
    EXPECT_EQ(markers, expected);
    unsigned int value = 77;
    LocaleUtils::GetLocaleInfoNumberFor(LOCALE_SDECIMAL, value);
    EXPECT_EQ(value, 77u);
}

TEST_F(Locale, ReadsTheFormsOffTheirNumbers)
{
    const auto negativeNumber = [] {
        bool space = false, first = false, parentheses = false;
        LocaleUtils::GetNegNumberFormat(space, first, parentheses);
        return std::vector<bool>{space, first, parentheses};
    };
    const char* const numbers[] = {"001", "010", "110", "000", "100", "100", "100"};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(Flags("iNegNumber", i, negativeNumber), numbers[i]) << i;

    const auto prefix = [] {
        bool separated = false;
        const bool isPrefix = LocaleUtils::GetCurrencySymbolIsPrefix(separated);
        return std::vector<bool>{isPrefix, separated};
    };
    const char* const places[] = {"10", "00", "11", "01", "01"};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Flags("iCurrency", i, prefix), places[i]) << i;

    const auto negativeCurrency = [] {
        bool minus = false, before = false, after = false, parentheses = false;
        LocaleUtils::GetNegCurrencySymbolFormat(minus, before, after, parentheses);
        return std::vector<bool>{minus, before, after, parentheses};
    };
    const char* const currencies[] = {"0001", "1100", "1000", "1010", "0001", "1100", "1110", "1010", "1100",
                                      "1100", "1010", "1010", "1000", "1110", "0001", "0001", "1010", "1010"};
    for (int i = 0; i < 18; ++i)
        EXPECT_EQ(Flags("iNegCurr", i, negativeCurrency), currencies[i]) << i;

    const int days[] = {2, 3, 4, 5, 6, 7, 1, 1};
    const unsigned int orders[][3] = {{1, 0, 2}, {0, 1, 2}, {2, 1, 0}, {2, 1, 0}};
    for (int i = 0; i < 8; ++i) {
        Use("iFirstDayOfWeek", std::to_string(i));
        EXPECT_EQ(LocaleUtils::GetFirstDayOfWeek(), days[i]);
        Use("iDate", std::to_string(i));
        unsigned int day = 9, month = 9, year = 9;
        LocaleUtils::GetDateOrdering(day, month, year);
        const auto& order = orders[std::min(i, 3)];
        EXPECT_TRUE(day == order[0] && month == order[1] && year == order[2]) << i;
    }
}

TEST_F(Locale, TakesAUsersPatternsForTheItemsThatAreReadOffThem)
{
    Use("sShortDate", "dd'd'-MM-yy");
    unsigned int day = 9, month = 9, year = 9;
    LocaleUtils::GetDateOrdering(day, month, year);
    EXPECT_EQ(day, 0u);
    EXPECT_EQ(LocaleUtils::GetDateSeparator(), "'d'-");
    EXPECT_TRUE(LocaleUtils::GetDayHasLeadingZero() && LocaleUtils::GetMonthHasLeadingZero());
    EXPECT_FALSE(LocaleUtils::GetFullYearDisplay());
    Use("sTimeFormat", "tt HH.mm");
    bool markerFirst = false;
    EXPECT_FALSE(LocaleUtils::Get12HourTime(markerFirst));
    EXPECT_TRUE(markerFirst && LocaleUtils::GetHourHasLeadingZero());
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), ".");
    Use("sDate", "~"); // the item's own setting wins
    EXPECT_EQ(LocaleUtils::GetDateSeparator(), "~");
    for (const char* pattern : {"", "x", "''", "'", "d", "yyyy"}) {
        Use("sShortDate", pattern);
        Use("sTimeFormat", pattern);
        LocaleUtils::GetDateOrdering(day, month, year);
        LocaleUtils::Get12HourTime(markerFirst);
    }
}

TEST_F(Locale, GoesByTheCategoryOfTheItem)
{
    m_user.Set("LANG", "de_DE.UTF-8");
    EXPECT_EQ(LocaleUtils::GetTimeAM(), "AM");
    EXPECT_EQ(LocaleUtils::GetCountryName(), "Germany");
    EXPECT_EQ(LocaleUtils::GetDayName(2, false), "Montag");
    m_user.Set("LC_NUMERIC", "hi_IN");
    m_user.Set("LC_MONETARY", "ja_JP");
    m_user.Set("LC_TIME", "fr_FR");
    m_user.Set("LC_MEASUREMENT", "en_US");
    m_user.Set("LC_MESSAGES", "pt_BR");
    EXPECT_EQ(LocaleUtils::GetDigitGrouping(), 32u);
    EXPECT_EQ(LocaleUtils::GetCurrencyFractionalDigits(), 0u);
    EXPECT_EQ(LocaleUtils::GetDayName(2, false), "lundi");
    EXPECT_TRUE(LocaleUtils::GetUSMeasurementSystem());
    EXPECT_EQ(LocaleUtils::GetCountryCode(), 55u);
    m_user.Set("LC_TIME", ""); // as if unset
    EXPECT_EQ(LocaleUtils::GetDayName(2, false), "Montag");
    m_user.Set("LC_ALL", "it_IT");
    EXPECT_EQ(LocaleUtils::GetDigitGrouping(), 3u);
    EXPECT_EQ(LocaleUtils::GetCountryCode(), 39u);
    EXPECT_EQ(LocaleUtils::GetDayName(2, false), "luned\xEC");
}

TEST_F(Locale, FallsBackToTheLanguageAndThenToEnglish)
{
    struct {
        const char *locale, *day, *country;
    } const cases[] = {{"", "Sunday", "United States"},
                       {"C", "Sunday", "United States"},
                       {"POSIX", "Sunday", "United States"},
                       {"C.UTF-8", "Sunday", "United States"},
                       {"de", "Sonntag", "Germany"},
                       {"de_XX", "Sonntag", "Germany"},
                       {"de_", "Sonntag", "Germany"},
                       {"de_AT@euro", "Sonntag", "Austria"},
                       {"de_FR.ISO-8859-1", "Sonntag", "France"},
                       {"sr_RS@latin", "nedelja", "Serbia"},
                       {"eo", "dimanco", "United States"},
                       {"xx_YY", "Sunday", "United States"},
                       {"xx", "Sunday", "United States"},
                       {"deutsch", "Sunday", "United States"},
                       {"../../etc", "Sunday", "United States"},
                       {"_", "Sunday", "United States"},
                       {".", "Sunday", "United States"},
                       {"@", "Sunday", "United States"},
                       {"\xFF\xFE", "Sunday", "United States"}};
    for (const auto& row : cases) {
        m_user.Set("LC_ALL", row.locale);
        EXPECT_EQ(LocaleUtils::GetDayName(1, false), row.day) << row.locale;
        EXPECT_EQ(LocaleUtils::GetCountryName(), row.country) << row.locale;
    }
    m_user.Set("LC_ALL", std::string(100'000, 'd'));
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    m_user.Set("LC_ALL", "sr_RS@latin");
    EXPECT_EQ(LocaleUtils::GetLanguageName(), "Serbian (Latin)");
    EXPECT_TRUE(markers.empty());
}

// Whatever a program may find in the environment: every language of two letters, known or not.
TEST_F(Locale, AnswersForAnyLanguage)
{
    for (char first = 'a'; first <= 'z'; ++first)
        for (char second = 'a'; second <= 'z'; ++second) {
            const std::string name{first, second};
            m_user.Set("LC_ALL", name);
            EXPECT_FALSE(LocaleUtils::GetDayName(1, false).IsEmpty()) << name;
            EXPECT_FALSE(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL).IsEmpty()) << name;
            EXPECT_NE(LocaleUtils::GetCountryCode(), 0u) << name;
        }
}

TEST_F(Locale, SeesChangesAtOnceButKeepsFiveSeparators)
{
    m_user.Set("LC_ALL", "de_DE");
    EXPECT_EQ(LocaleUtils::GetDecimalSeparator(), ",");
    EXPECT_EQ(LocaleUtils::GetThousandsSeparator(), ".");
    EXPECT_EQ(LocaleUtils::GetCurrencySymbol(), "\x80");
    Use("sDecimal", "*");
    Use("sThousand", "*");
    EXPECT_EQ(LocaleUtils::GetDecimalSeparator(), ",");
    EXPECT_EQ(LocaleUtils::GetThousandsSeparator(), ".");
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL), "*");
    EXPECT_EQ(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL | LOCALE_NOUSEROVERRIDE), ",");
    Use("sMonDecimalSep", ""); // an empty text is asked for again
    EXPECT_EQ(LocaleUtils::GetCurrencyDecimalSeparator(), "");
    Use("sMonDecimalSep", "*");
    EXPECT_EQ(LocaleUtils::GetCurrencyDecimalSeparator(), "*");

    static char variable[] = "LC_TIME=fr_FR"; // memory of the host's own
    m_user.Unset("LC_ALL");
    m_user.Unset("LC_TIME");
    putenv(variable);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "dimanche");
    std::memcpy(variable, "LC_TIME=it_IT", sizeof variable);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "domenica");
    unsetenv("LC_TIME");
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    char** const saved = environ;
    char* none[] = {nullptr};
    for (char** const other : {none, static_cast<char**>(nullptr)}) {
        environ = other;
        EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
        EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    }
    environ = saved;
}

TEST_F(Locale, SeesAnotherProcessWithinASecond)
{
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), ":");
    UserSettings::WriteFile(m_user.International() / "sTime", "h\n");
    UserSettings::WriteFile(m_user.Tree() / "Control Panel/International/Calendars/TwoDigitYearMax/1",
                            "2049\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), "h");
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 49);
    UserSettings::WriteFile(m_user.International() / "sTime", "m"); // in place: the folder looks the same
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), "m");
}

TEST_F(Locale, PassesOverSettingsThatAreNone)
{
    std::filesystem::create_directories(m_user.International() / "sTime");
    UserSettings::WriteFile(m_user.International() / "sDate", std::string(80, '/'));
    UserSettings::WriteFile(m_user.International() / "s1159", std::string(10'000'000, 'x'));
    UserSettings::WriteFile(m_user.International() / "s2359", std::string("a\0b", 3));
    UserSettings::WriteFile(m_user.International() / "sCountry", std::string(79, 'c'));
    for (const char* number : {"", "x", "-1", "1x", " 1", "4294967296"}) {
        Use("iDigits", number);
        EXPECT_EQ(LocaleUtils::GetNumberFractionalDigits(), 2u) << number;
    }
    Use("iDigits", "3");
    EXPECT_EQ(LocaleUtils::GetNumberFractionalDigits(), 3u);
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), ":");
    EXPECT_EQ(LocaleUtils::GetDateSeparator(), "/");
    EXPECT_EQ(LocaleUtils::GetTimeAM(), "AM");
    EXPECT_EQ(LocaleUtils::GetTimePM(), "PM");
    EXPECT_EQ(LocaleUtils::GetCountryName(), CString('c', 79));
}

TEST_F(Locale, HasATwoDigitYearLimit)
{
    const char* const path = "Control Panel\\International\\Calendars\\TwoDigitYearMax";
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 29);
    struct {
        std::string text;
        int limit;
    } const cases[] = {{"2029", 29},
                       {"1999", 99},
                       {"2049", 49},
                       {"7", 29},
                       {"", 29},
                       {"07", 7},
                       {"xy", 0},
                       {"-3", -3},
                       {"1 ", 1},
                       {"x5", 0},
                       {"\xB2"
                        "5",
                        0},
                       {std::string(254, ' ') + "12", 12}};
    for (const auto& row : cases) {
        Use("1", row.text, path);
        EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), row.limit) << row.text;
    }
    const auto file = m_user.Tree() / "Control Panel/International/Calendars/TwoDigitYearMax/1";
    UserSettings::WriteFile(file, std::string(10'000'000, '1'));
    Use("another", "", path); // so that the file is read again
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 11);
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    Use("another", "", path);
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 29);
}

TEST_F(Locale, KeepsToTheRoomOfTheCaller)
{
    char buffer[8];
    std::memset(buffer, '#', sizeof buffer);
    const auto ask = [&](LCTYPE item, int size) {
        return GetLocaleInfoA(LOCALE_USER_DEFAULT, item, buffer, size);
    };
    EXPECT_EQ(ask(LOCALE_SGROUPING, 0), 4);
    EXPECT_EQ(ask(LOCALE_SGROUPING, 3), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(ask(LOCALE_SGROUPING, 4), 4);
    EXPECT_STREQ(buffer, "3;0");
    EXPECT_EQ(ask(LOCALE_IDIGITS, 8), 2);
    EXPECT_STREQ(buffer, "2");
    EXPECT_EQ(ask(LOCALE_IDIGITS | LOCALE_RETURN_NUMBER, 0), 4);
    EXPECT_EQ(ask(LOCALE_IDIGITS | LOCALE_RETURN_NUMBER, 3), 0);
    EXPECT_EQ(ask(LOCALE_SGROUPING, -1), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    for (const LCTYPE item : {LCTYPE{0}, LCTYPE{127}, LCTYPE{128}, LCTYPE{4095}, LCTYPE{4224},
                              LCTYPE{0x1FFFFFFF}, LOCALE_SDECIMAL | LOCALE_RETURN_NUMBER}) {
        EXPECT_EQ(ask(item, 8), 0) << item;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_FLAGS);
    }
    EXPECT_EQ(GetLocaleInfoA(1031, LOCALE_SDECIMAL, buffer, 8), 0);
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
        Use("1", "202" + std::to_string(i % 10), "Control Panel\\International\\Calendars\\TwoDigitYearMax");
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
