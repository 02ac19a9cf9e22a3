#include <gtest/gtest.h>

#include <ctime>

#include "CArchiveException.h"
#include "DateTime.h"
#include "DebugUtils.h"
#include "FileUtils.h"
#include "platform/Platform.h"
#include "support/CalendarModel.h"
#include "support/LogFiles.h"

namespace {

class AppLoggerTest : public testing::Test {
protected:
    LogHome home;
};

TEST_F(AppLoggerTest, TheSwitchDecidesWhetherThereIsALogger)
{
    AppLogger::EnableLogging(true); // without a name
    EXPECT_FALSE(AppLogger::CheckLogging() || AppLogger::m_bCheckedRegistry || AppLogger::SetLogFile());
    EXPECT_EQ(AppLogger::GetInstance(), nullptr);
    AppLogger::SetAppName("App");
    EXPECT_TRUE(AppLogger::m_bCheckedRegistry);
    AppLogger::AddLine("nobody takes this");
    EXPECT_FALSE(std::filesystem::exists(home.settings.Tree()));

    AppLogger::EnableLogging(true);
    EXPECT_EQ(UserSettings::ReadFile(home.Value("Log")), "1");
    EXPECT_EQ(AppLogger::m_csLogFile, home.Path().c_str());
    AppLogger::GetInstance()->AddLine("kept");
    AppLogger::EnableLogging(true); // no change
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}}));

    AppLogger::EnableLogging(false);
    EXPECT_EQ(UserSettings::ReadFile(home.Value("Log")), "0");
    EXPECT_EQ(AppLogger::m_pInstance, nullptr);
    AppLogger::GetInstance()->AddLine("nobody takes this either");
    AppLogger::EnableLogging(true);
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}, Started}));
    EXPECT_EQ(LogHome::Texts().size(), 3U);
    LogHome::Start("Other"); // the same logger, in a file of its own
    AppLogger::AddLine("x");
    EXPECT_EQ(home.Lines().size(), 3U);
    EXPECT_TRUE(UserSettings::ReadFile(home.State() + "/CorvaneSoftware/Other/Other.log").ends_with("\1x"));
}

TEST_F(AppLoggerTest, ALoggerComesBackAfterItWasDestroyed)
{
    LogHome::Start();
    AppLogger::DeleteInstance();
    EXPECT_EQ(LogHome::Texts().size(), 0U); // all of it is in the file
    EXPECT_NE(AppLogger::GetInstance(), nullptr);
    EXPECT_EQ(LogHome::Texts().size(), 1U);
    AppLogger::DeleteInstance();
    AppLogger::SetAppName("App");
    EXPECT_EQ(home.Lines(), (StoredLines{Started, Started}));
    AppLogger::DeleteInstance();
    AppLogger::EnableLogging(false);
    EXPECT_FALSE(AppLogger::CheckLogging());
    UserSettings::WriteFile(home.Value("Log", "Other"), "1\n");
    AppLogger::SetAppName("Other"); // one switch has been read: the other one does not count
    EXPECT_EQ(AppLogger::m_pInstance, nullptr);
    EXPECT_NE(AppLogger::GetInstance(), nullptr);
}

TEST_F(AppLoggerTest, TheSwitchIsADecimalNumber)
{
    const auto isOn = [&](const std::string& text) {
        static int number = 0;
        const std::string app = "App" + std::to_string(++number); // what is known of one is kept for a second
        UserSettings::WriteFile(home.Value("Log", app), text);
        AppLogger::m_csAppName = app;
        EXPECT_EQ(AppLogger::GetRegistryValue(("Software\\CorvaneSoftware\\" + app).c_str(), "Log").View(),
                  text.substr(0, text.find('\n')));
        return AppLogger::CheckLogging();
    };
    for (const char* text : {"1", "1\n", "01", "1 on", "1.5"})
        EXPECT_TRUE(isOn(text)) << text;
    for (const char* text :
         {"", "0", "2", "11", "-1", "+1", "on", "0x1", " 1", "\xB9", "4294967297", "18446744073709551617"})
        EXPECT_FALSE(isOn(text)) << text;
}

