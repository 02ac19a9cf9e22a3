// What the platform does to files by their names, and how openings share a file.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "System.h"
#include "platform/Platform.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;

class FilesPlatformTest : public testing::Test {
protected:
    FilesPlatformTest()
    {
        folder.Write("plain", "0123456789");
        folder.Write("other", "other");
    }

    HANDLE Open(DWORD access, DWORD share) const
    {
        SetLastError(0);
        return CreateFileA(folder.Path("plain").c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
    }
    BOOL Replace(const std::string& from, const std::string& to) const
    {
        return MoveFileExA(folder.Path(from).c_str(), folder.Path(to).c_str(), MOVEFILE_REPLACE_EXISTING);
    }

    TemporaryFolder folder;
};

TEST_F(FilesPlatformTest, AFileThatIsHeldOpenStaysUnlessDeletingIsShared)
{
    for (const DWORD share :
         {DWORD{0}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}, DWORD{FILE_SHARE_DELETE}}) {
        const bool isFree = share == FILE_SHARE_DELETE;
        const HANDLE held = Open(GENERIC_READ, share);
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(MoveFileA(folder.Path("plain").c_str(), folder.Path("moved").c_str()), isFree);
        EXPECT_EQ(GetLastError(), isFree ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION);
        EXPECT_TRUE(isFree || !Replace("other", "plain"));
        EXPECT_TRUE(CloseHandle(held));
    }
}

// Each opener must end up with the file that has the name, not with one that was replaced under his hands.
TEST_F(FilesPlatformTest, OpeningWhileTheFileIsReplacedGetsTheNewOne)
{
    std::thread replacer([&] {
        for (int round = 0; round < 500; ++round)
            folder.Write("new", "new"), Replace("new", "plain");
    });
    int compared = 0;
    for (int round = 0; round < 500; ++round) {
        const HANDLE opened = Open(GENERIC_READ, 0);
        if (opened == INVALID_HANDLE_VALUE)
            continue;
        const HANDLE named = Open(0, 0);
        BY_HANDLE_FILE_INFORMATION one = {}, other = {};
        EXPECT_TRUE(GetFileInformationByHandle(opened, &one) && GetFileInformationByHandle(named, &other));
        EXPECT_EQ(one.nFileIndexLow, other.nFileIndexLow); // it cannot be replaced while the handle is open
        ++compared;
        EXPECT_TRUE(CloseHandle(named) && CloseHandle(opened));
    }
    replacer.join();
    EXPECT_GT(compared, 0);
}

// ---- sharing --------------------------------------------------------------------------------------------

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

TEST_F(FilesPlatformTest, EveryPairOfOpeningsAgreesWithinAProcessAndBetweenTwo)
{
    std::vector<Opening> all;
    for (const DWORD access : {DWORD{0}, DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}, ReadWrite})
        for (DWORD share = 0; share < 8; ++share)
            all.push_back({access, share});
    const auto checkAll = [&](const Opening& first) {
        for (const Opening& second : all) {
            const bool fits = Permits(first, second) && Permits(second, first);
            const HANDLE handle = Open(second.access, second.share);
            EXPECT_EQ(handle == INVALID_HANDLE_VALUE ? GetLastError() : 0, DWORD{fits ? 0U : 32U})
                << std::hex << first.access << " share " << first.share << ", then " << second.access
                << " share " << second.share;
            CloseHandle(handle);
        }
    };
    for (const Opening& first : all) {
        const HANDLE held = Open(first.access, first.share);
        checkAll(first);
        EXPECT_TRUE(CloseHandle(held));
        std::thread other([&] {
            RunProgram(KVT01_TEST_CHILD, "hold \"" + folder.Path("plain") + "\" " +
                                             std::to_string(first.access) + ' ' +
                                             std::to_string(first.share) + " \"" + folder.Path("held") + '"');
        });
        folder.Await("held");
        checkAll(first);
        std::filesystem::remove(folder.Path("held"));
        other.join();
    }
    const HANDLE handle = Open(ReadWrite, 0); // the locks of a dead process are gone
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    CloseHandle(handle);
}

TEST_F(FilesPlatformTest, OfTwoThatComeAtOnceOneGetsIn)
{
    std::atomic<int> inside = 0, opened = 0;
    const auto play = [&] {
        for (int round = 0; round < 20'000; ++round) {
            const HANDLE handle = Open(GENERIC_READ, 0);
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
