#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "DirUtils.h"
#include "FileUtils.h"
#include "TextArray.h"
#include "files/FileHandle.h"
#include "files/TextFile.h"
#include "framework/FailureMarkers.h"
#include "platform/posix/OpenFiles.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

Lines markers;

// Collects the marker lines of one test.
class TextFileOperations : public testing::Test {
protected:
    TextFileOperations()
    {
        markers.clear();
        m_before = FailureMarkers::SetSink([](const CString& line) { markers.emplace_back(line); });
    }
    ~TextFileOperations() override { FailureMarkers::SetSink(m_before); }

    CString Path(const char* name = "file") const { return CString(folder.Path(name)); }

    TemporaryFolder folder;

private:
    FailureMarkers::Sink m_before;
};

// The markers since the last call, without the system's text behind a tag.
Lines Tags()
{
    Lines tags;
    for (const std::string& marker : std::exchange(markers, {}))
        tags.push_back(marker.substr(0, marker.find('}') + 1));
    return tags;
}

TextArray ArrayOf(const Lines& lines)
{
    TextArray array;
    for (const std::string& line : lines)
        array.Add(CString(line));
    return array;
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
        EXPECT_EQ(isUnicode, encoding != 1) << testing::PrintToString(bytes);
        return encoding;
    };
    const std::pair<std::string, int> marks[] = {{"\xFF\xFE", 2},
                                                 {"\xFE\xFF", 3},
                                                 {"\xEF\xBB\xBF", 4},
                                                 {"+/v", 5},
                                                 {std::string("\0\0\xFE\xFF", 4), 6}};
    for (const auto& [mark, encoding] : marks) {
        for (std::size_t i = 0; i < mark.size(); ++i) {
            EXPECT_EQ(encodingOf(mark.substr(0, i)), 1);
            std::string other = mark + "xxxx";
            other[i] = '*';
            EXPECT_EQ(encodingOf(other), 1);
        }
        EXPECT_EQ(encodingOf(mark), encoding);
        EXPECT_EQ(encodingOf(mark + std::string(2, '\0')), encoding); // so UTF-32 little-endian is 2
    }
}

// What one character of a line is in the file; of the page's own characters only the euro sign is used.
std::string Encoded(char c, int encoding)
{
    const auto byte = static_cast<unsigned char>(c);
    const int unit = byte == 0x80 ? 0x20AC : byte;
    if (encoding == 2)
        return {static_cast<char>(unit % 256), static_cast<char>(unit / 256)};
    if (encoding == 3)
        return {static_cast<char>(unit / 256), static_cast<char>(unit % 256)};
    if (encoding == 4 && byte >= 128)
        return {static_cast<char>(192 + byte / 64), static_cast<char>(128 + byte % 64)};
    return {c};
}

