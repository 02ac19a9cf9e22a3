#include <gtest/gtest.h>

#include "CArchiveException.h"
#include "DateTime.h"
#include "DebugUtils.h"
#include "support/CalendarModel.h"
#include "support/Cases.h"
#include "support/LogFiles.h"

namespace {

class AppLoggerTest : public testing::Test {
protected:
    LogHome home;
};

TEST_F(AppLoggerTest, TheSwitchDecidesWhetherThereIsALogger)
{
    const auto switchOf = [](const char* app) { return UserSettings::Setting("Log", LogHome::KeyOf(app)); };
    AppLogger::EnableLogging(true); // without a name
    EXPECT_FALSE(AppLogger::CheckLogging() || AppLogger::m_bCheckedRegistry || AppLogger::SetLogFile());
    AppLogger::SetAppName("App");
    EXPECT_TRUE(AppLogger::m_bCheckedRegistry);
    AppLogger::AddLine("nobody takes this");
    EXPECT_EQ(switchOf("App"), "ERROR 2");
    AppLogger::EnableLogging(true);
    EXPECT_EQ(switchOf("App"), "1");
    AppLogger::GetInstance()->AddLine("kept");
    AppLogger::EnableLogging(true); // no change
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}}));

    AppLogger::EnableLogging(false);
    EXPECT_EQ(switchOf("App"), "0");
    EXPECT_EQ(AppLogger::m_pInstance, nullptr);
    AppLogger::GetInstance()->AddLine("nobody takes this either");
    AppLogger::EnableLogging(true);
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}, Started}));
    LogHome::Start("Other"); // the same logger, in a file of its own
    AppLogger::AddLine("x");
    EXPECT_EQ(home.Lines().size(), 3U);
    EXPECT_TRUE(home.Folder().Read("state/CorvaneSoftware/Other/Other.log").ends_with("\1x"));
}

TEST_F(AppLoggerTest, ALoggerComesBackAfterItWasDestroyed)
{
    LogHome::Start();
    AppLogger::DeleteInstance();
    EXPECT_EQ(LogHome::Texts().size(), 0U); // all of it is in the file
    EXPECT_NE(AppLogger::GetInstance(), nullptr);
    AppLogger::DeleteInstance();
    AppLogger::SetAppName("App");
    EXPECT_EQ(home.Lines(), (StoredLines{Started, Started}));
    AppLogger::DeleteInstance();
    AppLogger::EnableLogging(false);
    home.settings.Use("Log", "1", LogHome::KeyOf("Other"));
    AppLogger::SetAppName("Other"); // one switch has been read: the other one does not count
    EXPECT_EQ(AppLogger::m_pInstance, nullptr);
    EXPECT_NE(AppLogger::GetInstance(), nullptr);
}

TEST_F(AppLoggerTest, TheSwitchIsADecimalNumber)
{
    AppLogger::m_csAppName = "App";
    for (const auto& [text, isOn] : Cases<2>("switches")) {
        home.settings.Use("Log", text, LogHome::KeyOf("App"));
        EXPECT_EQ(AppLogger::CheckLogging(), isOn == "1") << text;
    }
}

