#include <gtest/gtest.h>

#include <functional>
#include <sys/stat.h>
#include <unistd.h>

#include "support/LogFiles.h"

namespace {

TEST(AppLoggerRulesTest, ANameThatComesBackFindsItsLines)
{
    const LogHome home;
    LogHome::Start();
    AppLogger::AddLine("kept");
    AppLogger::SetAppName("Other");
    AppLogger::SetAppName("App");
    AppLogger::AddLine("new");
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "kept"}, {"", "new"}}));
    chmod(home.Path().c_str(), 0444);
    AppLogger::SetAppName("Other");
    AppLogger::SetAppName("App");
    AppLogger::SetMaxLogEntries(2);
    AppLogger::AddLine("not written"); // the bound holds for what is read, too
    EXPECT_EQ(LogHome::Texts().size(), 2U);
}

TEST(AppLoggerRulesTest, WhatComesBeforeAnImpossibleLengthIsLoaded)
{
    const LogHome home;
    const std::string impossible = EntryBytes("", "").substr(0, 13) + BytesOf("FF FFFF FEFFFFFF");
    EXPECT_THROW(LogHome::Load(HeaderBytes(2) + EntryBytes("", "a") + impossible), CArchiveException);
    EXPECT_TRUE(LogHome::Texts().at(0).ends_with("\t\ta"));
}

TEST(AppLoggerRulesTest, TheFileKeepsItsPermissionsAndOwner)
{
    const LogHome home;
    LogHome::Start();
    const std::string path = home.Path();
    const bool isRoot = geteuid() == 0;
    const std::function<void()> events[] = {
        [] {},
        [&] { home.Write("damaged"); },
        [&] { UserSettings::WriteFile(path + ".new", "left by a process that died"); },
        [&] { std::filesystem::remove(path), home.Write(HeaderBytes(1) + EntryBytes("", "other")); },
    };
    for (const auto& event : events)
        for (const mode_t mode : {0600U, 0666U, 0640U}) {
            event();
            chmod(path.c_str(), mode);
            EXPECT_EQ(chown(path.c_str(), isRoot ? 1 : geteuid(), isRoot ? 2 : getegid()), 0);
            AppLogger::AddLine("x");
            struct stat state = {};
            EXPECT_EQ(stat(path.c_str(), &state), 0);
            EXPECT_EQ(state.st_mode & 0777U, mode);
            EXPECT_TRUE(!isRoot || (state.st_uid == 1 && state.st_gid == 2));
        }
}

} // namespace