std::string FileOf(const Lines& lines, int encoding)
{
    const std::string marks[] = {"", "", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"};
    std::string bytes = lines.empty() ? "" : marks[encoding];
    for (const std::string& line : lines)
        for (const char c : line + "\r\n")
            bytes += Encoded(c, encoding);
    return bytes;
}

TEST_F(TextFileOperations, WhatIsWrittenIsReadAgain)
{
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::string letters("\0ab\r\x7F\x80\xA0\xC3\xFF", 9);
    for (int round = 0; round < 5; ++round) {
        Lines lines(round == 0 ? 0 : random() % 200);
        for (std::string& line : lines)
            line.assign(random() % (random() % 100 == 0 ? 140'000 : 60), letters[random() % letters.size()]);
        for (const int encoding : {0, 1, 2, 3, 4, 0x104, 0x7FFFFF02}) {
            const int used = encoding % 256 == 0 ? 1 : encoding % 256;
            ASSERT_TRUE(FileUtils::WriteFileContent(Path(), ArrayOf(lines), true, encoding));
            ASSERT_TRUE(folder.Read("file") == FileOf(lines, used)) << encoding;
            TextArray again;
            FileUtils::ReadFileContent(Path(), again, true);
            ASSERT_EQ(again.GetCount(), lines.size());
            for (std::size_t i = 0; i < lines.size() && used != 4; ++i) // whose writer knows no code page
                ASSERT_TRUE(again[i] == CString(lines[i]) || again[i] == CString(lines[i] + '\r'));
        }
        ASSERT_TRUE(FileUtils::WriteFileContent(Path(), ArrayOf(lines), false, 4));
        ASSERT_TRUE(folder.Read("file") == FileOf(lines, 1));
        EXPECT_TRUE(FileUtils::IsFileContentIdentical(Path(), ArrayOf(lines), false));
    }
    EXPECT_EQ(markers, Lines());
}

TEST_F(TextFileOperations, LineFeedsInsideLinesAreWrittenAsEachWayDoes)
{
    for (const bool useEncoding : {true, false}) {
        EXPECT_TRUE(FileUtils::WriteFileContent(Path(), ArrayOf({"a\nb", ""}), useEncoding));
        EXPECT_EQ(folder.Read("file"), useEncoding ? "a\nb\r\n\r\n" : "a\r\nb\r\n\r\n");
    }
    EXPECT_TRUE(FileUtils::IsFileContentIdentical(Path(), ArrayOf({"a", "b", ""}), true));
    for (const Lines& others : {Lines{"a", "b"}, Lines{"a", "B", ""}, Lines{}})
        EXPECT_FALSE(FileUtils::IsFileContentIdentical(Path(), ArrayOf(others), true));
    EXPECT_TRUE(FileUtils::IsFileContentIdentical(Path("none"), TextArray(), true)); // which has no lines
}

TEST_F(TextFileOperations, WhatIsNoFileIsRefusedAtOnceAndSaid)
{
    fs::create_directory(folder.Path("folder"));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0666), 0);
    folder.Write("text", "a");
    const std::string notAFile = "{86CDA486-681F-43D5-9211-EFACE318A623}";
    const std::string notThere = "{AB91D2F6-45CF-4D68-BFFF-829E56F7D3AD}";
    const std::string notCreated = "{04921E65-2BB5-411D-8C8D-7EBA96A840DB}";
    const std::string notStreamed = "{0D586CC9-9036-401E-B183-3BE38B106F76}";
    const std::string noFolder = "{0584D9B2-55D5-458D-A837-D590C7F5F932}";
    const std::string noName = "{38BD4A9D-A6F9-4AF4-9EEB-58A8CD9F69CC}";
    const struct {
        CString path;
        std::string read, encoded, streamed;
    } cases[] = {
        {Path("folder"), notAFile, notCreated, notStreamed},
        {Path("pipe"), notAFile, notCreated, notStreamed},
        {"/dev/full", notAFile, notCreated, notStreamed},
        {CString(), notAFile, noName, noName},
        {" \t", notThere, noName, noName},
        {Path("text") + CString("\0x", 2), notThere, notCreated, notStreamed},
        {Path("text/x"), notThere, noFolder, noFolder},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path);
        int encoding = 77;
        for (const bool detects : {true, false}) {
            TextArray lines = ArrayOf({"left over"});
            FileUtils::ReadFileContent(row.path, lines, detects, &encoding);
            EXPECT_EQ(encoding, 1);
            EXPECT_TRUE(lines.IsEmpty());
        }
        EXPECT_FALSE(FileUtils::WriteFileContent(row.path, ArrayOf({"x"}), true, 4));
        EXPECT_FALSE(FileUtils::WriteFileContent(row.path, ArrayOf({"x"}), false));
        EXPECT_EQ(Tags(), (Lines{row.read, row.read, row.encoded, row.streamed}));
        EXPECT_FALSE(FileUtils::IsFileUnicode(row.path, encoding));
        EXPECT_EQ(encoding, 0);
        EXPECT_EQ(Tags(), Lines{"{30AF5017-BA9E-4562-B859-800D0E8B175C}"});
    }
}

