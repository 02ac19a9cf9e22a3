#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "DirUtils.h"
#include "FileUtils.h"
#include "framework/FailureMarkers.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> markers;

// Collects the marker lines of one test.
class PathsOnDisk : public testing::Test {
protected:
    PathsOnDisk()
    {
        markers.clear();
        m_before = FailureMarkers::SetSink([](const CString& line) { markers.emplace_back(line); });
    }
    ~PathsOnDisk() override { FailureMarkers::SetSink(m_before); }

    CString Path(const char* name = "") const { return CString(m_folder.Path()) + name; }
    void MakeFolder(const char* name) const { fs::create_directories(Path(name).GetString()); }

    TemporaryFolder m_folder;

private:
    FailureMarkers::Sink m_before;
};

TEST_F(PathsOnDisk, UniqueFileNamesCountUpUntilOneIsFree)
{
    const struct {
        const char *name, *first, *second, *third;
    } rows[] = {
        {"report.txt", "report.txt", "report copy.txt", "report copy1.txt"},
        {"a.tar.gz", "a.tar.gz", "a.tar copy.gz", "a.tar copy1.gz"},
        {"readme", "readme", "readme copy.", "readme copy1."}, // the dot stays
        {".profile", ".profile", " copy.profile", " copy1.profile"},
    };
    for (const auto& row : rows)
        for (const char* expected : {row.first, row.second, row.third}) {
            EXPECT_EQ(FileUtils::GetUniqueFileName(Path(), row.name), Path(expected));
            m_folder.Write(expected, "");
        }
    EXPECT_EQ(FileUtils::GetUniqueFileName(Path(), "readme"), Path("readme copy2."));
    EXPECT_EQ(FileUtils::GetUniqueFileName(Path("missing/"), "x"), Path("missing/x"));
    EXPECT_EQ(FileUtils::GetUniqueFileName(Path(), CString("readme\0", 7)), Path() + CString("readme\0", 7));
}

TEST_F(PathsOnDisk, UniqueSubDirsNeedAParentThatEndsInABackslash)
{
    const CString parent = CString(m_folder.Path()).Left(Path().GetLength() - 1) + "\\";
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent, "new"), "new");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent, "new\\"), "new\\");
    MakeFolder("new");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent, "new"), "new1\\");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent, "new/"), "new1\\");
    MakeFolder("new1");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent, "new\\"), "new2\\");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(Path(), "new"), "");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent.Left(parent.GetLength() - 1), "new"), "");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent + "missing\\", "new"), "");
    EXPECT_EQ(DirUtils::GetUniqueSubDir(parent, " \t"), "");
    EXPECT_EQ(DirUtils::GetUniqueSubDir("", "new"), "");
}

TEST_F(PathsOnDisk, TemporaryFilesAreMadeAndFailuresLeaveAMarker)
{
    unsigned int unique = 77;
    const CString path = FileUtils::GetTempFile(Path(), "abcdef", unique);
    EXPECT_NE(unique, 0u);
    EXPECT_TRUE(fs::is_empty(path.GetString()));
    EXPECT_EQ(FileUtils::ParseFileNameFromPath(path).Left(3), "abc");
    EXPECT_NE(FileUtils::GetTempFile(Path() + " \t", "abc", unique), "");
    EXPECT_TRUE(markers.empty());

    for (const CString& bad :
         {CString(), Path().Left(Path().GetLength() - 1), Path("missing/"), CString("   ")}) {
        unique = 77;
        EXPECT_EQ(FileUtils::GetTempFile(bad, "abc", unique), "");
        EXPECT_EQ(unique, 0u);
    }
    EXPECT_EQ(markers, std::vector<std::string>(4, "{F1A8BB00-471B-4D7C-9766-55857561C699}"));

    const CString longFolder = Path() + CString('d', 240) + "/";
    fs::create_directories(longFolder.GetString());
    EXPECT_EQ(FileUtils::GetTempFile(longFolder, "abc", unique),
              ""); // more than the system's call can answer
    EXPECT_EQ(markers.back().substr(0, 38), "{E4949422-0B7B-4D2B-AE39-0E30647219F3}");
    EXPECT_GT(markers.back().size(), 40u);
}

TEST_F(PathsOnDisk, PathsComeBackInTheCaseThatIsStored)
{
    MakeFolder("Docs/Sub Folder");
    MakeFolder("docs2");
    m_folder.Write("Docs/Sub Folder/ReadMe.TXT", "");
    m_folder.Write("Docs/same", "");
    m_folder.Write("Docs/SAME", "");
    CString root = Path(); // the separator in front stays as it is, the others become backslashes
    root.Replace('/', '\\');
    root.SetAt(0, '/');
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(Path()), root);

    CString upper(Path("docs/SUB FOLDER/"));
    upper.MakeUpper();
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(upper), root + "Docs\\Sub Folder\\");
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(Path("DOCS")), root + "Docs\\");
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(Path("docs/missing")), Path("docs/missing"));
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(Path("docs/same")),
              root + "Docs\\same\\"); // exists, not listed
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(""), "");
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath("/"), "/");
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath("  "), "  ");

    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(Path("docs/sub folder/README.txt")),
              root + "Docs\\Sub Folder\\ReadMe.TXT");
    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(Path("docs/same")), root + "Docs\\same");
    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(Path("docs/SaMe")), root + "Docs\\SAME");
    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(Path("docs/none")), Path("docs/none"));
    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(Path("none/same")), Path("none/same"));
    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(""), "");
}

TEST_F(PathsOnDisk, ShortFirstPartsAreDrivesOnlyWhereThatIsTheSamePlace)
{
    m_folder.Write("NOTES", "");
    for (const char* name : {"ab", "AB", "cd", "EF", "notes"})
        MakeFolder(name);
    fs::current_path(m_folder.Path());
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath("ab/"), "ab\\"); // both are there
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath("cd"), "cd\\");
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath("ef"), "EF\\");
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath("Notes"), "notes\\"); // the file is no folder
    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath("ab/"), "ab/");
    const CString withNul("NOTES\0x", 7);
    EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(withNul), withNul);
    EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(withNul), withNul);
    fs::current_path("/");
}

TEST_F(PathsOnDisk, LongAndShortNamesLeaveOtherPathsAlone)
{
    m_folder.Write("long~1.txt", "");
    for (const CString& path :
         {Path("long~1.txt"), Path("missing"), CString(), CString("C:\\none~1"), CString('x', 300)}) {
        CString converted(path);
        FileUtils::ConvertToLongFileName(converted);
        EXPECT_EQ(converted, path);
        FileUtils::ConvertToShortFileName(converted);
        EXPECT_EQ(converted, path);
    }
}

} // namespace
