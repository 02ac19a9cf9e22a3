#include <gtest/gtest.h>

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
    FileHandle guard(CreateFileA(Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_FALSE(Write(Path(), {"x"}) || Write(Path(), {"x"}, false));
    int encoding = 77;
    TextArray lines;
    FileUtils::ReadFileContent(Path(), lines, true);
    FileUtils::ReadFileContent(Path(), lines, false);
    EXPECT_FALSE(FileUtils::IsFileUnicode(Path(), encoding));
    EXPECT_TRUE(encoding == 0 && lines.IsEmpty());
    const Texts said = markers.Take();
    ASSERT_EQ(said.size(), 6U);
    const CString used = said[2].Mid(said[2].Find('}') + 1); // as the system says it
    EXPECT_TRUE(used.GetLength() > 10 && used.View().back() == '.') << used;
    EXPECT_EQ(said, (Texts{"{423AE097-D2E5-42C9-916D-51FFA18FA989}", "{04921E65-2BB5-411D-8C8D-7EBA96A840DB}",
                           "{307CBD36-BF88-41F0-B437-FAF347B996EF}" + used,
                           "{2338D1D7-19AA-4A3A-A146-A1C9BC7162F3}",
                           "{8B7D1613-6441-4ff8-AD38-F0930DC9DA19} - " + Path() + used,
                           "{30AF5017-BA9E-4562-B859-800D0E8B175C}" + used}));
    guard.Close();
    EXPECT_EQ(folder.Read("file"), "kept");
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
    SetFileAttributesA(locked, FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(Write(locked + "/file", {"x"}));
    EXPECT_EQ(GetFileAttributesA(locked), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    for (const CString& bad : {CString(), Path("none"), locked + "/file", locked + CString('\0')})
        EXPECT_FALSE(DirUtils::EnsureDirIsWritable(bad)) << bad;
}

} // namespace
