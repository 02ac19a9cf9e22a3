#include <gtest/gtest.h>

#include <filesystem>

#include "DirUtils.h"
#include "FileUtils.h"
#include "framework/FailureMarkers.h"
#include "support/Cases.h"
#include "support/TemporaryFolder.h"
#include "support/TextModels.h"

namespace {

namespace fs = std::filesystem;

TextArray markers;

// Collects the marker lines of one test.
class PathsOnDisk : public testing::Test {
protected:
    PathsOnDisk()
    {
        markers.RemoveAll();
        m_before = FailureMarkers::SetSink([](const CString& line) { markers.Add(line); });
    }
    ~PathsOnDisk() override { FailureMarkers::SetSink(m_before); }

    CString Path(const CString& name = "") const { return CString(m_folder.Path()) + name; }

    // The path with the folder of the test for an @; the separator in front of it stays a slash.
    CString InFolder(const CString& path, char separator) const
    {
        CString folder = Path().Left(Path().GetLength() - 1);
        folder.Replace('/', separator);
        folder.SetAt(0, '/');
        CString whole = path;
        whole.Replace("@", folder.GetString());
        return whole;
    }

    TemporaryFolder m_folder;

private:
    FailureMarkers::Sink m_before;
};

TEST_F(PathsOnDisk, UniqueFileNamesCountUpUntilOneIsFree)
{
    for (const auto& names : Cases<4>("unique names"))
        for (const std::string& expected : names) {
            EXPECT_EQ(FileUtils::GetUniqueFileName(Path(), names[0]), Path(expected));
            m_folder.Write(expected, "");
        }
    for (const CString& free : {CString("missing/x"), CString("readme\0", 7)})
        EXPECT_EQ(FileUtils::GetUniqueFileName(Path(), free), Path(free));
}

TEST_F(PathsOnDisk, UniqueSubDirsNeedAParentThatEndsInABackslash)
{
    for (const char* name : {"new", "two", "two1"})
        m_folder.MakeFolder(name);
    for (const auto& [folder, name, expected] : Cases<3>("unique folders"))
        EXPECT_EQ(DirUtils::GetUniqueSubDir(InFolder(folder, '/'), name), expected)
            << folder << " and " << name;
}

TEST_F(PathsOnDisk, TemporaryFilesAreMadeAndFailuresLeaveAMarker)
{
    unsigned int unique = 0;
    const CString path = FileUtils::GetTempFile(Path(), "abcdef", unique);
    EXPECT_NE(unique, 0u);
    EXPECT_TRUE(fs::is_empty(path.GetString()));
    EXPECT_EQ(FileUtils::ParseFileNameFromPath(path).Left(3), "abc");
    EXPECT_NE(FileUtils::GetTempFile(Path() + " \t", "abc", unique), "");
    EXPECT_TRUE(markers.IsEmpty());
    for (const CString& bad :
         {CString(), Path().Left(Path().GetLength() - 1), Path("missing/"), CString("   ")}) {
        unique = 77;
        EXPECT_EQ(FileUtils::GetTempFile(bad, "abc", unique), "");
        EXPECT_EQ(unique, 0u);
    }
    EXPECT_EQ(markers, ArrayOf(Texts(4, "{F1A8BB00-471B-4D7C-9766-55857561C699}")));
    const CString longer = m_folder.MakeFolder(std::string(240, 'd') + "/"); // than the system's answer
    EXPECT_EQ(FileUtils::GetTempFile(longer, "abc", unique), "");
    EXPECT_EQ(markers.GetLast().Left(38), "{E4949422-0B7B-4D2B-AE39-0E30647219F3}");
    EXPECT_GT(markers.GetLast().GetLength(), 40);
}

TEST_F(PathsOnDisk, PathsComeBackInTheCaseThatIsStored)
{
    for (const char* name : {"Docs/Sub Folder", "docs2", "ab", "AB", "cd", "EF", "notes"})
        m_folder.MakeFolder(name);
    for (const char* name : {"Docs/Sub Folder/ReadMe.TXT", "Docs/same", "Docs/SAME", "NOTES"})
        m_folder.Write(name, "");
    fs::current_path(m_folder.Path());
    for (const auto& [path, stored] : Cases<2>("stored folders")) {
        const char separator = stored.starts_with("@/") ? '/' : '\\';
        EXPECT_EQ(DirUtils::GetCaseSensitiveDirPath(InFolder(path, '/')), InFolder(stored, separator))
            << path;
    }
    for (const auto& [path, stored] : Cases<2>("stored files")) {
        const char separator = stored.starts_with("@/") ? '/' : '\\';
        EXPECT_EQ(FileUtils::GetCaseSensitiveFilePath(InFolder(path, '/')), InFolder(stored, separator))
            << path;
    }
    fs::current_path("/");
}

TEST_F(PathsOnDisk, LongAndShortNamesLeaveOtherPathsAlone)
{
    m_folder.Write("long~1.txt", "");
    for (const CString& path :
         {Path("long~1.txt"), Path("missing"), CString(), CString("C:\\none~1"), CString('x', 300)}) {
        CString converted(path);
        FileUtils::ConvertToLongFileName(converted);
        FileUtils::ConvertToShortFileName(converted);
        EXPECT_EQ(converted, path);
    }
}

} // namespace
