// What the platform does to files by their names.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <sys/stat.h>
#include <thread>

#include "platform/Platform.h"
#include "platform/posix/OpenFiles.h"
#include "support/Cases.h"
#include "support/TemporaryFolder.h"

namespace {

BOOL Replace(const char* from, const char* to)
{
    return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING);
}

class FileNamesPlatformTest : public testing::Test {
protected:
    FileNamesPlatformTest()
    {
        folder.Write("plain", "0123456789");
        folder.Write("other", "other");
        folder.MakeFolder("dir");
        std::filesystem::permissions(folder.Write("readonly", ""), std::filesystem::perms::owner_read);
        for (const auto& [link, target] :
             {std::pair("link", "plain"), {"broken", "none"}, {"dirlink", "dir"}})
            std::filesystem::create_symlink(target, folder.Path(link));
    }

    TemporaryFolder folder;
};

TEST_F(FileNamesPlatformTest, OperationsOnNamesAnswerByTheTable)
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
        {"delete", [](const char* path, const char*) { return DeleteFileA(path); }},
        {"make folder", [](const char* path, const char*) { return CreateDirectoryA(path, nullptr); }},
        {"move", MoveFileA},
        {"replace", Replace}};
    folder.Write("dir/inside", "");
    std::filesystem::create_hard_link(folder.Path("plain"), folder.Path("second"));
    for (const auto& [name, from, to, error] : Cases<4>("file operations")) {
        const BOOL done = operations.at(name)(folder.Path(from).c_str(), folder.Path(to).c_str());
        EXPECT_EQ(done ? 0 : GetLastError(), std::stoul(error)) << name << ' ' << from << ' ' << to;
    }
    EXPECT_TRUE(folder.Has("dir2/inside"));
    EXPECT_EQ(folder.Read("other") + folder.Read("second"), "01234567890123456789");
}

TEST_F(FileNamesPlatformTest, MovingToAnotherFileSystemCopies)
{
    namespace fs = std::filesystem;
    const std::string content(1'000'001, 'x'),
        source = folder.Write("large", content),
        target = "/dev/shm/" + fs::path(folder.Path()).parent_path().filename().string();
    const fs::file_time_type written = fs::last_write_time(source) - std::chrono::hours(1);
    fs::last_write_time(source, written);
    if (MoveFileExA(source.c_str(), target.c_str(), 0) || GetLastError() != ERROR_NOT_SAME_DEVICE)
        GTEST_SKIP() << "no second file system";
    EXPECT_TRUE(MoveFileA(source.c_str(), target.c_str()));
    EXPECT_FALSE(folder.Has("large"));
    EXPECT_EQ(fs::last_write_time(target), written);
    EXPECT_TRUE(MoveFileA(target.c_str(), source.c_str()));
    EXPECT_EQ(folder.Read("large"), content);
    EXPECT_FALSE(fs::exists(target));
}

TEST_F(FileNamesPlatformTest, AFileThatIsHeldOpenStaysUnlessDeletingIsShared)
{
    for (const DWORD share : {0U, FILE_SHARE_READ | FILE_SHARE_WRITE, FILE_SHARE_DELETE}) {
        const bool isFree = share == FILE_SHARE_DELETE;
        const HANDLE held = CreateFileA(folder.Path("plain").c_str(), GENERIC_READ, share, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(MoveFileA(folder.Path("plain").c_str(), folder.Path("moved").c_str()), isFree);
        EXPECT_EQ(GetLastError(), isFree ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION);
        EXPECT_EQ(Replace(folder.Path("other").c_str(), folder.Path(isFree ? "moved" : "plain").c_str()),
                  isFree);
        EXPECT_TRUE(CloseHandle(held));
    }
}

// Each opener must end up with the file that has the name, not with one that was replaced under his hands.
TEST_F(FileNamesPlatformTest, OpeningWhileTheFileIsReplacedGetsTheNewOne)
{
    const std::string path = folder.Path("plain");
    std::thread replacer([&] {
        for (int round = 0; round < 500; ++round)
            Replace(folder.Write("new", "new").c_str(), path.c_str());
    });
    int compared = 0;
    for (int round = 0; round < 500; ++round) {
        const HANDLE handle = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            continue;
        struct stat named = {}, opened = {};
        EXPECT_EQ(stat(path.c_str(), &named) + fstat(OpenFiles::DescriptorOf(handle), &opened), 0);
        EXPECT_EQ(named.st_ino, opened.st_ino); // it cannot be replaced while the handle is open
        ++compared;
        EXPECT_TRUE(CloseHandle(handle));
    }
    replacer.join();
    EXPECT_GT(compared, 0);
}

TEST(FullNamesPlatformTest, AreThoseOfTheTable)
{
    const std::filesystem::path here = std::filesystem::current_path();
    for (auto [path, full] : Cases<2>("full names")) {
        if (full[0] != '/')
            full.replace(0, 1, (full[0] == '@' ? here : here.parent_path()).string());
        const auto length = static_cast<DWORD>(full.size());
        std::string buffer(full.size() + 1, '#');
        EXPECT_EQ(GetFullPathNameA(path.c_str(), length, buffer.data(), nullptr), length + 1) << path;
        EXPECT_EQ(GetFullPathNameA(path.c_str(), length + 1, buffer.data(), nullptr), length) << path;
        EXPECT_EQ(buffer.c_str(), full);
    }
}

} // namespace
