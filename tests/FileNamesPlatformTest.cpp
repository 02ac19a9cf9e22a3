// What the platform does to files by their names.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <utility>

#include "platform/Platform.h"
#include "platform/posix/OpenFiles.h"
#include "support/TemporaryFolder.h"

namespace {

class FileNamesPlatformTest : public testing::Test {
protected:
    FileNamesPlatformTest()
    {
        folder.Write("plain", "0123456789");
        folder.Write("readonly", "");
        folder.Write(".dot", "");
        folder.MakeFolder("dir");
        chmod(folder.Path("readonly").c_str(), 0444);
        symlink("plain", folder.Path("link").c_str());
        symlink("nowhere", folder.Path("broken").c_str());
        symlink("dir", folder.Path("dirlink").c_str());
    }

    // 0 for success, else the error, of an operation on one or two names of this folder.
    template <class Operation>
    DWORD ErrorOf(Operation operation, const std::string& name) const
    {
        SetLastError(77);
        return operation(folder.Path(name).c_str()) ? 0 : GetLastError();
    }
    template <class Operation>
    DWORD ErrorOf(Operation operation, const std::string& from, const std::string& to) const
    {
        SetLastError(77);
        return operation(folder.Path(from).c_str(), folder.Path(to).c_str()) ? 0 : GetLastError();
    }

    HANDLE Hold(const std::string& name, DWORD share = 0) const
    {
        return CreateFileA(folder.Path(name).c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0,
                           nullptr);
    }

