// What the platform does to files by their names.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

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

std::string Replaced(std::string text, char from, char to)
{
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

TEST_F(FileNamesPlatformTest, ExistenceAndAttributesOfAllKindsOfNames)
{
    constexpr DWORD none = INVALID_FILE_ATTRIBUTES;
    const struct {
        const char* name;
        int access, accessForWriting; // 0 or errno
        DWORD attributes, error;
    } cases[] = {
        {"plain", 0, 0, 0x20, 0},
        {"plain\\", ENOENT, ENOENT, none, 123},
        {"plain\\x", ENOENT, ENOENT, none, 3},
        {"plain ", ENOENT, ENOENT, none, 2}, // nothing is dropped from a name
        {"plain.", ENOENT, ENOENT, none, 2},
        {"PLAIN", ENOENT, ENOENT, none, 2},
        {"readonly", 0, EACCES, 0x21, 0},
        {".dot", 0, 0, 0x22, 0},
        {"dir", 0, 0, 0x10, 0},
        {"dir\\", 0, 0, 0x10, 0},
        {"dir\\\\", 0, 0, 0x10, 0},
        {"dir/", 0, 0, 0x10, 0},
        {"dir\\.", 0, 0, 0x10, 0},
        {"dir\\..", 0, 0, 0x10, 0},
        {"link", 0, 0, 0x420, 0},
        {"dirlink", 0, 0, 0x410, 0},
        {"broken", 0, ENOENT, 0x420, 0},
        {"none", ENOENT, ENOENT, none, 2},
        {"none\\", ENOENT, ENOENT, none, 2},
        {"none\\none", ENOENT, ENOENT, none, 3},
        {"*", ENOENT, ENOENT, none, 2},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string path = folder.Path(row.name);
        for (const int mode : {0, 2, 4, 6}) {
            if (mode == 4 && row.access != row.accessForWriting)
                continue; // readable or not: either is fine
            const int expected = mode == 0 ? row.access : row.accessForWriting;
            errno = 0;
            EXPECT_EQ(_access(path.c_str(), mode) == 0 ? 0 : errno, expected) << "mode " << mode;
        }
        SetLastError(0);
        EXPECT_EQ(GetFileAttributesA(path.c_str()), row.attributes);
        EXPECT_EQ(GetLastError(), row.error);
    }
    for (const char* path : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(GetFileAttributesA(path), none);
        EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(_access(path, 0), -1);
    }
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
    const auto set = [&](const char* name, DWORD attributes) {
        return ErrorOf([&](const char* path) { return SetFileAttributesA(path, attributes); }, name);
    };
    EXPECT_EQ(set("none", 0x80), 2U);
    EXPECT_EQ(set("none/none", 0x80), 3U);
    const struct {
        DWORD attributes, after;
        mode_t mode;
    } cases[] = {
        {0x0, 0x20, 0640}, {0x1, 0x21, 0440}, {0x2, 0x20, 0640}, {0x21, 0x21, 0440}, {0x80, 0x20, 0640}};
    chmod(folder.Path("plain").c_str(), 0640);
    for (const auto& row : cases) {
        EXPECT_EQ(set("plain", row.attributes), 0U);
        EXPECT_EQ(GetFileAttributesA(folder.Path("plain").c_str()), row.after);
        struct stat state;
        stat(folder.Path("plain").c_str(), &state);
        EXPECT_EQ(state.st_mode & 0777, row.mode);
    }
}

TEST_F(FileNamesPlatformTest, Deleting)
{
    const struct {
        const char* name;
        DWORD error;
    } cases[] = {{"readonly", 5}, {"none", 2},   {"none/x", 3},  {"dir", 5},   {"*", 2},    {"plain/", 123},
                 {"link", 0},     {"broken", 0}, {"dirlink", 0}, {"plain", 0}, {"plain", 2}};
    for (const auto& row : cases)
        EXPECT_EQ(ErrorOf(DeleteFileA, row.name), row.error) << row.name;
    EXPECT_TRUE(folder.Has("dir"));
    EXPECT_FALSE(DeleteFileA(""));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(DeleteFileA(nullptr));
}

TEST_F(FileNamesPlatformTest, Moving)
{
    folder.Write("other", "other");
    folder.Write("dir/inside", "");
    std::filesystem::create_hard_link(folder.Path("plain"), folder.Path("second"));
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "other"), 183U);
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "second"), 183U);
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "plain"), 0U);
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "./plain"),
              183U); // with two names, a spelling cannot be told from a name
    EXPECT_EQ(ErrorOf(MoveFileA, "other", "dirlink/../other"), 0U);
    EXPECT_EQ(ErrorOf(MoveFileA, "none", "x"), 2U);
    EXPECT_EQ(ErrorOf(MoveFileA, "none/none", "x"), 3U);
    EXPECT_EQ(ErrorOf(MoveFileA, "plain", "none\\x"), 3U);
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
    EXPECT_EQ(ErrorOf(carefully, "plain", "other"), 80U);
    EXPECT_EQ(ErrorOf(replacing, "plain", "readonly"), 5U);
    EXPECT_EQ(ErrorOf(replacing, "plain", "plain"), 32U);
    EXPECT_EQ(ErrorOf(replacing, "plain", "link"), 32U);
    EXPECT_EQ(folder.Read("plain"), "0123456789");
    EXPECT_EQ(ErrorOf(carefully, "none", "x"), 2U);
    EXPECT_EQ(ErrorOf(carefully, "plain", "none/x"), 3U);
    EXPECT_EQ(ErrorOf(carefully, "dir", "x"), 5U);
    EXPECT_EQ(ErrorOf(replacing, "plain", "other"), 0U);
    EXPECT_EQ(folder.Read("other"), "0123456789");
    EXPECT_EQ(ErrorOf(carefully, "readonly", "copy"), 0U);
    EXPECT_EQ(GetFileAttributesA(folder.Path("copy").c_str()), 0x21U);
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
    for (const DWORD share : {0U, FILE_SHARE_READ | FILE_SHARE_WRITE}) {
        const HANDLE held = Hold("plain", share);
        EXPECT_EQ(ErrorOf(DeleteFileA, "plain"), 32U);
        EXPECT_EQ(ErrorOf(MoveFileA, "plain", "moved"), 32U);
        const auto replace = [](const char* from, const char* to) {
            return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING);
        };
        EXPECT_EQ(ErrorOf(replace, ".dot", "plain"), 32U);
        EXPECT_EQ(GetFileAttributesA(folder.Path("plain").c_str()), 0x20U);
        EXPECT_TRUE(CloseHandle(held));
    }
    const auto copy = [](const char* from, const char* to) { return CopyFileA(from, to, TRUE); };
    HANDLE held = Hold("plain");
    EXPECT_EQ(ErrorOf(copy, "plain", "copy"), 32U);
    EXPECT_TRUE(CloseHandle(held));
    held = Hold("plain", FILE_SHARE_DELETE);
    EXPECT_EQ(ErrorOf(DeleteFileA, "plain"), 0U);
    EXPECT_TRUE(CloseHandle(held));
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

