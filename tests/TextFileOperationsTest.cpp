#include <gtest/gtest.h>

#include <csignal>
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
#include "files/TextEncoding.h"
#include "files/TextFile.h"
#include "framework/FailureMarkers.h"
#include "platform/posix/OpenFiles.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

std::vector<std::string> markers;

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
    // The markers since the last call, without the system's text behind a tag.
    static Lines Tags()
    {
        Lines tags;
        for (const std::string& marker : markers)
            tags.push_back(marker.substr(0, marker.find('}') + 1));
        markers.clear();
        return tags;
    }

    TemporaryFolder folder;

private:
    FailureMarkers::Sink m_before;
};

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
    const struct {
        std::string bytes;
        int encoding;
    } cases[] = {
        {"", 1},
        {"+/v8", 5},
        {"+/v", 5},
        {"+/", 1},
        {"+/w8", 1},
        {"\xEF\xBB\xBF", 4},
        {"\xEF\xBB", 1},
        {"\xEF\xBB\xBEx", 1},
        {"\xFF\xFE", 2},
        {std::string("\xFF\xFE\0\0", 4), 2}, // UTF-32 little-endian
        {"\xFF", 1},
        {"\xFF\xFF", 1},
        {"\xFE\xFF", 3},
        {"\xFE", 1},
        {"\xFE\xFEzz", 1},
        {std::string("\0\0\xFE\xFF", 4), 6},
        {std::string("\0\0\xFE", 3), 1},
        {std::string("\0\0\xFF\xFE", 4), 1},
        {"text", 1},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        folder.Write("file", row.bytes);
        int encoding = 77;
        EXPECT_EQ(FileUtils::IsFileUnicode(Path(), encoding), row.encoding != 1);
        EXPECT_EQ(encoding, row.encoding);
    }
    EXPECT_EQ(Tags(), Lines());
}

std::string Encoded(char c, int encoding)
{
    const auto byte = static_cast<unsigned char>(c);
    // What the page has at 80, and what is Latin-1 for all that the tests use besides.
    const unsigned int unit = byte == 0x80 ? 0x20AC : byte;
    const char low = static_cast<char>(unit % 256);
    const char high = static_cast<char>(unit / 256);
    if (encoding == 2)
        return {low, high};
    if (encoding == 3)
        return {high, low};
    if (encoding == 4 && byte >= 128)
        return {static_cast<char>(192 + byte / 64), static_cast<char>(128 + byte % 64)};
    return {c};
}

// One character after the other.
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
            line.assign(random() % 30 == 0 ? random() % 140'000 : random() % 60,
                        letters[random() % letters.size()]);
        for (const int encoding : {0, 1, 2, 3, 4, 0x104, 0x7FFFFF02}) {
            SCOPED_TRACE(encoding);
            const int used = encoding % 256 == 0 ? 1 : encoding % 256;
            ASSERT_TRUE(FileUtils::WriteFileContent(Path(), ArrayOf(lines), true, encoding));
            ASSERT_TRUE(folder.Read("file") == FileOf(lines, used));
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
    EXPECT_EQ(Tags(), Lines());
}

TEST_F(TextFileOperations, LineFeedsInsideLinesAreWrittenAsEachWayDoes)
{
    const TextArray lines = ArrayOf({"a\nb", ""});
    EXPECT_TRUE(FileUtils::WriteFileContent(Path(), lines, true, 1));
    EXPECT_EQ(folder.Read("file"), "a\nb\r\n\r\n");
    EXPECT_TRUE(FileUtils::WriteFileContent(Path(), lines, false));
    EXPECT_EQ(folder.Read("file"), "a\r\nb\r\n\r\n");
    EXPECT_FALSE(FileUtils::IsFileContentIdentical(Path(), lines, true));
    EXPECT_TRUE(FileUtils::IsFileContentIdentical(Path(), ArrayOf({"a", "b", ""}), true));
    EXPECT_FALSE(FileUtils::IsFileContentIdentical(Path(), ArrayOf({"a", "b"}), true));
    EXPECT_FALSE(FileUtils::IsFileContentIdentical(Path(), ArrayOf({"a", "B", ""}), false));
    EXPECT_EQ(Tags(), Lines());
    EXPECT_TRUE(FileUtils::IsFileContentIdentical(Path("none"), TextArray(), true)); // which has no lines
}