TEST_F(AppLoggerTest, MarkersAreTakenFromTheFrontOfALine)
{
    const std::pair<std::string, StoredLines::value_type> cases[] = {
        {"{Word} word", {"{Word}", "word"}},
        {"plain {x}  ", {"", "plain {x}"}},
        {" {x} y", {"", " {x} y"}},
        {"", {"", ""}},
        {"   ", {"", ""}},
        {"{", {"{}", ""}},
        {"{open  ", {"{open}", ""}},
        {"{a b} {c}  ", {"{a b}", "{c}"}},
        {"{a}}b", {"{a}", "}b"}},
        {"{a}\tb\t", {"{a}", "\tb\t"}},
        {"{a}   ", {"{a}", ""}},
        {std::string("{a\0b}c\0 \xE4", 9), {std::string("{a\0b}", 5), std::string("c\0 \xE4", 4)}},
    };
    LogHome::Start();
    for (const auto& [line, stored] : cases) {
        AppLogger::AddLine(line);
        EXPECT_EQ(home.Lines().back(), stored);
    }
}

TEST_F(AppLoggerTest, TheBoundDropsTheOldestLines)
{
    LogHome::Start();
    for (int i = 1; i <= 500; ++i) {
        EXPECT_EQ(home.Lines().front(), Started);
        AppLogger::AddLine(std::to_string(i));
    }
    EXPECT_EQ(home.Lines().front().second, "1");
    EXPECT_EQ(home.Lines().size(), 500U);
    for (const std::size_t bound : {3U, 5U, 1U, 0U}) {
        AppLogger::SetMaxLogEntries(bound);
        AppLogger::AddLine("x");
        EXPECT_EQ(home.Lines().size(), bound == 5 ? 4U : bound);
        EXPECT_EQ(LogHome::Texts().size(), home.Lines().size());
    }
    AppLogger::SetMaxLogEntries(~uint64{0});
    AppLogger::AddLine(CString('x', 300));
    EXPECT_TRUE(home.Bytes().ends_with(BytesOf("FF 2C01") + std::string(300, 'x')));
}

TEST_F(AppLoggerTest, LogTextFollowsTheUsersLocale)
{
    const auto day = static_cast<unsigned>(CalendarModel::DayNumber(2025, 12, 31));
    const std::string bytes = HeaderBytes(4) + EntryBytes("{M}", "afternoon", day, 14 * 3600 + 5 * 60 + 9) +
                              EntryBytes("", "midnight", day, 0) + EntryBytes("{M}", "no time", day, ~0U) +
                              EntryBytes("", "nothing at all", 0, ~0U);
    LogHome::Load(bytes);
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"de_DE.UTF-8", "31.12.2025", "14:05:09"},
        {"en_US.UTF-8", "12/31/2025", "2:05:09 PM"},
        {"sv_SE.UTF-8", "2025-12-31", "14:05:09"},
    };
    for (const auto& [locale, date, time] : cases) {
        home.settings.Set("LC_ALL", locale);
        EXPECT_EQ(LogHome::Texts(),
                  (std::vector<std::string>{date + " " + time + "\t{M}\tafternoon", date + "\t\tmidnight",
                                            date + "\t{M}\tno time", "\t\tnothing at all"}));
    }
    home.settings.Set("LC_ALL", "en_US.UTF-8");
    UserSettings::WriteFile(home.settings.International() / "sShortDate", "dddd, d. MMM yy g 'd''y'");
    UserSettings::WriteFile(home.settings.International() / "sTimeFormat", "t h-m-s");
    LogHome::Start(); // writes the registry, so that the settings are read again
    DateTime now;
    now.SetToCurrent();
    EXPECT_TRUE(LogHome::Texts().at(0).starts_with(now.ConvertDateToText().GetString()));
    LogHome::Load(bytes);
    EXPECT_EQ(LogHome::Texts().at(0), "Wednesday, 31. Dec 25  dy P 2-5-9\t{M}\tafternoon");
    const DateTime moment(2025, 3, 4, 5, 6, 7);
    EXPECT_EQ(moment.ConvertDateToText(false) + " " + moment.ConvertTimeToText(false), "2025-03-04 05:06:07");
    EXPECT_EQ(DebugUtils::ComposeTraceCore("Parser.cpp", -12), "Parser.cpp (-12)");
}

TEST_F(AppLoggerTest, SerializingReplacesTheListOrLeavesIt)
{
    const std::string entries = EntryBytes("{x}", "a", 2, 10) + EntryBytes("", "b");
    for (const unsigned version : {6U, 7U}) {
        AppLogger::m_csAppName = "App";
        LogHome::Load(HeaderBytes(2, version) + entries);
        EXPECT_EQ(LogHome::Stored(), HeaderBytes(2) + entries);
    }
    for (const std::string& header : {HeaderBytes(1, 5), HeaderBytes(1, 8), HeaderBytes(1, 0),
                                      HeaderBytes(1, 7, "Corvane Software Log file")}) {
        LogHome::Load(header + EntryBytes("", "other"));
        EXPECT_EQ(LogHome::Stored(), HeaderBytes(2) + entries);
    }
    EXPECT_THROW(LogHome::Load(HeaderBytes(1).substr(0, 20)), CArchiveException);
    EXPECT_EQ(LogHome::Texts().size(), 2U);
    EXPECT_THROW(LogHome::Load(HeaderBytes(2) + entries.substr(0, entries.size() - 1)), CArchiveException);
    EXPECT_EQ(HexOf(LogHome::Stored()), "19436F7276616E6520536F667477617265204C6F672046696C65" // the title
                                        "0700034170700100000000000000"
                                        "02000300020000000A000000037B787D0161");
}

