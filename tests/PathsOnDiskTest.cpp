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

    // The path with the folder of the test for an @; its first character stays as it is.
    CString InFolder(const CString& path, char separator) const
    {
        CString folder = Path().Left(Path().GetLength() - 1);
        const char first = folder[0];
        folder.Replace('/', separator);
        folder.Replace('\\', separator);
        folder.SetAt(0, first);
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
    CString expected;
    expected.Format("abc%X.tmp", unique);
    EXPECT_EQ(FileUtils::ParseFileNameFromPath(path).CompareNoCase(expected), 0) << path;
    const CString deep(m_folder.MakeFolder(std::string(245 - m_folder.Path().size(), 'd') + "/"));
    for (const CString& good : {Path() + " \t", deep}) // the longest whose names all fit the system's answer
        EXPECT_NE(FileUtils::GetTempFile(good, "abc", unique), "") << good;
    EXPECT_TRUE(markers.IsEmpty());
    for (const CString& bad :
         {CString(), Path().Left(Path().GetLength() - 1), Path("missing/"), CString("   ")}) {
        unique = 77;
        EXPECT_EQ(FileUtils::GetTempFile(bad, "abc", unique), "");
        EXPECT_EQ(unique, 0u);
    }
    EXPECT_EQ(markers, ArrayOf(Texts(4, "{F1A8BB00-471B-4D7C-9766-55857561C699}")));
}

TEST_F(PathsOnDisk, PathsComeBackInTheCaseThatIsStored)
{
    for (const char* name : {"Docs/Sub Folder", "docs2", "ab", "AB", "cd", "EF", "notes"})
        m_folder.MakeFolder(name);
    for (const char* name : {"Docs/Sub Folder/ReadMe.TXT", "Docs/same", "Docs/SAME", "NOTES"})
        m_folder.Write(name, "");
    fs::current_path(m_folder.Path());
    const auto check = [&](const std::string& section, CString (*ask)(const CString& path)) {
        for (const auto& [path, stored] : Cases<2>(section))
            EXPECT_EQ(ask(InFolder(path, '/')), InFolder(stored, stored.starts_with("@/") ? '/' : '\\'))
                << path;
    };
    for (const char* names : {"", " that differ in case alone " KVT01_PLATFORM}) {
        check(std::string("stored folders") + names, DirUtils::GetCaseSensitiveDirPath);
        check(std::string("stored files") + names, FileUtils::GetCaseSensitiveFilePath);
    }
    fs::current_path("/");
}

TEST_F(PathsOnDisk, ShortNamesLeadBackToTheLongOnes)
{
    for (const char* name : {"long~1.txt", "a long name.text"}) {
        CString path(m_folder.Write(name, ""));
        FileUtils::ConvertToShortFileName(path);
        EXPECT_TRUE(fs::exists(path.GetString())) << path;
        DirUtils::ConvertToLongPathName(path);
        EXPECT_EQ(FileUtils::ParseFileNameFromPath(path), name);
    }
    for (const CString& other : {Path("missing~1"), CString(), CString("C:\\none~1"), CString("\xFF")}) {
        CString path = other;
        FileUtils::ConvertToLongFileName(path);
        FileUtils::ConvertToShortFileName(path);
        EXPECT_EQ(path, other);
    }
}

} // namespace
