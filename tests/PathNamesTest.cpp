#include <gtest/gtest.h>

#include "DirUtils.h"
#include "FileUtils.h"
#include "StringUtils.h"
#include "support/Cases.h"
#include "support/RandomTexts.h"
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

TEST(PathNames, PartsOfAPath)
{
    for (const auto& [path, fileName, base, extension, folder, parent, lastDir] : Cases<7>("path parts")) {
        SCOPED_TRACE(path);
        EXPECT_EQ(FileUtils::ParseFileNameFromPath(path, true), fileName);
        EXPECT_EQ(FileUtils::ParseFileNameFromPath(path, false), base);
        EXPECT_EQ(FileUtils::GetFileExt(path), extension);
        EXPECT_EQ(DirUtils::ParsePathFromFile(path), folder);
        EXPECT_EQ(DirUtils::ParseParentDir(path), parent);
        EXPECT_EQ(DirUtils::ParseLastDir(path), lastDir);
    }
    for (const auto& [a, b, parent] : Cases<3>("common parents"))
        EXPECT_EQ(DirUtils::FindCommonParentDir(a, b), parent) << a << " and " << b;
}

TEST(PathNames, TrailingSeparatorsAfterTrimming)
{
    for (const auto& [path, withBackslash, withSlash, without] : Cases<4>("trailing separators")) {
        CString backslash(path), slash(path), removed(path);
        DirUtils::EnsureTrailingBackslash(backslash);
        DirUtils::EnsureTrailingForwardSlash(slash);
        DirUtils::RemoveTrailingSlash(removed);
        EXPECT_EQ((Texts{backslash, slash, removed}), (Texts{withBackslash, withSlash, without})) << path;
    }
}

TEST(PathNames, BecomeRelativeByCharactersIgnoringCase)
{
    TextArray paths = ListOf("C:\\Data\\x;c:\\data;C:\\dat;;C:\\data2\\y");
    DirUtils::MakePathsRelative(paths[1], paths);
    DirUtils::MakePathsRelative("", paths);
    EXPECT_EQ(LineOf(paths), "\\x;;C:\\dat;;2\\y");
}

TEST(PathNames, DirListsArePairsWhoseSecondMembersAreNeverLookedAt)
{
    for (const auto& [dir, list, index, flags] : Cases<4>("folder lists")) {
        bool same = true, entryInside = true, dirInside = true;
        EXPECT_EQ(DirUtils::IsInDirList(dir, ListOf(list), same, entryInside, dirInside), std::stoul(index))
            << dir;
        EXPECT_EQ(same * 100 + entryInside * 10 + dirInside, std::stoi(flags)) << dir;
    }
}

TEST(PathNames, BadCharactersAreReplacedOrRemoved)
{
    EXPECT_EQ(FileUtils::GetBadFileNameChars(true), "\\/:*?\"<>|' ");
    EXPECT_EQ(FileUtils::GetBadFileNameChars(false), "\\/:*?\"<>|");
    for (const auto& [name, replacement, strict, result] : Cases<4>("bad characters"))
        EXPECT_EQ(FileUtils::ReplaceBadFileChars(name, replacement[0], strict == "1"), result) << name;
}

} // namespace