TEST_F(AppLoggerTest, ANameThatComesBackFindsItsLines)
{
    LogHome::Start();
    AppLogger::AddLine("kept");
    AppLogger::SetAppName("Other");
    AppLogger::SetAppName("App");
    AppLogger::AddLine("new");
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}, {"", "new"}}));
    SetFileAttributesA(home.Path().c_str(), FILE_ATTRIBUTE_READONLY);
    AppLogger::SetAppName("Other");
    AppLogger::SetAppName("App");
    AppLogger::SetMaxLogEntries(2);
    AppLogger::AddLine("not written"); // the bound holds for what is read, too
    EXPECT_EQ(LogHome::Texts().size(), 2U);
    SetFileAttributesA(home.Path().c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(AppLoggerTest, MarkersAreTakenFromTheFrontOfALine)
{
    LogHome::Start();
    for (const auto& [line, marker, text] : Cases<3>("log lines")) {
        AppLogger::AddLine(line);
        EXPECT_EQ(home.Lines().back(), std::pair(marker, text)) << line;
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
    for (const std::size_t bound : {3U, 5U, 1U, 0U}) {
        AppLogger::SetMaxLogEntries(bound);
        AppLogger::AddLine("x");
        EXPECT_EQ(home.Lines().size(), bound == 5 ? 4U : bound);
        EXPECT_EQ(LogHome::Texts().size(), home.Lines().size());
    }
}

TEST_F(AppLoggerTest, LogTextFollowsTheUsersLocale)
{
    const auto day = static_cast<unsigned>(CalendarModel::DayNumber(2025, 12, 31));
    const std::string bytes = HeaderBytes(4) + EntryBytes("{M}", "afternoon", day, 14 * 3600 + 5 * 60 + 9) +
                              EntryBytes("", "midnight", day, 0) + EntryBytes("{M}", "no time", day, ~0U) +
                              EntryBytes("", "nothing at all", 0, ~0U);
    LogHome::Load(bytes);
    for (const auto& [shortDate, timeFormat, date, time] : Cases<4>("log times")) {
        home.settings.Use("sShortDate", shortDate);
        home.settings.Use("sTimeFormat", timeFormat);
        EXPECT_EQ(LogHome::Texts(),
                  (std::vector<std::string>{date + " " + time + "\t{M}\tafternoon", date + "\t\tmidnight",
                                            date + "\t{M}\tno time", "\t\tnothing at all"}));
    }
    const DateTime moment(2025, 3, 4, 5, 6, 7);
    EXPECT_EQ(moment.ConvertDateToText(false) + " " + moment.ConvertTimeToText(false), "2025-03-04 05:06:07");
}

TEST_F(AppLoggerTest, SerializingReplacesTheListOrLeavesIt)
{
    const std::string entries = EntryBytes("{x}", "a", 2, 10) + EntryBytes("", "b");
    AppLogger::m_csAppName = "App";
    for (const unsigned version : {6U, 7U}) {
        LogHome::Load(HeaderBytes(2, version) + entries);
        EXPECT_EQ(LogHome::Stored(), HeaderBytes(2) + entries);
    }
    for (const std::string& header :
         {HeaderBytes(1, 5), HeaderBytes(1, 8), HeaderBytes(1, 7, "Corvane Software Log file")}) {
        LogHome::Load(header + EntryBytes("", "other"));
        EXPECT_EQ(LogHome::Stored(), HeaderBytes(2) + entries);
    }
    EXPECT_THROW(LogHome::Load(HeaderBytes(1).substr(0, 20)), CArchiveException);
    EXPECT_THROW(LogHome::Load(HeaderBytes(2) + entries.substr(0, entries.size() - 1)), CArchiveException);
    EXPECT_EQ(HexOf(LogHome::Stored()), "19436F7276616E6520536F667477617265204C6F672046696C65" // the title
                                        "0700034170700100000000000000"
                                        "02000300020000000A000000037B787D0161");
    const std::string impossible = EntryBytes("", "").substr(0, 13) + BytesOf("FF FFFF FEFFFFFF");
    EXPECT_THROW(LogHome::Load(HeaderBytes(2) + EntryBytes("", "c") + impossible), CArchiveException);
    EXPECT_EQ(LogHome::Stored(), HeaderBytes(1) + EntryBytes("", "c"));
}

TEST_F(AppLoggerTest, FailuresOfTheLibraryLandInTheLog)
{
    LogHome::Start();
    SetLastError(77);
    LocaleUtils::GetDayName(0);
    EXPECT_EQ(GetLastError(), 77U);
    EXPECT_EQ(home.Lines().back(), StoredLines::value_type("{9358F711-98BB-411f-8F4C-A9BE05892568}", ""));
    AppLogger::EnableLogging(false);
    LocaleUtils::GetMonthName(15);
    EXPECT_EQ(home.Lines().size(), 2U);
    EXPECT_EQ(DebugUtils::ComposeTraceCore("Parser.cpp", -12), "Parser.cpp (-12)");
}

TEST_F(AppLoggerTest, NamesStayInsideTheirFolders)
{
    namespace fs = std::filesystem;
    std::set<std::string> files;
    for (const auto& [piece, times, isUsable] : Cases<3>("application names")) {
        std::string name;
        while (name.size() < piece.size() * std::stoul(times))
            name += piece;
        LogHome::Start(name);
        EXPECT_EQ(AppLogger::GetInstance() != nullptr, isUsable == "1") << name;
        const fs::path path(AppLogger::m_csLogFile.GetString());
        if (isUsable == "1") {
            EXPECT_TRUE(fs::is_regular_file(path)) << name;
            EXPECT_EQ(fs::relative(path, home.Folder().Path()).parent_path().parent_path(),
                      fs::path("state") / "CorvaneSoftware")
                << name;
            EXPECT_TRUE(files.insert(path.string()).second) << name; // nor do two names share a file
        }
        LogHome::Forget();
    }
}

TEST_F(AppLoggerTest, SettingsNameTheFolder)
{
    const auto isLogOf = [](const std::string& folder) {
        return std::filesystem::equivalent(AppLogger::m_csLogFile.GetString(), folder + "/App.log");
    };
    const std::string folder = home.Folder().Path("far/away");
    home.settings.Use("SettingsPath", folder + "/", LogHome::KeyOf("App"));
    LogHome::Start();
    EXPECT_TRUE(isLogOf(folder));
    for (const char* name : {"SettingsPathDebug_x64", "SettingsPathRelease_x64"})
        home.settings.Use(name, folder + "/build", LogHome::KeyOf("App"));
    AppLogger::EnableLogging(false);
    AppLogger::EnableLogging(true); // which finds the folder anew
    EXPECT_TRUE(isLogOf(folder + "/build"));
}

} // namespace
