// Links, pipes, full disks, other file systems and users, and names that other platforms do not have.
#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "DirUtils.h"
#include "FileUtils.h"
#include "platform/Platform.h"
#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/TemporaryFolder.h"
#include "support/TextModels.h"

namespace {

namespace fs = std::filesystem;

class FilesOnPosix : public testing::Test {
protected:
    FilesOnPosix()
    {
        folder.Write("plain", "0123456789");
        folder.Write("other", "other");
        folder.MakeFolder("dir");
        for (const auto& [link, target] :
             {std::pair("link", "plain"), {"broken", "none"}, {"dirlink", "dir"}, {"to target", "target"}})
            fs::create_symlink(target, folder.Path(link));
        mkfifo(folder.Path("pipe").c_str(), 0666);
    }
    CString Path(const char* name = "file") const { return CString(folder.Path(name)); }
    DWORD Move(const char* from, const char* to) const
    {
        return MoveFileA(Path(from), Path(to)) ? 0 : GetLastError();
    }
    std::string Opened(const std::string& name, DWORD access, DWORD disposition) const
    {
        const HANDLE handle =
            CreateFileA(folder.Path(name).c_str(), access, 0, nullptr, disposition, 0, nullptr);
        const std::string error = std::to_string(GetLastError());
        return CloseHandle(handle) ? "opened " + error : error;
    }