TEST_F(AppLoggerTest, FailuresOfTheLibraryLandInTheLog)
{
    LogHome::Start();
    std::tm time = {};
    DateTime().Get(time);
    LocaleUtils::GetMonthName(14);
    SetLastError(77);
    LocaleUtils::GetDayName(0);
    EXPECT_EQ(GetLastError(), 77U);
    unsigned int unique = 0;
    FileUtils::GetTempFile((home.State() + "/").c_str(), "a/b", unique);
    const StoredLines expected = {
        Started,
        {"{3B9CEE83-5685-4EBF-AF53-16DECF9747B1}", ""},
        {"{408654B2-6791-46be-96AE-DECE99832073}", ""},
        {"{9358F711-98BB-411f-8F4C-A9BE05892568}", ""},
        {"{E4949422-0B7B-4D2B-AE39-0E30647219F3}",
         "The filename, directory name, or volume label syntax is incorrect."},
    };
    EXPECT_EQ(home.Lines(), expected);
    AppLogger::EnableLogging(false);
    LocaleUtils::GetMonthName(15);
    EXPECT_EQ(home.Lines(), expected);
}

TEST_F(AppLoggerTest, NamesStayInsideTheirFolders)
{
    const std::string names[] = {"../up",
                                 "..",
                                 ".",
                                 "a/b",
                                 "a\\b",
                                 "a%2Fb",
                                 "/etc/x",
                                 "..\\..\\x",
                                 "\n",
                                 "C:\\x",
                                 std::string(240, 'n'),
                                 std::string(240, 'n') + "2",
                                 std::string(80, '/')};
    std::set<std::string> files;
    for (const std::string& name : names) {
        LogHome::Start(name);
        const std::filesystem::path path(AppLogger::m_csLogFile.GetString());
        EXPECT_TRUE(std::filesystem::is_regular_file(path)) << name;
        EXPECT_EQ(path.parent_path().parent_path(), home.State() + "/CorvaneSoftware") << name;
        EXPECT_TRUE(files.insert(path).second) << name; // nor do two names share a file
        LogHome::Forget();
    }
    EXPECT_EQ(LogHome::NamesIn(home.settings.Folder()), (std::set<std::string>{"config", "state"}));
    for (const std::string& name :
         {std::string("App\0x", 5), std::string(1, '\0'), std::string(10000, 'n')}) {
        LogHome::Start(name);
        EXPECT_EQ(AppLogger::GetInstance(), nullptr);
        EXPECT_EQ(AppLogger::SetLogFile(), name.size() == 10000);
        LogHome::Forget();
    }
}

TEST_F(AppLoggerTest, SettingsNameTheFolder)
{
    const std::string folder = home.settings.Folder() / "far/away";
    UserSettings::WriteFile(home.Value("SettingsPath"), folder + "/\n");
    LogHome::Start();
    EXPECT_EQ(LinesIn(UserSettings::ReadFile(folder + "/App.log")), StoredLines{Started});
    for (const char* name : {"SettingsPathDebug_x64", "SettingsPathRelease_x64"})
        UserSettings::WriteFile(home.Value(name), folder + "/build");
    AppLogger::EnableLogging(false);
    AppLogger::EnableLogging(true); // which finds the folder anew
    EXPECT_EQ(AppLogger::m_csLogFile, (folder + "/build/App.log").c_str());

    const std::string usual = home.settings.Folder() / "home/.local/state/CorvaneSoftware/Third/Third.log";
    const std::string far = "/" + std::string(5000, 'x');
    home.settings.Set("HOME", home.settings.Folder() / "home");
    for (const auto& [state, expected] : {std::pair<std::string, std::string>("", usual),
                                          {"relative", usual},
                                          {far, far + "/CorvaneSoftware/Third/Third.log"}}) {
        LogHome::Forget();
        home.settings.Set("XDG_STATE_HOME", state);
        AppLogger::m_csAppName = "Third";
        EXPECT_EQ(AppLogger::SetLogFile(), !expected.empty());
        EXPECT_EQ(AppLogger::m_csLogFile, expected.c_str());
    }
}

} // namespace