TEST_F(TextFileOperations, AFailureLeavesItsOwnMarkerAndTheFile)
{
    folder.Write("file", "kept");
    int encoding = 77;
    TextArray lines;
    EXPECT_FALSE(FileUtils::WriteFileContent(Path(), ArrayOf({"x"}), true, 5));
    fs::permissions(folder.Path("file"), fs::perms::owner_read);
    EXPECT_FALSE(FileUtils::WriteFileContent(Path(), ArrayOf({"x"}), true, 1));
    EXPECT_FALSE(FileUtils::WriteFileContent(Path(), ArrayOf({"x"}), false));
    EXPECT_EQ(folder.Read("file"), "kept");
    fs::permissions(folder.Path("file"), fs::perms::owner_all);
    const FileHandle guard(CreateFileA(Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    FileUtils::ReadFileContent(Path(), lines, true);
    FileUtils::ReadFileContent(Path(), lines, false);
    EXPECT_FALSE(FileUtils::IsFileUnicode(Path(), encoding));
    const std::string used =
        "The process cannot access the file because it is being used by another process.";
    EXPECT_EQ(markers,
              (Lines{"{423AE097-D2E5-42C9-916D-51FFA18FA989}", "{04921E65-2BB5-411D-8C8D-7EBA96A840DB}",
                     "{307CBD36-BF88-41F0-B437-FAF347B996EF}Access is denied.",
                     "{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}",
                     "{8B7D1613-6441-4ff8-AD38-F0930DC9DA19} - " + folder.Path("file") + used,
                     "{30AF5017-BA9E-4562-B859-800D0E8B175C}" + used}));
}

// /proc/self/mem is a file whose beginning nobody can read.
TEST_F(TextFileOperations, WhatCannotBeReadIsSaid)
{
    if (!fs::is_regular_file("/proc/self/mem"))
        GTEST_SKIP() << "no file here whose reading fails";
    int encoding = 77;
    TextArray lines;
    EXPECT_FALSE(FileUtils::IsFileUnicode("/proc/self/mem", encoding));
    EXPECT_EQ(encoding, 0);
    FileUtils::ReadFileContent("/proc/self/mem", lines, true);
    FileUtils::ReadFileContent("/proc/self/mem", lines, false);
    EXPECT_TRUE(lines.IsEmpty());
    EXPECT_EQ(Tags(),
              (Lines{"{5A161316-5A02-4BFD-B2DC-9E21E40392D9}", "{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}"}));
}

// ---- writing that fails half-way ------------------------------------------------------------------------

// 0 when writing more than a file may have fails, in the middle and on closing, each time with its marker.
int WriteTooMuch(const CString& path, std::size_t limit)
{
    const TextArray many = ArrayOf(Lines(10 * limit / 100, std::string(100, 'x')));
    const TextArray buffered = ArrayOf({std::string(limit + 1, 'x')});
    const Lines expected = {
        "{7748B3A2-4926-4672-A742-F4FC85EEB4F7}", "{B09FE32E-5A90-4F04-8D41-B4E876D35A92}",
        "{46AAABDF-F710-47A9-8648-E44BB2DB59B6}", "{BAD59966-D44C-4B4C-9179-073330BDADFE}"};
    for (const bool useEncoding : {true, false})
        if (FileUtils::WriteFileContent(path, many, useEncoding) ||
            FileUtils::WriteFileContent(path, buffered, useEncoding))
            return 1;
    for (const std::string& marker : markers)
        if (!marker.ends_with("}There is not enough space on the disk."))
            return 2;
    return Tags() == expected && fs::file_size(path.GetString()) <= limit ? 0 : 3;
}

TEST_F(TextFileOperations, AWriteThatFailsHalfWayIsFalseAndEndsNoProcess)
{
    constexpr rlim_t limit = 50'000;
    EXPECT_EQ(InChild([&] {
                  const rlimit most = {limit, limit};
                  setrlimit(RLIMIT_FSIZE, &most); // with SIGXFSZ as it is: deadly
                  return WriteTooMuch(Path(), limit);
              }),
              0);
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

TEST_F(TextFileOperations, WritersAnswerErrorsToTheEnd)
{
    const FileHandle full(CreateFileA("/dev/full", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ANSI_TextFileWriter ansi(full.Get());
    EXPECT_EQ(ansi.WriteText(nullptr, 5, CP_ACP), TextFileWriter::Written);
    EXPECT_EQ(ansi.WriteText("x", -1, CP_ACP), TextFileWriter::Written);
    EXPECT_EQ(ansi.Flush(), TextFileWriter::Written); // of nothing
    EXPECT_EQ(ansi.EndLine(), TextFileWriter::Written);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(ansi.Flush(), TextFileWriter::WriteError);
        EXPECT_EQ(ansi.WriteText("x", 1, CP_ACP), TextFileWriter::WriteError);
        EXPECT_EQ(ansi.EndLine(), TextFileWriter::WriteError);
    }
    EXPECT_EQ(UTF16LE_TextFileWriter(full.Get()).WriteText("x", 1, 4711), TextFileWriter::WriteError);
    EXPECT_EQ(InChild([] {
                  int ends[2]; // of a pipe that nobody reads any more
                  if (pipe(ends) != 0 || close(ends[0]) != 0)
                      return 1;
                  ANSI_TextFileWriter writer(OpenFiles::Add(ends[1], OpenFiles::Write));
                  writer.EndLine();
                  return writer.Flush() == TextFileWriter::WriteError ? 0 : 2;
              }),
              0);
}

TEST_F(TextFileOperations, TheThirdModeWritesOverWhatIsThere)
{
    folder.Write("file", "0123456789");
    TextFile file;
    ASSERT_EQ(file.Open(Path(), 3, 4), TextFile::Done);
    EXPECT_EQ(file.WriteLine("a"), TextFile::Done);
    EXPECT_EQ(file.Close(), TextFile::Done);
    EXPECT_EQ(file.WriteLine("a"), TextFile::SystemError);
    EXPECT_EQ(folder.Read("file"), "\xEF\xBB\xBF\x61\r\n6789");
}

// ---- folders --------------------------------------------------------------------------------------------

TEST_F(TextFileOperations, FoldersAreMadeWithTheirParents)
{
    folder.Write("file", "");
    for (const char* name : {"a", "a", "b/c/d", "e\\f//g\\", "h/", "h/../i/./j", ""})
        EXPECT_TRUE(DirUtils::CreateDirectory(Path(name))) << name;
    for (const char* made : {"a", "b/c/d", "e/f/g", "h", "i/j"})
        EXPECT_TRUE(fs::is_directory(folder.Path(made))) << made;
    for (const CString& bad : {CString(), Path("file"), Path("file/x"), Path() + CString("k\0/l", 4)})
        EXPECT_FALSE(DirUtils::CreateDirectory(bad)) << bad;
    EXPECT_TRUE(FileUtils::WriteFileContent(Path("m\\n\\file"), ArrayOf({"x"}), true, 1));
    EXPECT_EQ(folder.Read("m/n/file"), "x\r\n");
}

TEST_F(TextFileOperations, FoldersAreMadeWritableOrSaidNotToBe)
{
    const CString locked(folder.MakeFolder("locked"));
    fs::permissions(locked.GetString(), fs::perms{0555});
    EXPECT_TRUE(FileUtils::WriteFileContent(locked + "/file", ArrayOf({"x"}), true, 1));
    EXPECT_EQ(fs::status(locked.GetString()).permissions(), fs::perms{0755});
    for (const CString& bad : {CString(), Path("none"), locked + "/file", locked + CString('\0')})
        EXPECT_FALSE(DirUtils::EnsureDirIsWritable(bad)) << bad;

    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to become another user";
    fs::permissions(folder.Path(), fs::perms{0755});
    EXPECT_EQ(InChild([&] {
                  constexpr uid_t nobody = 65534;
                  if (setgid(nobody) != 0 || setuid(nobody) != 0)
                      return 1;
                  const bool isWritten = FileUtils::WriteFileContent(Path("new"), ArrayOf({"x"}), true, 1);
                  return !isWritten && Tags() == Lines{"{91E67FDF-97D6-482E-92A6-1F13F717E627}"} ? 0 : 2;
              }),
              0);
}

// ---- memory ---------------------------------------------------------------------------------------------

long PeakMegabytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

TEST_F(TextFileOperations, ReadingTakesTheMemoryOfTheLines)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer keeps memory";
#endif
    constexpr int megabytes = 32;
    const CString line('x', (1 << 20) - 2);
    ASSERT_TRUE(FileUtils::WriteFileContent(Path(), ArrayOf(Lines(megabytes, std::string(line))), true, 4));
    EXPECT_EQ(
        InChild([&] {
            const long before = PeakMegabytes();
            TextArray lines;
            FileUtils::ReadFileContent(Path(), lines, true);
            return lines.GetCount() != megabytes ? 1 : PeakMegabytes() - before > megabytes + 12 ? 2 : 0;
        }),
        0);
}

} // namespace
