#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/Platform.h"
#include "support/Cases.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;

class OpenFilesPlatformTest : public testing::Test {
protected:
    OpenFilesPlatformTest()
    {
        folder.Write("existing", "0123456789");
        folder.MakeFolder("folder");
        chmod(folder.Write("readonly", "0123456789").c_str(), 0444);
    }

    HANDLE Open(const std::string& name, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING) const
    {
        return CreateFileA(folder.Path(name).c_str(), access, share, nullptr, disposition, 0, nullptr);
    }
    // The error of opening, with "opened" in front if there was a handle, which is closed again.
    std::string Outcome(const std::string& name, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING)
    {
        const HANDLE handle = Open(name, access, share, disposition);
        const std::string error = std::to_string(GetLastError());
        if (handle == INVALID_HANDLE_VALUE)
            return error;
        EXPECT_TRUE(CloseHandle(handle));
        return "opened " + error;
    }

    TemporaryFolder folder;
};

TEST_F(OpenFilesPlatformTest, OddNamesFailOrOpen)
{
    for (const auto& row : Cases<7>("odd names"))
        for (DWORD disposition = CREATE_NEW; disposition <= TRUNCATE_EXISTING; ++disposition)
            EXPECT_EQ(Outcome(row[0], row[1] == "1" ? ReadWrite : GENERIC_READ, 0, disposition),
                      row[1 + disposition])
                << row[0] << " disposition " << disposition;
    EXPECT_EQ(folder.Read("readonly"), "0123456789");
    std::string deep = "folder";
    for (int level = 0; level < 12; ++level)
        deep += "/" + std::string(250, 'x');
    folder.MakeFolder(deep);
    EXPECT_EQ(Outcome(deep + "\\file", GENERIC_WRITE, 0, CREATE_NEW), "opened 0");
    for (const std::string& name : {std::string(256, 'x'), std::string(10'000'000, '\\')})
        EXPECT_EQ(Outcome(name, GENERIC_WRITE, 0, CREATE_NEW), "123");

    std::filesystem::create_symlink("target", folder.Path("link"));
    EXPECT_EQ(Outcome("link", GENERIC_READ, 0), "2");
    EXPECT_EQ(Outcome("link", ReadWrite, 0, CREATE_NEW), "80");
    EXPECT_EQ(Outcome("link", ReadWrite, 0, OPEN_ALWAYS), "opened 183");
    EXPECT_TRUE(folder.Has("target"));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0666), 0);
    EXPECT_EQ(Outcome("pipe", GENERIC_READ, 0), "opened 0"); // and nobody waits for a writer
}

// ---- sharing --------------------------------------------------------------------------------------------

// The process that holds a file open while this one tries.
class OtherProcess {
public:
    template <class Action>
    explicit OtherProcess(Action action)
    {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        m_process = fork();
        if (m_process == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            action();
            close(ready[1]);
            pause();
        }
        close(ready[1]);
        char byte;
        EXPECT_EQ(read(ready[0], &byte, 1), 0); // until the other end is closed
        close(ready[0]);
    }
    ~OtherProcess()
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }

private:
    pid_t m_process;
};

struct Opening {
    DWORD access, share;
};

bool Permits(const Opening& open, const Opening& next)
{
    if (open.access == 0 || next.access == 0)
        return true;
    return ((next.access & GENERIC_READ) == 0 || (open.share & FILE_SHARE_READ) != 0) &&
           ((next.access & GENERIC_WRITE) == 0 || (open.share & FILE_SHARE_WRITE) != 0);
}

TEST_F(OpenFilesPlatformTest, EveryPairOfOpeningsAgreesWithinAProcessAndBetweenTwo)
{
    std::vector<Opening> all;
    for (const DWORD access : {0U, GENERIC_READ, GENERIC_WRITE, ReadWrite})
        for (DWORD share = 0; share < 8; ++share)
            all.push_back({access, share});
    const auto checkAll = [&](const Opening& first) {
        for (const Opening& second : all) {
            const bool fits = Permits(first, second) && Permits(second, first);
            EXPECT_EQ(Outcome("existing", second.access, second.share), fits ? "opened 0" : "32")
                << std::hex << first.access << " share " << first.share << ", then " << second.access
                << " share " << second.share;
        }
    };
    for (const Opening& first : all) {
        const HANDLE held = Open("existing", first.access, first.share);
        checkAll(first);
        EXPECT_TRUE(CloseHandle(held));
        const OtherProcess other([&] { Open("existing", first.access, first.share); });
        checkAll(first);
    }
    EXPECT_EQ(Outcome("existing", ReadWrite, 0), "opened 0"); // the locks of a dead process are gone
}

TEST_F(OpenFilesPlatformTest, OfTwoThatComeAtOnceOneGetsIn)
{
    std::atomic<int> inside = 0, opened = 0;
    const auto play = [&] {
        for (int round = 0; round < 20'000; ++round) {
            const HANDLE handle = Open("existing", GENERIC_READ, 0);
            if (handle == INVALID_HANDLE_VALUE)
                continue;
            EXPECT_EQ(++inside, 1) << "round " << round;
            ++opened;
            std::this_thread::yield();
            --inside;
            CloseHandle(handle);
        }
    };
    std::thread other(play);
    play();
    other.join();
    EXPECT_GT(opened, 0);
}

} // namespace