    TemporaryFolder folder;
    MarkerLines markers;
};

TEST_F(FilesOnPosix, OperationsTakeLinksThemselves)
{
    fs::create_hard_link(folder.Path("plain"), folder.Path("second"));
    EXPECT_EQ(Move("plain", "second"), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(Move("plain", "./plain"), DWORD{ERROR_ALREADY_EXISTS}); // it could be a second name
    EXPECT_EQ(Move("other", "dirlink/../other"), 0U);
    EXPECT_EQ(Move("broken", "moved"), 0U);
    for (const char* name : {"moved", "link", "dirlink"})
        EXPECT_TRUE(DeleteFileA(Path(name))) << name;
    EXPECT_TRUE(folder.Has("plain") && folder.Has("dir") && !folder.Has("moved"));
    EXPECT_EQ(Opened("to target", GENERIC_READ, OPEN_EXISTING), "2");
    EXPECT_EQ(Opened("to target", GENERIC_WRITE, CREATE_NEW), "80");
    EXPECT_EQ(Opened("to target", GENERIC_WRITE, OPEN_ALWAYS), "opened 183");
    EXPECT_TRUE(folder.Has("target"));
}

TEST_F(FilesOnPosix, AnyNameIsOneThatTheSystemTakes)
{
    std::string deep = "dir";
    for (int level = 0; level < 12; ++level)
        deep += "/" + std::string(250, 'x');
    folder.MakeFolder(deep);
    for (const std::string& name :
         {std::string("a*b?<c>|\"d. "), std::string("\xFF\x80\n"), deep + "\\file"}) {
        EXPECT_EQ(Opened(name, GENERIC_WRITE, CREATE_NEW), "opened 0") << name;
        EXPECT_EQ(Opened(name, GENERIC_WRITE, OPEN_ALWAYS), "opened 183") << name;
    }
    EXPECT_EQ(Opened(std::string(10'000'000, '\\'), GENERIC_WRITE, CREATE_NEW), "123");
    for (auto [path, full] : Cases<2>("full names")) {
        const fs::path here = fs::current_path();
        if (full[0] != '/')
            full.replace(0, 1, (full[0] == '@' ? here : here.parent_path()).string());
        const auto length = static_cast<DWORD>(full.size());
        std::string buffer(full.size() + 1, '#');
        EXPECT_EQ(GetFullPathNameA(path.c_str(), length, buffer.data(), nullptr), length + 1) << path;
        EXPECT_EQ(GetFullPathNameA(path.c_str(), length + 1, buffer.data(), nullptr), length) << path;
        EXPECT_EQ(buffer.c_str(), full);
    }
}

TEST_F(FilesOnPosix, MovingToAnotherFileSystemCopies)
{
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

// ---- text files -----------------------------------------------------------------------------------------

bool Write(const CString& path, const Texts& lines, bool useEncoding = true)
{
    return FileUtils::WriteFileContent(path, ArrayOf(lines), useEncoding);
}

TEST_F(FilesOnPosix, TextFilesAreNeitherPipesNorDevices)
{
    EXPECT_EQ(Opened("pipe", GENERIC_READ, OPEN_EXISTING), "opened 0"); // and nobody waits for a writer
    TextArray lines;
    for (const CString& path : {Path("pipe"), CString("/dev/full")}) {
        FileUtils::ReadFileContent(path, lines, true);
        EXPECT_FALSE(Write(path, {"x"}) || Write(path, {"x"}, false));
        EXPECT_EQ(markers.TakeTags(),
                  (Texts{"{86CDA486-681F-43D5-9211-EFACE318A623}", "{04921E65-2BB5-411D-8C8D-7EBA96A840DB}",
                         "{0D586CC9-9036-401E-B183-3BE38B106F76}"}));
    }
    int encoding = 77;
    FileUtils::ReadFileContent("/proc/self/mem", lines, true); // whose beginning nobody can read
    EXPECT_FALSE(FileUtils::IsFileUnicode("/proc/self/mem", encoding));
    EXPECT_EQ(markers.TakeTags(),
              (Texts{"{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}", "{5A161316-5A02-4BFD-B2DC-9E21E40392D9}"}));
}

// 0 when writing more than a file may have fails, in the middle and on closing, each time with its marker.
int WriteTooMuch(const CString& path, std::size_t limit)
{
    const Texts many(10 * limit / 100, CString('x', 100)), buffered = {std::string(limit + 1, 'x')};
    const CString full = "There is not enough space on the disk.";
    const Texts expected = {
        "{7748B3A2-4926-4672-A742-F4FC85EEB4F7}" + full, "{B09FE32E-5A90-4F04-8D41-B4E876D35A92}" + full,
        "{46AAABDF-F710-47A9-8648-E44BB2DB59B6}" + full, "{BAD59966-D44C-4B4C-9179-073330BDADFE}" + full};
    for (const bool useEncoding : {true, false})
        if (Write(path, many, useEncoding) || Write(path, buffered, useEncoding))
            return 1;
    return MarkerLines::Take() == expected && fs::file_size(path.GetString()) <= limit ? 0 : 2;
}

TEST_F(FilesOnPosix, AWriteThatFailsHalfWayIsFalseAndEndsNoProcess)
{
    constexpr rlim_t limit = 50'000;
    const auto writeTooMuch = [&] {
        const rlimit most = {limit, limit};
        setrlimit(RLIMIT_FSIZE, &most); // with SIGXFSZ as it is: deadly
        _exit(WriteTooMuch(Path(), limit));
    };
    EXPECT_EXIT(writeTooMuch(), testing::ExitedWithCode(0), "");
}

TEST_F(FilesOnPosix, AFullDiskAndOneMountedReadOnlyAreSaid)
{
    const CString disk = CString(folder.MakeFolder("disk"));
    constexpr auto options = "size=48k";
    if (mount("none", disk, "tmpfs", 0, options) != 0)
        GTEST_SKIP() << "mounting a small file system is not permitted here";
    EXPECT_EQ(WriteTooMuch(disk + "/file", 48 * 1024), 0);
    EXPECT_TRUE(DirUtils::EnsureDirIsWritable(disk));
    mount("none", disk, "tmpfs", MS_REMOUNT | MS_RDONLY, options);
    EXPECT_FALSE(DirUtils::EnsureDirIsWritable(disk));
    EXPECT_TRUE(DirUtils::CreateDirectory(disk));
    EXPECT_FALSE(DirUtils::CreateDirectory(disk + "/new"));
    umount(disk);
}

TEST_F(FilesOnPosix, AFolderOfAnotherUsersIsNotWritable)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to become another user";
    chmod(folder.Path().c_str(), 0755);
    const auto writeAsNobody = [&] {
        constexpr uid_t nobody = 65534;
        const bool isWritten = setgid(nobody) != 0 || setuid(nobody) != 0 || Write(Path("new"), {"x"});
        _exit(!isWritten && markers.TakeTags() == Texts{"{91E67FDF-97D6-482E-92A6-1F13F717E627}"} ? 0 : 2);
    };
    EXPECT_EXIT(writeAsNobody(), testing::ExitedWithCode(0), "");
}

} // namespace
