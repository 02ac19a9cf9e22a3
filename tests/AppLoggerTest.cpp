#include <gtest/gtest.h>

#include <ctime>
#include <thread>

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

// The lines behind "Logging started".
StoredLines Behind(StoredLines lines)
{
    EXPECT_EQ(lines.at(0), Started);
    lines.erase(lines.begin());
    return lines;
}

TEST_F(AppLoggerTest, TheSwitchDecidesWhetherThereIsALogger)
{
    AppLogger::EnableLogging(true); // without a name
    EXPECT_FALSE(AppLogger::CheckLogging());
    EXPECT_FALSE(AppLogger::m_bCheckedRegistry);
    EXPECT_EQ(AppLogger::GetInstance(), nullptr);
    EXPECT_FALSE(AppLogger::SetLogFile());

    AppLogger::SetAppName("App");
    EXPECT_TRUE(AppLogger::m_bCheckedRegistry);
    AppLogger::AddLine("nobody takes this");
    EXPECT_EQ(AppLogger::m_pInstance, nullptr);
    EXPECT_FALSE(std::filesystem::exists(home.settings.Tree()));

    AppLogger::EnableLogging(true);
    EXPECT_EQ(UserSettings::ReadFile(home.Switch()), "1");
    EXPECT_NE(AppLogger::m_pInstance, nullptr);
    EXPECT_EQ(AppLogger::m_csLogFile, home.Path().c_str());
    AppLogger::GetInstance()->AddLine("kept");
    AppLogger::EnableLogging(true); // no change
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}}));

    AppLogger::EnableLogging(false);
    EXPECT_EQ(UserSettings::ReadFile(home.Switch()), "0");
    EXPECT_EQ(AppLogger::GetInstance(), nullptr);
    AppLogger::GetInstance()->AddLine("nobody takes this either");
    AppLogger::EnableLogging(true);
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}, Started}));
    EXPECT_EQ(LogHome::Texts().size(), 3U);
}

TEST_F(AppLoggerTest, ALoggerComesBackAfterItWasDestroyed)
{
    home.Start();
    AppLogger::DeleteInstance();
    EXPECT_EQ(LogHome::Texts().size(), 0U); // all of it is in the file
    EXPECT_NE(AppLogger::GetInstance(), nullptr);
    EXPECT_EQ(LogHome::Texts().size(), 1U);
    AppLogger::DeleteInstance();
    AppLogger::SetAppName("App");
    EXPECT_EQ(home.Lines(), (StoredLines{Started, Started}));

    AppLogger::DeleteInstance(); // switched off while there is no logger
    AppLogger::EnableLogging(false);
    EXPECT_FALSE(AppLogger::CheckLogging());
    UserSettings::WriteFile(home.Switch("Other"), "1\n");
    AppLogger::SetAppName("Other"); // one switch has been read: the other one does not count
    EXPECT_EQ(AppLogger::m_pInstance, nullptr);
    EXPECT_NE(AppLogger::GetInstance(), nullptr);
}

TEST_F(AppLoggerTest, ANewNameGetsAFileOfItsOwn)
{
    home.Start();
    AppLogger::SetAppName("Other");
    AppLogger::AddLine("x");
    EXPECT_EQ(home.Lines(), StoredLines{Started});
    EXPECT_EQ(LinesIn(UserSettings::ReadFile(home.StateFolder() + "/CorvaneSoftware/Other/Other.log")),
              (StoredLines{{"", "x"}}));
}

