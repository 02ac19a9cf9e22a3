#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "DirUtils.h"
#include "FileUtils.h"
#include "files/FileHandle.h"
#include "files/TextFile.h"
#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/RandomTexts.h"
#include "support/TemporaryFolder.h"
#include "support/TextFiles.h"
#include "support/TextModels.h"

namespace {

namespace fs = std::filesystem;

class TextFileOperations : public testing::Test {
protected:
    CString Path(const char* name = "file") const { return CString(folder.Path(name)); }

    TemporaryFolder folder;
    MarkerLines markers;
};

bool Write(const CString& path, const Texts& lines, bool useEncoding = true, int encoding = 1)
{
    return FileUtils::WriteFileContent(path, ArrayOf(lines), useEncoding, encoding);
}

// Runs it in a process of its own and says what it returned; -1 when it died of a signal.
int InChild(const std::function<int()>& run)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(run());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(TextFileOperations, MarksAreToldFromTheBytesThatAreThere)
{
    const auto encodingOf = [&](const std::string& bytes) {
        int encoding = 77;
        folder.Write("file", bytes);
        const bool isUnicode = FileUtils::IsFileUnicode(Path(), encoding);
        EXPECT_EQ(isUnicode, encoding != 1);
        return encoding;
    };
    const std::string marks[] = {Marks[2], Marks[3], Marks[4], "+/v", std::string("\0\0\xFE\xFF", 4)};
    for (int encoding = 2; const std::string& mark : marks) {
        SCOPED_TRACE(encoding);
        for (std::size_t i = 0; i < mark.size(); ++i) {
            EXPECT_EQ(encodingOf(mark.substr(0, i)), 1);
            EXPECT_EQ(encodingOf((mark + "xxxx").replace(i, 1, "*")), 1);
        }
        EXPECT_EQ(encodingOf(mark), encoding);
        EXPECT_EQ(encodingOf(mark + std::string(2, '\0')), encoding++); // so UTF-32 little-endian is 2
    }
}

std::string FileOf(const Texts& lines, int encoding)
{
    std::string text;
    for (const CString& line : lines)
        text.append(line.View()) += "\r\n";
    return lines.empty() ? "" : Marks[encoding] + Encoded(text, encoding);
}

TEST_F(TextFileOperations, WhatIsWrittenIsReadAgain)
{
    RandomTexts random;
    const std::string letters("\0ab\r\x7F\x80\xA0\xC3\xFF", 9);
    for (int round = 0; round < 5; ++round) {
        Texts lines(round == 0 ? 0 : random.Below(200));
        for (CString& line : lines)
            line = std::string(random.Below(random.OneIn(100) ? 140'000 : 60), random.Pick(letters));
        for (const int encoding : {0, 1, 2, 3, 4, 0x104, 0x7FFFFF02}) {
            const int used = encoding % 256 == 0 ? 1 : encoding % 256;
            ASSERT_TRUE(Write(Path(), lines, true, encoding));
            ASSERT_TRUE(folder.Read("file") == FileOf(lines, used)) << encoding;
            TextArray again;
            FileUtils::ReadFileContent(Path(), again, true);
            ASSERT_EQ(again.GetCount(), lines.size());
            for (std::size_t i = 0; i < lines.size() && used != 4; ++i) // whose writer knows no code page
                ASSERT_TRUE(again[i] == lines[i] || again[i] == lines[i] + '\r');
        }
        ASSERT_TRUE(Write(Path(), lines, false, 4));
        ASSERT_TRUE(folder.Read("file") == FileOf(lines, 1));
        EXPECT_TRUE(FileUtils::IsFileContentIdentical(Path(), ArrayOf(lines), false));
    }
    EXPECT_EQ(markers.Take(), Texts());
}

TEST_F(TextFileOperations, LineFeedsInsideLinesAreWrittenAsEachWayDoes)
{
    EXPECT_TRUE(Write(Path("m\\n\\file"), {"a\nb", ""}, false)); // which makes the folders
    EXPECT_EQ(folder.Read("m/n/file"), "a\r\nb\r\n\r\n");
    EXPECT_TRUE(Write(Path(), {"a\nb", ""}));
    EXPECT_EQ(folder.Read("file"), "a\nb\r\n\r\n");
    for (const char* others : {"a;b", "a;B;", ""})
        EXPECT_FALSE(FileUtils::IsFileContentIdentical(Path(), ListOf(others), true));
    EXPECT_TRUE(FileUtils::IsFileContentIdentical(Path("none"), TextArray(), true)); // which has no lines
}

TEST_F(TextFileOperations, WhatIsNoFileIsRefusedAtOnceAndSaid)
{
    folder.MakeFolder("folder");
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0666), 0);
    folder.Write("text", "a");
    for (const auto& [name, read, encoded, streamed] : Cases<4>("no files")) {
        const CString path = name.starts_with('@') ? CString(folder.Path(name.substr(1))) : CString(name);
        SCOPED_TRACE(path);
        int encoding = 77;
        for (const bool detects : {true, false}) {
            TextArray lines = ListOf("left over");
            FileUtils::ReadFileContent(path, lines, detects, &encoding);
            EXPECT_TRUE(encoding == 1 && lines.IsEmpty());
        }
        EXPECT_FALSE(Write(path, {"x"}, true, 4) || Write(path, {"x"}, false));
        EXPECT_FALSE(FileUtils::IsFileUnicode(path, encoding));
        EXPECT_EQ(encoding, 0);
        EXPECT_EQ(markers.TakeTags(),
                  (Texts{read, read, encoded, streamed, "{30AF5017-BA9E-4562-B859-800D0E8B175C}"}));
    }
}

TEST_F(TextFileOperations, AFailureLeavesItsOwnMarkerAndTheFile)
{
    folder.Write("file", "kept");
    EXPECT_FALSE(Write(Path(), {"x"}, true, 5));
    chmod(Path(), 0444);
    EXPECT_FALSE(Write(Path(), {"x"}) || Write(Path(), {"x"}, false));
    EXPECT_EQ(folder.Read("file"), "kept");
    chmod(Path(), 0666);
    const FileHandle guard(CreateFileA(Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    const auto readAll = [](const CString& path) {
        int encoding = 77;
        TextArray lines;
        FileUtils::ReadFileContent(path, lines, true);
        FileUtils::ReadFileContent(path, lines, false);
        EXPECT_FALSE(FileUtils::IsFileUnicode(path, encoding));
        EXPECT_TRUE(encoding == 0 && lines.IsEmpty());
    };
    readAll(Path());
    const CString used = "The process cannot access the file because it is being used by another process.";
    EXPECT_EQ(markers.Take(),
              (Texts{"{423AE097-D2E5-42C9-916D-51FFA18FA989}", "{04921E65-2BB5-411D-8C8D-7EBA96A840DB}",
                     "{307CBD36-BF88-41F0-B437-FAF347B996EF}Access is denied.",
                     "{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}",
                     "{8B7D1613-6441-4ff8-AD38-F0930DC9DA19} - " + Path() + used,
                     "{30AF5017-BA9E-4562-B859-800D0E8B175C}" + used}));
    readAll("/proc/self/mem"); // whose beginning nobody can read
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

TEST_F(TextFileOperations, AWriteThatFailsHalfWayIsFalseAndEndsNoProcess)
{
    constexpr rlim_t limit = 50'000;
    const auto writeTooMuch = [&] {
        const rlimit most = {limit, limit};
        setrlimit(RLIMIT_FSIZE, &most); // with SIGXFSZ as it is: deadly
        return WriteTooMuch(Path(), limit);
    };
    EXPECT_EQ(InChild(writeTooMuch), 0);
}

TEST_F(TextFileOperations, AFullDiskAndOneMountedReadOnlyAreSaid)
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

TEST_F(TextFileOperations, TheThirdModeWritesOverWhatIsThere)
{
    folder.Write("file", "0123456789");
    TextFile file;
    ASSERT_EQ(file.Open(Path(), 3, 4), TextFile::Done);
    EXPECT_EQ(file.WriteLine("a"), TextFile::Done);
    EXPECT_EQ(file.Close(), TextFile::Done);
    EXPECT_EQ(file.WriteLine("a"), TextFile::SystemError);
    EXPECT_EQ(folder.Read("file"), Marks[4] + "a\r\n6789");
}

// ---- folders --------------------------------------------------------------------------------------------

TEST_F(TextFileOperations, FoldersAreMadeWithTheirParents)
{
    folder.Write("file", "");
    for (const char* name : {"a", "a", "b/c/d", "e\\f//g\\", "h/", "h/../i/./j", ""})
        EXPECT_TRUE(DirUtils::CreateDirectory(Path(name))) << name;
    for (const char* made : {"a", "b/c/d", "e/f/g", "h", "i/j"})
        EXPECT_TRUE(fs::is_directory(folder.Path(made))) << made;
    for (const CString& bad :
         {CString(), Path("file"), Path("file/x"), Path() + CString("k\0/l", 4), Path("a") + '\0'})
        EXPECT_FALSE(DirUtils::CreateDirectory(bad)) << bad;
}

TEST_F(TextFileOperations, FoldersAreMadeWritableOrSaidNotToBe)
{
    const CString locked(folder.MakeFolder("locked"));
    chmod(locked, 0555);
    EXPECT_TRUE(Write(locked + "/file", {"x"}));
    EXPECT_EQ(fs::status(locked.GetString()).permissions(), fs::perms{0755});
    for (const CString& bad : {CString(), Path("none"), locked + "/file", locked + CString('\0')})
        EXPECT_FALSE(DirUtils::EnsureDirIsWritable(bad)) << bad;

    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to become another user";
    chmod(folder.Path().c_str(), 0755);
    const auto writeAsNobody = [&] {
        constexpr uid_t nobody = 65534;
        if (setgid(nobody) != 0 || setuid(nobody) != 0)
            return 1;
        const bool isWritten = Write(Path("new"), {"x"});
        return !isWritten && markers.TakeTags() == Texts{"{91E67FDF-97D6-482E-92A6-1F13F717E627}"} ? 0 : 2;
    };
    EXPECT_EQ(InChild(writeAsNobody), 0);
}

} // namespace
