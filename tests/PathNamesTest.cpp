#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "DirUtils.h"
#include "FileUtils.h"
#include "StringUtils.h"
#include "TextArray.h"

namespace {

struct Parts {
    std::string dir, name, ext;
    bool operator==(const Parts&) const = default;
};

// The walk from the last character to the first that defines the split.
Parts SplitByWalking(const std::string& path)
{
    Parts parts;
    bool metDot = false;
    for (std::size_t i = path.size(); i-- > 0;) {
        const char c = path[i];
        if (c == '/' || c == '\\') {
            parts.dir = path.substr(0, i + 1);
            return parts;
        }
        if (c == '.' && !metDot)
            metDot = true;
        else
            (metDot ? parts.name : parts.ext).insert(0, 1, c);
    }
    CString ext(parts.ext);
    CString name(parts.name);
    StringUtils::Trim(ext);
    StringUtils::Trim(name);
    return {"", std::string(name), std::string(ext)};
}

// One cut after the other, each looking for a backslash in all that is left before it takes a slash.
std::vector<std::string> BreakUpByCutting(std::string path)
{
    std::vector<std::string> parts;
    const bool isBlank = path.find_first_not_of(" \t\n\v\f\r") == std::string::npos;
    if (isBlank || path == "/" || path == "\\")
        return parts;
    if (path.back() == '/' || path.back() == '\\')
        path.pop_back();
    if (!path.empty() && (path.front() == '/' || path.front() == '\\'))
        path.erase(0, 1);
    for (;;) {
        auto at = path.rfind('\\');
        if (at == std::string::npos)
            at = path.rfind('/');
        if (at == std::string::npos)
            break;
        parts.insert(parts.begin(), path.substr(at + 1));
        path.resize(at);
    }
    parts.insert(parts.begin(), path);
    return parts;
}

std::vector<std::string> ToVector(const TextArray& list)
{
    std::vector<std::string> texts;
    for (const CString& text : list)
        texts.emplace_back(text.View());
    return texts;
}

TextArray ToArray(const std::vector<std::string>& texts)
{
    TextArray list;
    for (const auto& text : texts)
        list.Add(CString(text));
    return list;
}

TEST(PathNames, SplitAndBreakUpLikeTheStepByStepRules)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::string alphabet("\\/. aB\xE9", 7);
    for (int turn = 0; turn < 200000; ++turn) {
        std::string path;
        for (auto length = random() % 9; length > 0; --length)
            path += alphabet[random() % alphabet.size()];
        CString dir;
        CString name;
        CString ext("left over");
        FileUtils::Split(CString(path), dir, name, ext);
        ASSERT_EQ((Parts{std::string(dir), std::string(name), std::string(ext)}), SplitByWalking(path))
            << path;
        TextArray parts;
        parts.Add("left over");
        ASSERT_TRUE(DirUtils::BreakUpDirs(CString(path), parts));
        ASSERT_EQ(ToVector(parts), BreakUpByCutting(path)) << path;
    }
}

TEST(PathNames, OutputsMayBeTheInput)
{
    CString path("C:\\d\\readme");
    CString name;
    CString ext;
    FileUtils::Split(path, path, name, ext);
    EXPECT_EQ(path + "|" + name + "|" + ext, "C:\\d\\||readme");
    TextArray parts = ToArray({"a/b"});
    DirUtils::BreakUpDirs(parts[0], parts);
    EXPECT_EQ(ToVector(parts), (std::vector<std::string>{"a", "b"}));
}

