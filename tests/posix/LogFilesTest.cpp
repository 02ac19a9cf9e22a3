// The log where the disk is full or the folder closed, and its permissions.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "persist/LogFile.h"
#include "support/LogFiles.h"

namespace {

class LogFilesTest : public testing::Test {
protected:
    LogFilesTest() { LogHome::Start(); }

    LogHome home;
};

// The disk is full from a size of files on, as long as this lives.
struct FullDisk {
    explicit FullDisk(rlim_t size)
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit = {size, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        handler = signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        signal(SIGXFSZ, handler);
    }
    rlimit before;
    sighandler_t handler;
};

TEST_F(LogFilesTest, LinesWaitWhileTheDiskIsFull)
{
    const std::string before = home.Bytes();
    {
        const FullDisk disk(before.size() + 10);
        AppLogger::AddLine("a longer line");
    }
    EXPECT_EQ(home.Bytes(), before);
    EXPECT_EQ(home.Files(), std::set<std::string>{"App.log"});
    std::filesystem::remove_all(home.Folder().Path("state")); // which is made again
    AppLogger::AddLine("free");
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "a longer line"}, {"", "free"}}));
}

TEST_F(LogFilesTest, AFileInAFolderThatTakesNoOtherIsOverwritten)
{
    const TemporaryFolder folder;
    const CString path(folder.MakeFolder("closed") + "/App.log");
    const auto content = [&] { return folder.Read("closed/App.log"); };
    folder.Write("closed/App.log", LogBytes({{"", "old"}}));
    const uid_t user = geteuid();
    const uid_t nobody = user == 0 ? 65534 : user;
    EXPECT_EQ(chown(path, nobody, gid_t(-1)), 0);
    chmod(folder.Path().c_str(), 0755);
    chmod(folder.Path("closed").c_str(), 0555);
    ASSERT_EQ(seteuid(nobody), 0);

    LogFile file;
    LogEntries entries;
    entries.Add({DateTime(2025, 1, 1, 0, 0, 0), "", "new"}, true);
    EXPECT_TRUE(file.Write(path, "App", 500, entries));
    const std::string whole = content();
    EXPECT_EQ(LinesIn(whole), (StoredLines{{"", "old"}, {"", "new"}}));
    entries.Add({DateTime(2025, 1, 1, 0, 0, 0), "{wait}", CString('x', 100)}, true);
    {
        const FullDisk disk(whole.size() + 10);
        EXPECT_THROW(file.Write(path, "App", 500, entries), CFileException);
        EXPECT_EQ(content(), whole);
    }
    EXPECT_TRUE(file.Write(path, "App", 1, entries));
    EXPECT_EQ(LinesIn(content()), (StoredLines{{"{wait}", std::string(100, 'x')}}));
    EXPECT_EQ(seteuid(user), 0);
    chmod(folder.Path("closed").c_str(), 0755);
}

TEST_F(LogFilesTest, TheFileKeepsItsPermissionsAndOwner)
{
    const std::string path = home.Path();
    const bool isRoot = geteuid() == 0;
    const std::function<void()> events[] = {
        [] {},
        [&] { home.Write("damaged"); },
        [&] { home.Folder().Write(LogHome::Name + std::string(".new"), "left by a process that died"); },
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

TEST_F(LogFilesTest, TheUsualFolderIsTheEnvironments)
{
    const std::string usual = home.Folder().Path("home/.local/state/CorvaneSoftware/Third/Third.log");
    const std::string far = "/" + std::string(5000, 'x');
    home.settings.Set("HOME", home.Folder().Path("home"));
    for (const auto& [state, expected] : {std::pair<std::string, std::string>("", usual),
                                          {"relative", usual},
                                          {far, far + "/CorvaneSoftware/Third/Third.log"}}) {
        LogHome::Forget();
        home.settings.Set("XDG_STATE_HOME", state);
        AppLogger::m_csAppName = "Third";
        EXPECT_TRUE(AppLogger::SetLogFile());
        EXPECT_EQ(AppLogger::m_csLogFile, expected.c_str());
    }
}

} // namespace