TEST_F(AppLoggerTest, TheSwitchIsADecimalNumber)
{
    const std::pair<const char*, bool> cases[] = {
        {"1", true},           {"1\n", true},   {"01", true},
        {"1 on", true},        {"0", false},    {"2", false},
        {"", false},           {"11", false},   {"-1", false},
        {"on", false},         {"1.5", true},   {"0x1", false},
        {"+1", false},         {"10", false},   {" 1", false},
        {"4294967297", false}, {"\xB9", false}, {"18446744073709551617", false},
    };
    int number = 0;
    for (const auto& [text, isOn] : cases) {
        SCOPED_TRACE(text);
        const std::string app = "App" + std::to_string(++number); // what is known of one is kept for a second
        UserSettings::WriteFile(home.Switch(app), text);
        AppLogger::m_csAppName = app;
        EXPECT_EQ(AppLogger::CheckLogging(), isOn);
    }
    EXPECT_EQ(AppLogger::GetRegistryValue("Software\\CorvaneSoftware\\App1", "Log"), "1");
    EXPECT_EQ(AppLogger::GetRegistryValue("Software\\CorvaneSoftware\\App1", "None"), "");
}

TEST_F(AppLoggerTest, MarkersAreTakenFromTheFrontOfALine)
{
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"{Word} word", "{Word}", "word"},
        {"plain", "", "plain"},
        {"plain {x}  ", "", "plain {x}"},
        {" {x} y", "", " {x} y"},
        {"", "", ""},
        {"   ", "", ""},
        {"{", "{}", ""},
        {"{}", "{}", ""},
        {"{open  ", "{open}", ""},
        {"{a b} {c}  ", "{a b}", "{c}"},
        {"{a}}b", "{a}", "}b"},
        {"{a}\tb\t", "{a}", "\tb\t"},
        {"{a}   ", "{a}", ""},
        {std::string("{a\0b}c\0 \xE4", 9), std::string("{a\0b}", 5), std::string("c\0 \xE4", 4)},
    };
    home.Start();
    StoredLines expected;
    for (const auto& [line, marker, text] : cases) {
        AppLogger::AddLine(line);
        expected.push_back({marker, text});
    }
    EXPECT_EQ(Behind(home.Lines()), expected);
}

TEST_F(AppLoggerTest, TheBoundDropsTheOldestLines)
{
    home.Start();
    for (int i = 1; i <= 499; ++i)
        AppLogger::AddLine(std::to_string(i));
    EXPECT_EQ(home.Lines().size(), 500U);
    EXPECT_EQ(home.Lines().front(), Started);
    AppLogger::AddLine("500");
    EXPECT_EQ(home.Lines().front(), (StoredLine{"", "1"}));
    EXPECT_EQ(home.Lines().back(), (StoredLine{"", "500"}));
    EXPECT_EQ(home.Lines().size(), 500U);

    for (const auto& [bound, first] : {std::pair(3, "499"), {5, "499"}, {1, "501"}}) {
        AppLogger::SetMaxLogEntries(static_cast<uint64>(bound));
        AppLogger::AddLine("501");
        EXPECT_EQ(home.Lines().front().text, first);
        EXPECT_EQ(LogHome::Texts().size(), home.Lines().size());
    }
    AppLogger::SetMaxLogEntries(0);
    AppLogger::AddLine("nothing is kept");
    EXPECT_EQ(home.Lines().size(), 0U);
    AppLogger::SetMaxLogEntries(~uint64{0});
    AppLogger::AddLine(CString('x', 300));
    EXPECT_TRUE(home.Bytes().ends_with(BytesOf("FF 2C01") + std::string(300, 'x')));
}