TEST_F(TextFileOperations, WhatIsNoFileIsRefusedAtOnceAndSaid)
{
    fs::create_directory(folder.Path("folder"));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0666), 0);
    folder.Write("text", "a");
    const std::string notAFile = "{86CDA486-681F-43D5-9211-EFACE318A623}";
    const std::string notThere = "{AB91D2F6-45CF-4D68-BFFF-829E56F7D3AD}";
    const std::string notUnicode = "{30AF5017-BA9E-4562-B859-800D0E8B175C}";
    const std::string notCreated = "{04921E65-2BB5-411D-8C8D-7EBA96A840DB}";
    const std::string notStreamed = "{0D586CC9-9036-401E-B183-3BE38B106F76}";
    const std::string noFolder = "{0584D9B2-55D5-458D-A837-D590C7F5F932}";
    const std::string noName = "{38BD4A9D-A6F9-4AF4-9EEB-58A8CD9F69CC}";
    const struct {
        CString path;
        std::string read;
        std::string encoded;
        std::string streamed;
    } cases[] = {
        {Path("folder"), notAFile, notCreated, notStreamed},
        {Path("pipe"), notAFile, notCreated, notStreamed},
        {"/dev/full", notAFile, notCreated, notStreamed},
        {Path("none/"), notAFile, "", ""}, // whose folder is made on the way
        {CString(), notAFile, noName, noName},
        {" \t", notThere, noName, noName},
        {Path("text\0x"), "", "", ""},
        {Path() + CString("\0x", 2), notThere, notCreated, notStreamed},
        {Path("text/x"), notThere, noFolder, noFolder},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path);
        for (const bool detects : {true, false}) {
            TextArray lines = ArrayOf({"left over"});
            int encoding = 77;
            FileUtils::ReadFileContent(row.path, lines, detects, &encoding);
            EXPECT_EQ(encoding, 1);
            EXPECT_EQ(lines.IsEmpty(), !row.read.empty());
            EXPECT_EQ(Tags(), row.read.empty() ? Lines() : Lines{row.read});
        }
        int encoding = 77;
        EXPECT_FALSE(FileUtils::IsFileUnicode(row.path, encoding));
        EXPECT_EQ(encoding, row.read.empty() ? 1 : 0);
        if (!row.read.empty()) {
            EXPECT_GT(markers.back().size(), notUnicode.size()); // with the system's text
            EXPECT_EQ(Tags(), Lines{notUnicode});
        }
        for (const auto& [useEncoding, tag] : {std::pair(true, row.encoded), std::pair(false, row.streamed)})
            if (!tag.empty()) {
                EXPECT_FALSE(FileUtils::WriteFileContent(row.path, ArrayOf({"x"}), useEncoding, 4));
                EXPECT_EQ(Tags(), Lines{tag});
            }
    }
}