    TemporaryFolder folder;
};

TEST_F(FileNamesPlatformTest, LinksAreWhatTheyLeadToAndBrokenOnesThemselves)
{
    const struct {
        const char* name;
        int accessForWriting; // 0 or errno
        DWORD attributes;
    } cases[] = {{"link", 0, 0x420}, {"dirlink", 0, 0x410}, {"broken", ENOENT, 0x420}};
    for (const auto& row : cases) {
        const std::string path = folder.Path(row.name);
        EXPECT_EQ(_access(path.c_str(), 0), 0);
        EXPECT_EQ(_access(path.c_str(), 6) == 0 ? 0 : errno, row.accessForWriting) << row.name;
        EXPECT_EQ(GetFileAttributesA(path.c_str()), row.attributes) << row.name;
    }
    EXPECT_EQ(ErrorOf([](const char* path) { return GetFileAttributesA(path) + 1; }, "plain\\"), 123U);
    EXPECT_EQ(GetFileAttributesA(nullptr), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(_access(nullptr, 0), -1);
    for (const int mode : {1, 8, INT_MIN}) {
        EXPECT_EQ(_access(folder.Path("plain").c_str(), mode), -1);
        EXPECT_EQ(errno, EINVAL);
    }
}

TEST_F(FileNamesPlatformTest, TimesAndSizesAreThoseOfTheFile)
{
    const struct {
        timespec time;
        uint64 steps;
    } cases[] = {
        {{0, 0}, 0x019DB1DED53E8000},
        {{951868799, 999000000}, 0x01BF8311163618F0}, // 2000-02-29 23:59:59.999
        {{0, 199}, 0x019DB1DED53E8001},
    };
    for (const auto& row : cases) {
        const timespec times[] = {row.time, row.time};
        utimensat(AT_FDCWD, folder.Path("plain").c_str(), times, 0);
        WIN32_FILE_ATTRIBUTE_DATA data;
        ASSERT_TRUE(GetFileAttributesExA(folder.Path("plain").c_str(), GetFileExInfoStandard, &data));
        EXPECT_EQ(uint64{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime,
                  row.steps);
        EXPECT_EQ(data.nFileSizeLow, 10U);
        const HANDLE handle = Hold("plain");
        FILETIME written;
        EXPECT_TRUE(GetFileTime(handle, nullptr, nullptr, &written));
        EXPECT_EQ(uint64{written.dwHighDateTime} << 32 | written.dwLowDateTime, row.steps);
        EXPECT_TRUE(CloseHandle(handle));
    }
    truncate(folder.Path("plain").c_str(), 5'000'000'000);
    WIN32_FILE_ATTRIBUTE_DATA data;
    ASSERT_TRUE(GetFileAttributesExA(folder.Path("plain").c_str(), GetFileExInfoStandard, &data));
    EXPECT_EQ(uint64{data.nFileSizeHigh} << 32 | data.nFileSizeLow, 5'000'000'000U);
}

TEST_F(FileNamesPlatformTest, TheReadOnlyMarkIsTheOwnersRightToWrite)
{
    const std::string path = folder.Path("plain");
    chmod(path.c_str(), 0640);
    for (const auto& [attributes, mode] :
         {std::pair(0x0U, 0640U), {0x1U, 0440U}, {0x2U, 0640U}, {0x21U, 0440U}}) {
        EXPECT_TRUE(SetFileAttributesA(path.c_str(), attributes));
        struct stat state;
        stat(path.c_str(), &state);
        EXPECT_EQ(state.st_mode & 0777, mode);
    }
}

TEST_F(FileNamesPlatformTest, DeletingTakesTheLinkAndLeavesItsTarget)
{
    for (const auto& [name, error] :
         {std::pair("plain/", 123U), {"link", 0U}, {"broken", 0U}, {"dirlink", 0U}})
        EXPECT_EQ(ErrorOf(DeleteFileA, name), error) << name;
    EXPECT_TRUE(folder.Has("dir") && folder.Has("plain"));
    EXPECT_FALSE(DeleteFileA(nullptr));
}

TEST_F(FileNamesPlatformTest, Moving)
{
    folder.Write("other", "other");
    folder.Write("dir/inside", "");
    std::filesystem::create_hard_link(folder.Path("plain"), folder.Path("second"));
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "second"), 183U);
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "plain"), 0U);
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "./plain"),
              183U); // with two names, a spelling cannot be told from a name
    EXPECT_EQ(ErrorOf(MoveFileA, "other", "dirlink/../other"), 0U);
    EXPECT_EQ(ErrorOf(MoveFileA, "none/none", "x"), 3U);
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "new/"), 123U);
    EXPECT_EQ(ErrorOf(MoveFileA, "dir", "dir2"), 0U);
    EXPECT_TRUE(folder.Has("dir2/inside"));
    EXPECT_EQ(ErrorOf(MoveFileA, "readonly", "still"), 0U);
    const auto replace = [](const char* from, const char* to) {
        return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING);
    };
    EXPECT_EQ(ErrorOf(replace, "plain", "still"), 5U);
    EXPECT_EQ(ErrorOf(replace, "plain", "dir2"), 5U);
    EXPECT_EQ(ErrorOf(replace, "dir2", "plain"), 5U);
    EXPECT_EQ(ErrorOf(replace, "plain", "other"), 0U);
    EXPECT_EQ(folder.Read("other"), "0123456789");
    EXPECT_FALSE(folder.Has("plain"));
    EXPECT_EQ(ErrorOf(MoveFileA, "broken", "moved"), 0U); // the link, not what it leads to
    EXPECT_FALSE(MoveFileA(nullptr, "x"));
    EXPECT_FALSE(MoveFileA(folder.Path("other").c_str(), nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(FileNamesPlatformTest, MovingToAnotherFileSystemCopies)
{
    struct stat here;
    struct stat there;
    stat(folder.Path().c_str(), &here);
    if (stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev || access("/dev/shm", W_OK) != 0)
        GTEST_SKIP() << "no second file system";
    const std::string target =
        "/dev/shm/" + std::filesystem::path(folder.Path()).parent_path().filename().string();
    EXPECT_FALSE(MoveFileExA(folder.Path("plain").c_str(), target.c_str(), 0));
    EXPECT_EQ(GetLastError(), ERROR_NOT_SAME_DEVICE);
    EXPECT_TRUE(MoveFileA(folder.Path("plain").c_str(), target.c_str()));
    EXPECT_FALSE(folder.Has("plain"));
    EXPECT_EQ(std::filesystem::file_size(target), 10U);
    std::filesystem::remove(target);
}

TEST_F(FileNamesPlatformTest, Copying)
{
    folder.Write("other", "a longer text than the other");
    const auto carefully = [](const char* from, const char* to) { return CopyFileA(from, to, TRUE); };
    const auto replacing = [](const char* from, const char* to) { return CopyFileA(from, to, FALSE); };
    EXPECT_EQ(ErrorOf(replacing, "plain", "link"), 32U);
    EXPECT_EQ(folder.Read("plain"), "0123456789");
    EXPECT_EQ(ErrorOf(carefully, "dir", "x"), 5U);
    EXPECT_EQ(ErrorOf(replacing, "plain", "other"), 0U);
    EXPECT_EQ(folder.Read("other"), "0123456789");
    const std::string large(1'000'001, 'x');
    folder.Write("large", large);
    const timespec times[] = {{5, 0}, {1000, 0}};
    utimensat(AT_FDCWD, folder.Path("large").c_str(), times, 0);
    EXPECT_EQ(ErrorOf(carefully, "large", "larger"), 0U);
    EXPECT_EQ(folder.Read("larger"), large);
    struct stat state;
    stat(folder.Path("larger").c_str(), &state);
    EXPECT_EQ(state.st_mtim.tv_sec, 1000);
}

TEST_F(FileNamesPlatformTest, AFileThatIsHeldOpenStaysUnlessDeletingIsShared)
{
    const auto replace = [](const char* from, const char* to) {
        return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING);
    };
    for (const DWORD share : {0U, FILE_SHARE_READ | FILE_SHARE_WRITE, FILE_SHARE_DELETE}) {
        const DWORD error = share == FILE_SHARE_DELETE ? 0 : 32;
        const HANDLE held = Hold("plain", share);
        EXPECT_EQ(ErrorOf(MoveFileA, "plain", "moved"), error);
        EXPECT_EQ(ErrorOf(replace, ".dot", error == 0 ? "moved" : "plain"), error);
        EXPECT_TRUE(CloseHandle(held));
    }
}

// Each opener must end up with the file that has the name, not with one that was replaced under his hands.
TEST_F(FileNamesPlatformTest, OpeningWhileTheFileIsReplacedGetsTheNewOne)
{
    std::thread replacer([&] {
        for (int round = 0; round < 500; ++round) {
            folder.Write("new", "new");
            MoveFileExA(folder.Path("new").c_str(), folder.Path("plain").c_str(), MOVEFILE_REPLACE_EXISTING);
        }
    });
    int compared = 0;
    for (int round = 0; round < 500; ++round) {
        const HANDLE handle = Hold("plain", FILE_SHARE_READ);
        if (handle == INVALID_HANDLE_VALUE) {
            EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
            continue;
        }
        struct stat named = {};
        struct stat opened = {};
        EXPECT_EQ(stat(folder.Path("plain").c_str(), &named), 0);
        EXPECT_EQ(fstat(OpenFiles::DescriptorOf(handle), &opened), 0);
        EXPECT_EQ(named.st_ino, opened.st_ino); // it cannot be replaced while the handle is open
        ++compared;
        EXPECT_TRUE(CloseHandle(handle));
    }
    replacer.join();
    EXPECT_GT(compared, 0);
}

TEST_F(FileNamesPlatformTest, FoldersBelowFilesAndMissingFolders)
{
    const auto make = [](const char* path) { return CreateDirectoryA(path, nullptr); };
    for (const auto& [name, made, removed] :
         {std::tuple("none/x/", 3U, 3U), {"plain/", 183U, 123U}, {"new2", 0U, 0U}}) {
        EXPECT_EQ(ErrorOf(make, name), made) << name;
        EXPECT_EQ(ErrorOf(RemoveDirectoryA, name), removed) << name;
    }
    EXPECT_FALSE(CreateDirectoryA("", nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

// ---- names ----------------------------------------------------------------------------------------------

TEST_F(FileNamesPlatformTest, TemporaryNamesThatCannotBe)
{
    const std::string deepest = folder.Path() + std::string(246 - folder.Path().size(), 'd');
    folder.MakeFolder(deepest.substr(folder.Path().size()));
    folder.MakeFolder(deepest.substr(folder.Path().size()) + "d");
    const struct {
        std::string folder;
        const char* prefix;
        UINT unique;
        DWORD error;
    } cases[] = {
        {"", "abc", 5, 267},
        {folder.Path(), "a/b", 0, 123},
        {folder.Path(), "a\\b", 5, 123},
        {deepest + "d", "abc", 0, 111},
        {deepest, "abc", 0xFFFF, 0},
    };
    for (const auto& row : cases) {
        char path[MAX_PATH] = "untouched";
        SetLastError(0);
        const UINT number = GetTempFileNameA(row.folder.c_str(), row.prefix, row.unique, path);
        EXPECT_EQ(number == 0, row.error != 0);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(path, row.error != 0 ? "untouched" : deepest + "\\abcFFFF.tmp");
    }
    char path[MAX_PATH];
    EXPECT_EQ(GetTempFileNameA(nullptr, "abc", 0, path), 0U);
}

TEST_F(FileNamesPlatformTest, LongAndShortNamesAreWrittenInPlaceToo)
{
    for (const auto& operation : {GetLongPathNameA, GetShortPathNameA}) {
        const std::string path = folder.Path("dir/../broken");
        const auto length = static_cast<DWORD>(path.size());
        std::string buffer = path;
        EXPECT_EQ(operation(buffer.c_str(), buffer.data(), length + 1), length);
        EXPECT_EQ(buffer, path);
        EXPECT_EQ(operation(path.c_str(), nullptr, 0), length + 1);
        EXPECT_EQ(ErrorOf([&](const char* name) { return operation(name, nullptr, 0); }, "none/none"), 3U);
        EXPECT_EQ(ErrorOf([&](const char* name) { return operation(name, nullptr, 0); }, "plain/"), 123U);
    }
}

TEST_F(FileNamesPlatformTest, FullNames)
{
    const std::filesystem::path here = std::filesystem::current_path();
    const std::filesystem::path parent = here.parent_path();
    const struct {
        const char* path;
        std::string full;
        const char* last; // nullptr: nothing follows the last separator
    } cases[] = {
        {"/a/b", "/a/b", "b"},
        {"\\a\\.\\b\\", "/a/b/", nullptr},
        {"/a//b/../c", "/a/c", "c"},
        {"/../..", "/", nullptr},
        {"/", "/", nullptr},
        {"/a/..", "/", nullptr},
        {"x", (here / "x").string(), "x"},
        {"..\\x", (parent / "x").string(), "x"},
        {"c:x", (here / "c:x").string(), "c:x"},
        {"/a/...", "/a/...", "..."},
        {"//a", "/a", "a"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path);
        const auto length = static_cast<DWORD>(row.full.size());
        std::string buffer(row.full.size() + 1, '#');
        char* last = buffer.data();
        EXPECT_EQ(GetFullPathNameA(row.path, length, buffer.data(), &last), length + 1);
        EXPECT_EQ(GetFullPathNameA(row.path, length + 1, buffer.data(), &last), length);
        EXPECT_EQ(buffer.c_str(), row.full);
        EXPECT_STREQ(last, row.last);
    }
    EXPECT_EQ(GetFullPathNameA("", 0, nullptr, nullptr), 0U);
}

TEST(TempPathPlatformTest, EndsWithASeparatorAndAnswersTheSizeThatWouldDo)
{
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before == nullptr ? "" : before;
    const struct {
        const char *variable, *answer;
    } cases[] = {{"", "/tmp\\"}, {"/var/t", "/var/t\\"}, {"/var/t/", "/var/t/"}, {"\\", "\\"}};
    for (const auto& row : cases) {
        setenv("TMPDIR", row.variable, 1);
        const auto length = static_cast<DWORD>(std::strlen(row.answer));
        char buffer[32] = "#";
        EXPECT_EQ(GetTempPathA(1, buffer), length + 1);
        EXPECT_EQ(GetTempPathA(length, buffer), length + 1);
        EXPECT_EQ(GetTempPathA(0, nullptr), length + 1);
        EXPECT_STREQ(buffer, "#");
        EXPECT_EQ(GetTempPathA(length + 1, buffer), length);
        EXPECT_STREQ(buffer, row.answer);
    }
    before == nullptr ? unsetenv("TMPDIR") : setenv("TMPDIR", kept.c_str(), 1);
}

TEST(LocksPlatformTest, ACriticalSectionExcludesOtherThreadsAndNestsInItsOwn)
{
    CRITICAL_SECTION section;
    ASSERT_TRUE(InitializeCriticalSectionAndSpinCount(&section, 4000));
    int counter = 0; // guarded by the section only
    const auto count = [&] {
        for (int i = 0; i < 20'000; ++i) {
            EnterCriticalSection(&section);
            EnterCriticalSection(&section);
            LeaveCriticalSection(&section);
            ++counter;
            LeaveCriticalSection(&section);
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 40'000);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    std::thread([&] { EXPECT_FALSE(TryEnterCriticalSection(&section)); }).join();
    LeaveCriticalSection(&section);
    LeaveCriticalSection(&section); // once too often
    DeleteCriticalSection(&section);
}

} // namespace