TEST_F(AppLoggerTest, LogTextFollowsTheUsersLocale)
{
    const auto day = static_cast<std::uint32_t>(CalendarModel::DayNumber(2025, 12, 31));
    const std::string bytes = LogBytes({{"{M}", "afternoon", day, 14 * 3600 + 5 * 60 + 9},
                                        {"", "midnight", day, 0},
                                        {"{M}", "no time", day, 0xFFFFFFFF},
                                        {"", "nothing at all", 0, 0xFFFFFFFF}},
                                       6);
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"de_DE.UTF-8", "31.12.2025", "14:05:09"},
        {"en_US.UTF-8", "12/31/2025", "2:05:09 PM"},
        {"sv_SE.UTF-8", "2025-12-31", "14:05:09"},
        {"en_GB.UTF-8", "31/12/2025", "14:05:09"},
    };
    LoadFrom(bytes, [](CArchive& archive) { AppLogger::Serialize(archive); });
    for (const auto& [locale, date, time] : cases) {
        home.settings.Set("LC_ALL", locale);
        const std::vector<std::string> expected = {date + " " + time + "\t{M}\tafternoon",
                                                   date + "\t\tmidnight", date + "\t{M}\tno time",
                                                   "\t\tnothing at all"};
        EXPECT_EQ(LogHome::Texts(), expected) << locale;
    }
    UserSettings::WriteFile(home.settings.International() / "sShortDate", "dddd, d. MMM yy g 'd''y'");
    UserSettings::WriteFile(home.settings.International() / "sTimeFormat", "t h-m-s");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100)); // as long as answers are kept
    home.settings.Set("LC_ALL", "en_US.UTF-8");
    EXPECT_EQ(LogHome::Texts().at(0), "Wednesday, 31. Dec 25  dy P 2-5-9\t{M}\tafternoon");
    const DateTime moment(2025, 3, 4, 5, 6, 7);
    EXPECT_EQ(moment.ConvertDateToText(false), "2025-03-04");
    EXPECT_EQ(moment.ConvertTimeToText(false), "05:06:07");
}

TEST_F(AppLoggerTest, LinesCarryTheLocalTime)
{
    home.Start();
    DateTime before, after;
    before.SetToCurrent();
    AppLogger::AddLine("now");
    after.SetToCurrent();
    const StoredLine line = home.Lines().back();
    DateTime stamp;
    LoadFrom(Number(3, 2) + Number(line.day, 4) + Number(line.second, 4),
             [&](CArchive& archive) { stamp.Serialize(archive); });
    EXPECT_FALSE(stamp < before);
    EXPECT_FALSE(after < stamp);
}

TEST_F(AppLoggerTest, SerializingReplacesTheListOrLeavesIt)
{
    const StoredLines two = {{"{a}", "1"}, {"", "2"}};
    const auto load = [](const std::string& bytes) {
        LoadFrom(bytes, [](CArchive& archive) { AppLogger::Serialize(archive); });
    };
    AppLogger::m_csAppName = "Any";
    for (const unsigned version : {6U, 7U}) {
        load(LogBytes({}));
        load(LogBytes(two, version));
        EXPECT_EQ(StoredBy([](CArchive& archive) { AppLogger::Serialize(archive); }), LogBytes(two));
    }
    for (const std::string& other :
         {LogBytes({{"", "x"}}, 5), LogBytes({{"", "x"}}, 8), LogBytes({{"", "x"}}, 0),
          LogBytes({{"", "x"}}, 7, "Corvane Software Log file")}) {
        load(other);
        EXPECT_EQ(StoredBy([](CArchive& archive) { AppLogger::Serialize(archive); }), LogBytes(two));
    }
    AppLogger::m_csAppName = "App";
    load(LogBytes({{"{x}", "a", 2, 10}}));
    EXPECT_EQ(HexOf(StoredBy([](CArchive& archive) { AppLogger::Serialize(archive); })),
              "19436F7276616E6520536F667477617265204C6F672046696C65" // the title
              "070003417070"
              "0100000000000000"
              "02000300020000000A000000037B787D0161");
    const std::string whole = LogBytes({{"", "x"}, {"", "y"}});
    EXPECT_THROW(load(whole.substr(0, 20)), CArchiveException);
    EXPECT_TRUE(LogHome::Texts().at(0).ends_with("{x}\ta"));
    EXPECT_THROW(load(whole.substr(0, whole.size() - 1)), CArchiveException);
    EXPECT_EQ(LogHome::Texts().size(), 1U);
}