TEST_F(TextFileOperations, AFailureLeavesItsOwnMarker)
{
    folder.Write("file", "kept");
    EXPECT_FALSE(FileUtils::WriteFileContent(Path(), ArrayOf({"x"}), true, 5));
    EXPECT_EQ(Tags(), Lines{"{423AE097-D2E5-42C9-916D-51FFA18FA989}"});
    EXPECT_EQ(folder.Read("file"), "kept");

    fs::permissions(folder.Path("file"), fs::perms::owner_read);
    EXPECT_FALSE(FileUtils::WriteFileContent(Path(), ArrayOf({"x"}), true, 1));
    EXPECT_EQ(markers, Lines{"{04921E65-2BB5-411D-8C8D-7EBA96A840DB}"});
    EXPECT_FALSE(FileUtils::WriteFileContent(Path(), ArrayOf({"x"}), false));
    EXPECT_EQ(markers.back(), "{307CBD36-BF88-41F0-B437-FAF347B996EF}Access is denied.");
    EXPECT_EQ(folder.Read("file"), "kept");
    fs::permissions(folder.Path("file"), fs::perms::owner_all);
    markers.clear();

    const FileHandle guard(
        CreateFileA(Path(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    TextArray lines;
    int encoding = 77;
    FileUtils::ReadFileContent(Path(), lines, true, &encoding);
    EXPECT_EQ(markers, Lines{"{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}"});
    FileUtils::ReadFileContent(Path(), lines, false);
    EXPECT_EQ(markers.back(), "{8B7D1613-6441-4ff8-AD38-F0930DC9DA19} - " + folder.Path("file") +
                                  "The process cannot access the file because it is being used by another "
                                  "process.");
    EXPECT_FALSE(FileUtils::IsFileUnicode(Path(), encoding));
    EXPECT_EQ(markers.back(), "{30AF5017-BA9E-4562-B859-800D0E8B175C}The process cannot access the file "
                              "because it is being used by another process.");
}

// /proc/self/mem is a file whose beginning nobody can read.
TEST_F(TextFileOperations, WhatCannotBeReadIsSaid)
{
    if (!fs::is_regular_file("/proc/self/mem"))
        GTEST_SKIP() << "no file here whose reading fails";
    int encoding = 77;
    EXPECT_FALSE(FileUtils::IsFileUnicode("/proc/self/mem", encoding));
    EXPECT_EQ(encoding, 0);
    TextArray lines;
    FileUtils::ReadFileContent("/proc/self/mem", lines, true, &encoding);
    FileUtils::ReadFileContent("/proc/self/mem", lines, false, &encoding);
    EXPECT_TRUE(lines.IsEmpty());
    EXPECT_EQ(Tags(),
              (Lines{"{5A161316-5A02-4BFD-B2DC-9E21E40392D9}", "{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}"}));
}

// ---- writing that fails half-way ------------------------------------------------------------------------

// 0 when a write of 10 MB fails under its tag and leaves no more than `limit` bytes.
int WriteTooMuch(const CString& path, std::uintmax_t limit)
{
    const TextArray lines = ArrayOf(Lines(100'000, std::string(100, 'x')));
    int result = 0;
    for (const bool useEncoding : {true, false}) {
        markers.clear();
        if (FileUtils::WriteFileContent(path, lines, useEncoding, 1) || markers.size() != 1)
            result |= 1;
        else if (!markers[0].ends_with("}There is not enough space on the disk."))
            result |= 2;
        if (fs::file_size(path.GetString()) > limit)
            result |= 4;
    }
    // What fits the buffer fails on closing.
    if (FileUtils::WriteFileContent(path, ArrayOf({std::string(limit + 1, 'x')}), true, 1))
        result |= 8;
    return result;
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

    const int onFullDisk = InChild([&] {
        constexpr int notPermitted = 100;
        const CString disk = Path("disk");
        fs::create_directory(disk.GetString());
        if (mount("none", disk, "tmpfs", 0, "size=64k") != 0)
            return notPermitted;
        const int result = WriteTooMuch(disk + "/file", 65536);
        mount("none", disk, "tmpfs", MS_REMOUNT | MS_RDONLY, "size=64k");
        const bool isSaid = !DirUtils::EnsureDirIsWritable(disk) && DirUtils::CreateDirectory(disk) &&
                            !DirUtils::CreateDirectory(disk + "/new");
        umount(disk);
        return result | (isSaid ? 0 : 16);
    });
    if (onFullDisk == 100)
        GTEST_SKIP() << "mounting a small file system is not permitted here";
    EXPECT_EQ(onFullDisk, 0);
}

TEST_F(TextFileOperations, WritersAnswerErrorsToTheEnd)
{
    const FileHandle full(CreateFileA("/dev/full", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ANSI_TextFileWriter ansi(full.Get());
    EXPECT_EQ(ansi.WriteText("x", 1, CP_ACP), TextFileWriter::Written);
    EXPECT_EQ(ansi.WriteText(nullptr, 5, CP_ACP), TextFileWriter::Written);
    EXPECT_EQ(ansi.WriteText("x", -1, CP_ACP), TextFileWriter::Written);
    EXPECT_EQ(ansi.Flush(), TextFileWriter::WriteError);
    EXPECT_EQ(ansi.WriteText("x", 1, CP_ACP), TextFileWriter::WriteError);
    EXPECT_EQ(ansi.EndLine(), TextFileWriter::WriteError);
    EXPECT_EQ(ansi.Flush(), TextFileWriter::WriteError);
    UTF16LE_TextFileWriter wide(full.Get());
    EXPECT_EQ(wide.WriteText("x", 1, 4711), TextFileWriter::WriteError); // no such page

    // A pipe that nobody reads any more.
    EXPECT_EQ(InChild([] {
                  int ends[2];
                  if (pipe(ends) != 0)
                      return 1;
                  close(ends[0]);
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
    ASSERT_EQ(file.Open(Path(), 3, TextEncoding::Utf8), TextFile::Done);
    EXPECT_EQ(file.WriteLine("a"), TextFile::Done);
    CString line;
    EXPECT_EQ(file.ReadLine(line), TextFile::SystemError);
    EXPECT_EQ(file.Close(), TextFile::Done);
    EXPECT_EQ(folder.Read("file"), "\xEF\xBB\xBF"
                                   "a\r\n6789");
    EXPECT_EQ(file.WriteLine("a"), TextFile::SystemError);
    ASSERT_EQ(file.Open(Path("new"), 0, TextEncoding::Ansi), TextFile::Done);
    EXPECT_EQ(file.Close(), TextFile::Done);
    EXPECT_TRUE(folder.Has("new"));
}

// ---- folders --------------------------------------------------------------------------------------------

TEST_F(TextFileOperations, FoldersAreMadeWithTheirParents)
{
    folder.Write("file", "");
    const CString base(folder.Path());
    for (const char* name : {"a", "b/c/d", "e\\f//g\\", "h/", "h/../i/./j"}) {
        EXPECT_TRUE(DirUtils::CreateDirectory(base + name)) << name;
        EXPECT_TRUE(DirUtils::CreateDirectory(base + name)) << name;
    }
    for (const char* made : {"a", "b/c/d", "e/f/g", "h", "i/j"})
        EXPECT_TRUE(fs::is_directory(folder.Path(made))) << made;
    EXPECT_TRUE(DirUtils::CreateDirectory("/"));
    for (const CString& bad : {CString(), base + "file", base + "file/x", base + CString("k\0/l", 4)})
        EXPECT_FALSE(DirUtils::CreateDirectory(bad)) << bad;
    EXPECT_FALSE(folder.Has("k"));
    EXPECT_TRUE(FileUtils::WriteFileContent(base + "m\\n\\file", ArrayOf({"x"}), true, 1));
    EXPECT_EQ(folder.Read("m/n/file"), "x\r\n");
}

TEST_F(TextFileOperations, FoldersAreMadeWritableOrSaidNotToBe)
{
    const CString locked(folder.MakeFolder("locked"));
    fs::permissions(folder.Path("locked"), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_TRUE(FileUtils::WriteFileContent(locked + "/file", ArrayOf({"x"}), true, 1));
    EXPECT_NE(fs::status(folder.Path("locked")).permissions() & fs::perms::owner_write, fs::perms::none);
    folder.Write("file", "");
    for (const CString& bad : {CString(), Path("file"), Path("none"), locked + CString("\0", 1)})
        EXPECT_FALSE(DirUtils::EnsureDirIsWritable(bad)) << bad;

    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to become another user";
    EXPECT_EQ(InChild([&] {
                  constexpr uid_t nobody = 65534;
                  fs::permissions(folder.Path(), fs::perms{0755});
                  fs::permissions(folder.Path("locked"), fs::perms::owner_read | fs::perms::others_exec);
                  if (setgid(nobody) != 0 || setuid(nobody) != 0)
                      return 1;
                  const bool isSaid = !DirUtils::EnsureDirIsWritable(locked) &&
                                      !DirUtils::EnsureDirIsWritable(CString(folder.Path())) &&
                                      !FileUtils::WriteFileContent(Path("new"), ArrayOf({"x"}), true, 1);
                  return isSaid && Tags() == Lines{"{91E67FDF-97D6-482E-92A6-1F13F717E627}"} ? 0 : 2;
              }),
              0);
}

// ---- memory ---------------------------------------------------------------------------------------------

long PeakKilobytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(TextFileOperations, ReadingTakesTheMemoryOfTheLines)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "memory is kept for the sanitizer";
#endif
    constexpr long megabytes = 32;
    for (const int encoding : {1, 2, 4}) {
        std::string bytes;
        for (const char c : std::string(1 << 20, 'x'))
            bytes += Encoded(c, encoding);
        bytes += FileOf({""}, encoding).substr(TextEncoding::MarkOf(encoding).size());
        {
            std::string all(TextEncoding::MarkOf(encoding));
            for (long i = 0; i < megabytes; ++i)
                all += bytes;
            folder.Write("file", all);
        }
        EXPECT_EQ(InChild([&] {
                      const long before = PeakKilobytes();
                      TextArray lines;
                      FileUtils::ReadFileContent(Path(), lines, true);
                      const long grown = (PeakKilobytes() - before) / 1024;
                      return lines.GetCount() != megabytes ? 1 : grown > megabytes + 12 ? 2 : 0;
                  }),
                  0)
            << encoding;
    }
}

} // namespace
