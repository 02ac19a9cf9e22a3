// The locale of the environment, settings that others write, and answers with and without the module that
// knows ICU.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>
#include <unistd.h>
#include <utility>

#include "framework/FailureMarkers.h"
#include "platform/posix/IcuLoader.h"
#include "platform/posix/LocaleAnswers.h"
#include "support/Cases.h"
#include "support/UserSettings.h"

namespace {

class LocaleOnPosix : public testing::Test, public UserSettings {
protected:
    // As another process would, which does not tell this one.
    void WriteSetting(const std::string& name, const std::string& text) const
    {
        Folder().Write(International + name, text);
    }
    const std::string International = "config/kvt01/HKEY_CURRENT_USER/Control Panel/International/";
};

TEST_F(LocaleOnPosix, GoesByTheCategoryOfTheItem)
{
    for (const auto& [variable, locale, expected] : Cases<3>("categories")) {
        Set(variable, locale);
        CString answers;
        answers.Format("%s %u %u %d %u", LocaleUtils::GetDayName(2, false).GetString(),
                       LocaleUtils::GetDigitGrouping(), LocaleUtils::GetCurrencyFractionalDigits(),
                       LocaleUtils::GetUSMeasurementSystem(), LocaleUtils::GetCountryCode());
        EXPECT_EQ(answers, expected) << variable;
    }
    Unset("LC_ALL");
    static char variable[] = "LC_TIME=fr_FR"; // memory of the host's own
    putenv(variable);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "dimanche");
    std::memcpy(variable, "LC_TIME=it_IT", sizeof variable);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "domenica");
    char** const saved = std::exchange(environ, nullptr);
    EXPECT_EQ(LocaleUtils::GetDayName(1, false), "Sunday");
    environ = saved;
}

TEST_F(LocaleOnPosix, FallsBackToTheLanguageAndThenToEnglish)
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
    for (char first = 'a'; first <= 'z'; ++first) // every language of two letters, known or not
        for (char second = 'a'; second <= 'z'; ++second) {
            Set("LC_ALL", std::string{first, second});
            EXPECT_FALSE(LocaleUtils::GetDayName(1, false).IsEmpty()) << first << second;
            EXPECT_FALSE(LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL).IsEmpty()) << first << second;
            EXPECT_NE(LocaleUtils::GetCountryCode(), 0u) << first << second;
        }
}

TEST_F(LocaleOnPosix, SeesAnotherProcessWithinASecond)
{
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), ":");
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 29);
    WriteSetting("sTime", "h\n");
    WriteSetting("Calendars/TwoDigitYearMax/1", "2049\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(LocaleUtils::GetTimeSeparator(), "h");
    EXPECT_EQ(LocaleUtils::GetTwoDigitYearMax(), 49);
}

TEST_F(LocaleOnPosix, PassesOverSettingsThatAreNone)
{
    Folder().MakeFolder(International + "sTime");
    WriteSetting("sDate", std::string(80, '/'));
    WriteSetting("s1159", std::string(10'000'000, 'x'));
    WriteSetting("s2359", std::string("a\0b", 3));
    WriteSetting("sCountry", std::string(79, 'c'));
    for (const char* number : {"", "x", "-1", "1x", " 1", "4294967296", "3"}) {
        Use("iDigits", number);
        EXPECT_EQ(LocaleUtils::GetNumberFractionalDigits(), *number == '3' ? 3u : 2u) << number;
    }
    EXPECT_EQ(LocaleUtils::GetTimeSeparator() + LocaleUtils::GetDateSeparator(), ":/");
    EXPECT_EQ(LocaleUtils::GetTimeAM() + LocaleUtils::GetTimePM(), "AMPM");
    EXPECT_EQ(LocaleUtils::GetCountryName(), CString('c', 79));
    Use("sShortDate", "d-M-yy");
    Use("sDate", "~"); // the item's own setting wins
    EXPECT_EQ(LocaleUtils::GetDateSeparator(), "~");
}

// What is compiled in is what the module says.
TEST_F(LocaleOnPosix, HasBuiltInTheModulesEnglish)
{
    static const LocaleAnswers builtIn = AnswersForLocale("C", IcuLoader::Get);
    const auto compare = [](void* told, DWORD item, const char16_t* text) {
        ++*static_cast<int*>(told);
        EXPECT_EQ(std::u16string(builtIn[item].text.begin(), builtIn[item].text.end()), text) << item;
    };
    int told = 0;
    ASSERT_NE(IcuLoader::Get(), nullptr);
    EXPECT_TRUE(IcuLoader::Get()->describeLocale("en_US", compare, &told));
    EXPECT_GT(told, 50);
}

// ---- without the module, in a process of its own, as it is looked for only once; 0 when all is as it should be

int markers = 0;

void AskWithoutTheModule()
{
    IcuLoader::moduleFolder = [] { return std::string("/nowhere"); };
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    FailureMarkers::SetSink([](const CString& line) {
        markers += line.GetLength() == 38 ? 1 : 100;
        LocaleUtils::GetMonthName(1, false); // the log asks for the locale itself
    });
    const bool isEnglish = LocaleUtils::GetDayName(1, false) == "Sunday" &&
                           LocaleUtils::GetLocaleInfoFor(LOCALE_SDECIMAL) == "." &&
                           LocaleUtils::GetCountryCode() == 1;
    WCHAR wide = 0;
    char narrow = 0;
    const bool isProcessPage =
        MultiByteToWideChar(437, 0, "\x80", 1, &wide, 1) == 1 && wide == 0x20AC &&
        WideCharToMultiByte(1251, 0, u"\u20AC", 1, &narrow, 1, nullptr, nullptr) == 1 && narrow == '\x80' &&
        MultiByteToWideChar(99, 0, "a", 1, &wide, 1) == 0;
    std::exit(isEnglish && isProcessPage && markers == 1 ? 0 : 1);
}

TEST(LocaleDeathTest, AnswersInEnglishAndTheProcessPageWithoutTheModuleAndSaysSoOnce)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(AskWithoutTheModule(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(IcuLoader::Load("/nowhere/libkvt01_icu.so"), nullptr);
    EXPECT_EQ(IcuLoader::Load("libm.so.6"), nullptr); // another library
}

} // namespace