TEST_F(AppLoggerTest, FailuresOfTheLibraryLandInTheLog)
{
    home.Start();
    std::tm time = {};
    DateTime().Get(time);
    LocaleUtils::GetMonthName(14);
    SetLastError(77);
    LocaleUtils::GetDayName(0);
    EXPECT_EQ(GetLastError(), 77U);
    unsigned int unique = 0;
    FileUtils::GetTempFile((home.StateFolder() + "/").c_str(), "a/b", unique);
    EXPECT_EQ(Behind(home.Lines()),
              (StoredLines{{"{3B9CEE83-5685-4EBF-AF53-16DECF9747B1}", ""},
                           {"{408654B2-6791-46be-96AE-DECE99832073}", ""},
                           {"{9358F711-98BB-411f-8F4C-A9BE05892568}", ""},
                           {"{E4949422-0B7B-4D2B-AE39-0E30647219F3}",
                            "The filename, directory name, or volume label syntax is incorrect."}}));
    AppLogger::EnableLogging(false);
    LocaleUtils::GetMonthName(15);
    EXPECT_EQ(home.Lines().size(), 5U);
}

// No name leads out of the two folders, nor into the file of another name.
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
        SCOPED_TRACE(name);
        AppLogger::SetAppName(name);
        AppLogger::EnableLogging(true);
        AppLogger::AddLine("x");
        const std::string path(AppLogger::m_csLogFile.GetString());
        EXPECT_TRUE(std::filesystem::is_regular_file(path));
        const auto below =
            std::filesystem::path(path).lexically_relative(home.StateFolder() + "/CorvaneSoftware");
        EXPECT_EQ(std::distance(below.begin(), below.end()), 2);
        EXPECT_TRUE(files.insert(path).second);
        LogHome::Forget();
    }
    std::set<std::string> top;
    for (const auto& entry : std::filesystem::directory_iterator(home.settings.Folder()))
        top.insert(entry.path().filename());
    EXPECT_EQ(top, (std::set<std::string>{"config", "state"}));

    for (const std::string& name :
         {std::string("App\0x", 5), std::string(1, '\0'), std::string(10000, 'n')}) {
        AppLogger::SetAppName(name);
        AppLogger::EnableLogging(true);
        EXPECT_EQ(AppLogger::GetInstance(), nullptr);
        EXPECT_EQ(AppLogger::SetLogFile(), name.size() == 10000);
        LogHome::Forget();
    }
}

TEST_F(AppLoggerTest, SettingsNameTheFolder)
{
    const std::string folder = home.settings.Folder() / "far/away";
    const auto value = [&](const char* name) { return home.Switch().parent_path() / name; };
    UserSettings::WriteFile(value("SettingsPath"), folder + "/\n");
    home.Start();
    EXPECT_EQ(LinesIn(UserSettings::ReadFile(folder + "/App.log")), StoredLines{Started});
    LogHome::Forget();
    for (const char* name : {"SettingsPathDebug_x64", "SettingsPathRelease_x64"})
        UserSettings::WriteFile(value(name), folder + "/build");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100)); // as long as answers are kept
    AppLogger::SetAppName("App");
    EXPECT_EQ(AppLogger::m_csLogFile, (folder + "/build/App.log").c_str());
    home.settings.Set("HOME", home.settings.Folder() / "home");
    for (const char* state : {"", "relative/state"}) {
        LogHome::Forget();
        home.settings.Set("XDG_STATE_HOME", state);
        AppLogger::m_csAppName = "Third";
        EXPECT_TRUE(AppLogger::SetLogFile());
        EXPECT_EQ(AppLogger::m_csLogFile,
                  (home.settings.Folder() / "home/.local/state/CorvaneSoftware/Third/Third.log").c_str());
    }
    LogHome::Forget();
    home.settings.Set("XDG_STATE_HOME", "/" + std::string(300, 'x'));
    AppLogger::m_csAppName = "Third";
    EXPECT_FALSE(AppLogger::SetLogFile());
    EXPECT_FALSE(AppLogger::HaveLogFile());
}

TEST_F(AppLoggerTest, TracesAreEmpty)
{
    DebugUtils::Trace();
    DebugUtils::Trace("text", 1, 2.5, CString("more"));
    DebugUtils::SetOutputToFile(true);
    EXPECT_EQ(DebugUtils::ComposeTraceCore("Parser.cpp", -12), "Parser.cpp (-12)");
}

} // namespace