TEST_F(FileNamesPlatformTest, Folders)
{
    const auto make = [](const char* path) { return CreateDirectoryA(path, nullptr); };
    folder.Write("dir/file", "");
    const struct {
        const char* name;
        DWORD made, removed;
    } cases[] = {{"dir", 183, 145}, {"plain", 183, 267}, {"none/x", 3, 3},    {"new\\", 0, 0},
                 {"new2", 0, 0},    {"none/x/", 3, 3},   {"plain/", 183, 123}};
    for (const auto& row : cases) {
        EXPECT_EQ(ErrorOf(make, row.name), row.made) << row.name;
        EXPECT_EQ(ErrorOf(RemoveDirectoryA, row.name), row.removed) << row.name;
    }
    EXPECT_EQ(ErrorOf(RemoveDirectoryA, "none"), 2U);
    EXPECT_FALSE(CreateDirectoryA("", nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

// ---- names ----------------------------------------------------------------------------------------------

TEST_F(FileNamesPlatformTest, TemporaryNames)
{
    const std::string bare = folder.Path().substr(0, folder.Path().size() - 1);
    const struct {
        std::string folder;
        const char* prefix;
        UINT unique, returned;
        std::string name;
    } cases[] = {
        {bare, "abcdef", 0x1234, 0x1234, bare + "\\abc1234.tmp"},
        {bare, "ab", 0x1234, 0x1234, bare + "\\ab1234.tmp"},
        {bare, "", 0x1234, 0x1234, bare + "\\1234.tmp"},
        {bare, nullptr, 0x1234, 0x1234, bare + "\\1234.tmp"},
        {bare, "ABC", 5, 5, bare + "\\ABC5.tmp"},
        {bare, "abc", 0x1ABCD, 0xABCD, bare + "\\abcABCD.tmp"},
        {bare + "\\", "abc", 5, 5, bare + "\\abc5.tmp"},
        {bare + "/", "abc", 5, 5, bare + "/abc5.tmp"},
        {".", "abc", 5, 5, ".\\abc5.tmp"},
    };
    for (const auto& row : cases) {
        char path[MAX_PATH];
        EXPECT_EQ(GetTempFileNameA(row.folder.c_str(), row.prefix, row.unique, path), row.returned);
        EXPECT_EQ(path, row.name);
        EXPECT_EQ(_access(path, 0), -1);
    }
}

TEST_F(FileNamesPlatformTest, TemporaryFilesAreMadeUnderNewNames)
{
    std::set<std::string> names;
    for (UINT call = 0; call < 200; ++call) {
        char path[MAX_PATH];
        const UINT number =
            GetTempFileNameA(folder.Path("dir").c_str(), "abc", call % 2 == 0 ? 0 : 0x10000, path);
        ASSERT_GE(number, 1U);
        ASSERT_LE(number, 0xFFFFU);
        char digits[8];
        std::snprintf(digits, sizeof digits, "%X", number);
        EXPECT_EQ(path, folder.Path("dir\\abc") + digits + ".tmp");
        struct stat state;
        ASSERT_EQ(stat(Replaced(path, '\\', '/').c_str(), &state), 0);
        EXPECT_EQ(state.st_size, 0);
        names.insert(path);
    }
    EXPECT_EQ(names.size(), 200U);
}

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
        {folder.Path("none"), "abc", 0, 267},
        {folder.Path("plain"), "abc", 0, 267},
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

TEST_F(FileNamesPlatformTest, LongAndShortNamesAreTheNameItself)
{
    for (const auto& operation : {GetLongPathNameA, GetShortPathNameA}) {
        for (const char* name : {"plain", "dir", "dir\\", "dir/../plain", "broken"}) {
            const std::string path = Replaced(folder.Path(), '/', '\\') + name;
            const auto length = static_cast<DWORD>(path.size());
            std::string buffer(path.size() + 1, '#');
            EXPECT_EQ(operation(path.c_str(), buffer.data(), 5), length + 1);
            EXPECT_EQ(operation(path.c_str(), buffer.data(), length), length + 1);
            EXPECT_EQ(operation(path.c_str(), nullptr, 0), length + 1);
            EXPECT_EQ(buffer, std::string(path.size() + 1, '#'));
            EXPECT_EQ(operation(path.c_str(), buffer.data(), length + 1), length);
            EXPECT_EQ(buffer.c_str(), path);
            EXPECT_EQ(operation(buffer.c_str(), buffer.data(), length + 1), length); // in place
        }
        char buffer[9];
        EXPECT_EQ(ErrorOf([&](const char* path) { return operation(path, buffer, 9); }, "none"), 2U);
        EXPECT_EQ(ErrorOf([&](const char* path) { return operation(path, buffer, 9); }, "none/none"), 3U);
        EXPECT_EQ(ErrorOf([&](const char* path) { return operation(path, buffer, 9); }, "plain/"), 123U);
        EXPECT_EQ(operation("", buffer, 9), 0U);
        EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
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
