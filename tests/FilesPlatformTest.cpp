// What the platform does to files by their names, and how openings share a file.
#include <gtest/gtest.h>

#include <atomic>
#include <map>

#include "platform/Platform.h"
#include "support/Agreement.h"
#include "support/Environment.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;

BOOL Replace(const char* from, const char* to)
{
    return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING);
}

class FilesPlatformTest : public testing::Test {
protected:
    FilesPlatformTest()
    {
        folder.Write("plain", "0123456789");
        folder.Write("other", "other");
        SetFileAttributesA(folder.Write("readonly", "").c_str(), FILE_ATTRIBUTE_READONLY);
        folder.MakeFolder("dir");
        folder.Write("dir/inside", "");
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

TEST_F(FilesPlatformTest, OperationsOnNamesAnswerByTheTable)
{
    using Operation = BOOL (*)(const char* from, const char* to);
    const std::map<std::string, Operation> operations = {
        {"attributes",
         [](const char* path, const char*) -> BOOL {
             return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
         }},
        {"find",
         [](const char* path, const char*) -> BOOL {
             WIN32_FIND_DATAA data;
             return FindFirstFileA(path, &data) != INVALID_HANDLE_VALUE;
         }},
        {"delete", [](const char* path, const char*) -> BOOL { return DeleteFileA(path); }},
        {"make folder",
         [](const char* path, const char*) -> BOOL { return CreateDirectoryA(path, nullptr); }},
        {"move", [](const char* from, const char* to) -> BOOL { return MoveFileA(from, to); }},
        {"replace", Replace}};
    std::filesystem::create_hard_link(folder.Path("plain"), folder.Path("second"));
    Agreement::Comparison comparison("file operations", "file operation exceptions");
    for (const auto& [name, from, to, error] : Cases<4>("file operations")) {
        const BOOL done = operations.at(name)(folder.Path(from).c_str(), folder.Path(to).c_str());
        comparison.Check(name, from + ' ' + to, std::to_string(done ? 0 : GetLastError()), error);
    }
    EXPECT_TRUE(folder.Has("dir2/inside"));
    EXPECT_EQ(folder.Read("other") + folder.Read("second"), "01234567890123456789");
}

TEST_F(FilesPlatformTest, OddNamesFailOrOpen)
{
    Agreement::Comparison comparison("odd names", "odd name exceptions");
    for (const auto& row : Cases<7>("odd names"))
        for (DWORD disposition = CREATE_NEW; disposition <= TRUNCATE_EXISTING; ++disposition)
            comparison.Check(row[0], std::to_string(disposition),
                             Outcome(row[0], row[1] == "1" ? ReadWrite : GENERIC_READ, 0, disposition),
                             row[1 + disposition]);
    EXPECT_EQ(folder.Read("plain"), "");
    EXPECT_EQ(Outcome(std::string(256, 'x'), GENERIC_WRITE, 0, CREATE_NEW), "123");
}

TEST_F(FilesPlatformTest, AFileThatIsHeldOpenStaysUnlessDeletingIsShared)
{
    for (const DWORD share :
         {DWORD{0}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}, DWORD{FILE_SHARE_DELETE}}) {
        const bool isFree = share == FILE_SHARE_DELETE;
        const HANDLE held = Open("plain", GENERIC_READ, share);
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(MoveFileA(folder.Path("plain").c_str(), folder.Path("moved").c_str()), isFree);
        EXPECT_EQ(GetLastError(), isFree ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION);
        EXPECT_EQ(Replace(folder.Path("other").c_str(), folder.Path(isFree ? "moved" : "plain").c_str()),
                  isFree);
        EXPECT_TRUE(CloseHandle(held));
    }
}

// Each opener must end up with the file that has the name, not with one that was replaced under his hands.
TEST_F(FilesPlatformTest, OpeningWhileTheFileIsReplacedGetsTheNewOne)
{
    std::thread replacer([&] {
        for (int round = 0; round < 500; ++round)
            Replace(folder.Write("new", "new").c_str(), folder.Path("plain").c_str());
    });
    int compared = 0;
    for (int round = 0; round < 500; ++round) {
        const HANDLE opened = Open("plain", GENERIC_READ, 0);
        if (opened == INVALID_HANDLE_VALUE)
            continue;
        const HANDLE named = Open("plain", 0, 0);
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
            SetLastError(0);
            EXPECT_EQ(Outcome("plain", second.access, second.share), fits ? "opened 0" : "32")
                << std::hex << first.access << " share " << first.share << ", then " << second.access
                << " share " << second.share;
        }
    };
    for (const Opening& first : all) {
        const HANDLE held = Open("plain", first.access, first.share);
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
    EXPECT_EQ(Outcome("plain", ReadWrite, 0), "opened 0"); // the locks of a dead process are gone
}

TEST_F(FilesPlatformTest, OfTwoThatComeAtOnceOneGetsIn)
{
    std::atomic<int> inside = 0, opened = 0;
    const auto play = [&] {
        for (int round = 0; round < 20'000; ++round) {
            const HANDLE handle = Open("plain", GENERIC_READ, 0);
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
