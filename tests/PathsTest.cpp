#include <gtest/gtest.h>

#include <filesystem>

#include "DirUtils.h"
#include "FileUtils.h"
#include "StringUtils.h"
#include "support/Cases.h"
#include "support/MarkerLines.h"
#include "support/RandomTexts.h"
#include "support/TemporaryFolder.h"
#include "support/TextModels.h"

namespace {

// The walk from the last character to the first that defines the split.
Texts SplitByWalking(const std::string& path)
{
    std::string name, ext;
    bool metDot = false;
    for (std::size_t i = path.size(); i-- > 0;) {
        const char c = path[i];
        if (c == '/' || c == '\\')
            return {path.substr(0, i + 1), name, ext};
        if (c == '.' && !metDot)
            metDot = true;
        else
            (metDot ? name : ext).insert(0, 1, c);
    }
    return {"", CString(name).Trim(), CString(ext).Trim()};
}

// One cut after the other, each looking for a backslash in all that is left before it takes a slash.
Texts BreakUpByCutting(std::string path)
{
    Texts parts;
    if (path.find_first_not_of(Space) == std::string::npos || path == "/" || path == "\\")
        return parts;
    if (Has("/\\", path.back()))
        path.pop_back();
    if (!path.empty() && Has("/\\", path.front()))
        path.erase(0, 1);
    while (path.find_first_of("/\\") != std::string::npos) {
        const auto at = path.rfind(Has(path, '\\') ? '\\' : '/');
        parts.insert(parts.begin(), path.substr(at + 1));
        path.resize(at);
    }
    parts.insert(parts.begin(), path);
    return parts;
}

TEST(PathNames, SplitAndBreakUpLikeTheStepByStepRules)
{
    RandomTexts random;
    for (int turn = 0; turn < 200000; ++turn) {
        const std::string path = random.Make(std::string("\\/. aB\xE9"), random.Below(9));
        CString dir, name, ext("left over");
        FileUtils::Split(path, dir, name, ext);
        ASSERT_EQ((Texts{dir, name, ext}), SplitByWalking(path)) << path;
        TextArray parts = ArrayOf({"left over", path});
        ASSERT_TRUE(DirUtils::BreakUpDirs(parts[1], parts)); // the output may hold the input
        ASSERT_EQ(TextsOf(parts), BreakUpByCutting(path)) << path;
    }
    CString path("C:\\d\\readme"), name, ext;
    FileUtils::Split(path, path, name, ext);
    EXPECT_EQ(path + "|" + name + "|" + ext, "C:\\d\\||readme");
}

TEST(PathNames, BecomeRelativeByCharactersIgnoringCase)
{
    TextArray paths = ListOf("C:\\Data\\x;c:\\data;C:\\dat;;C:\\data2\\y");
    DirUtils::MakePathsRelative(paths[1], paths);
    DirUtils::MakePathsRelative("", paths);
    EXPECT_EQ(LineOf(paths), "\\x;;C:\\dat;;2\\y");
    EXPECT_EQ(FileUtils::GetBadFileNameChars(true), "\\/:*?\"<>|' ");
    EXPECT_EQ(FileUtils::GetBadFileNameChars(false), "\\/:*?\"<>|");
}

// ---- on disk --------------------------------------------------------------------------------------------

namespace fs = std::filesystem;

class PathsOnDisk : public testing::Test {
protected:
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
    MarkerLines m_markers;
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
    EXPECT_EQ(MarkerLines::Take(), Texts());
    for (const CString& bad :
         {CString(), Path().Left(Path().GetLength() - 1), Path("missing/"), CString("   ")}) {
        EXPECT_EQ(FileUtils::GetTempFile(bad, "abc", unique = 77), "");
        EXPECT_EQ(unique, 0u);
    }
    EXPECT_EQ(MarkerLines::Take(), Texts(4, "{F1A8BB00-471B-4D7C-9766-55857561C699}"));
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