TEST(PathNames, PartsOfAPath)
{
    const struct {
        const char *path, *fileName, *withoutExtension, *extension, *folder, *parent, *lastDir;
    } rows[] = {
        {"", "", "", "", "", "", ""},
        {"file.txt", "file.txt", "file", "txt", "", "", ""},
        {".profile", ".profile", "", "profile", "", "", ""},
        {"a.tar.gz", "a.tar.gz", "a.tar", "gz", "", "", ""},
        {"C:\\d\\", "", "", "", "C:\\d\\", "C:\\", "d"},
        {"C:\\d.x\\file", "file", "file", "", "C:\\d.x\\", "C:\\d.x\\", "d.x"},
        {"dir.x/file", "file", "file", "x/file", "dir.x/", "dir.x/", "dir.x"},
        {"C:\\", "", "", "", "C:\\", "", "C:"},
        {"C:\\a", "a", "a", "", "C:\\", "C:\\", "C:"},
        {"C:\\a\\b\\", "", "", "", "C:\\a\\b\\", "C:\\a\\", "b"},
        {"C:\\a\\b", "b", "b", "", "C:\\a\\", "C:\\a\\", "a"},
        {"C:\\a\\b\\f.txt", "f.txt", "f", "txt", "C:\\a\\b\\", "C:\\a\\b\\", "b"},
        {"abc\\", "", "", "", "abc\\", "", "abc"},
        {"/", "", "", "", "/", "", ""},
        {"\\\\", "", "", "", "\\\\", "\\", ""},
        {"  ", "  ", "  ", "", "", "", ""},
        {" \\", "", "", "", " \\", "", " "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(FileUtils::ParseFileNameFromPath(row.path, true), row.fileName);
        EXPECT_EQ(FileUtils::ParseFileNameFromPath(row.path, false), row.withoutExtension);
        EXPECT_EQ(FileUtils::GetFileExt(row.path), row.extension);
        EXPECT_EQ(DirUtils::ParsePathFromFile(row.path), row.folder);
        EXPECT_EQ(DirUtils::ParseParentDir(row.path), row.parent);
        EXPECT_EQ(DirUtils::ParseLastDir(row.path), row.lastDir);
    }
}

TEST(PathNames, TrailingSeparatorsAfterTrimming)
{
    const struct {
        const char *path, *backslash, *slash, *removed;
    } rows[] = {
        {"", "", "", ""},
        {" \t ", "", "", ""},
        {"  C:\\d/  ", "C:\\d\\", "C:\\d/", "C:\\d"},
        {"a", "a\\", "a/", "a"},
        {"a\\\\", "a\\\\", "a\\/", "a\\"},
        {"/", "\\", "/", ""},
        {"\xA0", "\xA0\\", "\xA0/", "\xA0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        CString backslash(row.path);
        CString slash(row.path);
        CString removed(row.path);
        DirUtils::EnsureTrailingBackslash(backslash);
        DirUtils::EnsureTrailingForwardSlash(slash);
        DirUtils::RemoveTrailingSlash(removed);
        EXPECT_EQ(backslash, row.backslash);
        EXPECT_EQ(slash, row.slash);
        EXPECT_EQ(removed, row.removed);
    }
}

TEST(PathNames, CommonParentAndRelativePaths)
{
    EXPECT_EQ(DirUtils::FindCommonParentDir("C:\\A\\b\\x", "c:\\a\\B\\y"), "C:\\A\\b\\");
    EXPECT_EQ(DirUtils::FindCommonParentDir("C:\\a", "C:\\a\\b"), "C:\\a\\");
    EXPECT_EQ(DirUtils::FindCommonParentDir("C:\\a", "D:\\a"), "");
    EXPECT_EQ(DirUtils::FindCommonParentDir("", "a"), "");
    EXPECT_EQ(DirUtils::FindCommonParentDir("a\\b/c", "a\\b/c"), "a\\b/c\\");

    TextArray paths = ToArray({"C:\\Data\\x", "c:\\data", "C:\\dat", "", "C:\\data2\\y"});
    DirUtils::MakePathsRelative(paths[1], paths);
    EXPECT_EQ(ToVector(paths), (std::vector<std::string>{"\\x", "", "C:\\dat", "", "2\\y"}));
    DirUtils::MakePathsRelative("", paths);
    EXPECT_EQ(paths[0], "\\x");
}

TEST(PathNames, DirListsArePairsWhoseSecondMembersAreNeverLookedAt)
{
    const TextArray list = ToArray({"C:\\data2", "C:\\x", "D:\\sub\\deep", "C:\\y", "E:\\"});
    const struct {
        const char* dir;
        uint64 index;
        int flag; // 0 none, 1 same, 2 entry inside dir, 3 dir inside entry
    } rows[] = {{"c:\\DATA2", 0, 1}, {"C:\\data", 0, 2}, {"d:\\SUB", 2, 2},
                {"E:\\music", 4, 3}, {"C:\\x", 5, 0},    {"", 5, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.dir);
        bool same = true;
        bool entryInside = true;
        bool dirInside = true;
        EXPECT_EQ(DirUtils::IsInDirList(row.dir, list, same, entryInside, dirInside), row.index);
        EXPECT_EQ(same, row.flag == 1);
        EXPECT_EQ(entryInside, row.flag == 2);
        EXPECT_EQ(dirInside, row.flag == 3);
    }
    bool flag = false;
    EXPECT_EQ(DirUtils::IsInDirList("a", ToArray({"b"}), flag, flag, flag), 1u);
    EXPECT_EQ(DirUtils::IsInDirList("a", TextArray(), flag, flag, flag), 0u);
}

TEST(PathNames, BadCharactersAreReplacedOrRemoved)
{
    EXPECT_EQ(FileUtils::GetBadFileNameChars(true), "\\/:*?\"<>|' ");
    EXPECT_EQ(FileUtils::GetBadFileNameChars(false), "\\/:*?\"<>|");
    EXPECT_EQ(FileUtils::ReplaceBadFileChars("a b'c", '_', false), "a b'c");
    EXPECT_EQ(FileUtils::ReplaceBadFileChars("a b'c", '_', true), "a_b_c");
    EXPECT_EQ(FileUtils::ReplaceBadFileChars("a b'c", '\0', true), "abc");
    EXPECT_EQ(FileUtils::ReplaceBadFileChars("\\/:*?\"<>|", '\0', false), "");
    EXPECT_EQ(FileUtils::ReplaceBadFileChars("   ", '_', true), "   ");
    EXPECT_EQ(FileUtils::ReplaceBadFileChars("a:b", '*', false), "a*b");
}

} // namespace
