#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "CFileFind.h"
#include "support/TemporaryFolder.h"

namespace {

std::vector<std::string> Names(const CString& pattern)
{
    std::vector<std::string> names;
    CFileFind finder;
    for (bool more = finder.FindFile(pattern); more;) {
        more = finder.FindNextFile();
        names.emplace_back(finder.GetFileName().View());
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(FileFind, FindsByPattern)
{
    const TemporaryFolder folder;
    std::vector<std::string> all = {".dot",  "Readme.TXT",     "notes.txt",          "notes.txtx",
                                    "noext", "line\nend \xE9", std::string(255, 'x')};
    for (const auto& name : all)
        folder.Write(name, name);
    folder.MakeFolder("Sub");
    std::filesystem::create_symlink("nowhere", folder.Path("broken"));
    all.insert(all.end(), {".", "..", "Sub", "broken"});
    std::sort(all.begin(), all.end());
    const struct {
        const char* mask;
        std::vector<std::string> names;
    } rows[] = {{"*", all},
                {"*.*", all},
                {"n*", {"noext", "notes.txt", "notes.txtx"}},
                {"Sub", {"Sub"}},
                {"Sub\\*", {".", ".."}},
                {"none/*", {}},
                {"notes.txt/*", {}}};
    for (const auto& row : rows)
        EXPECT_EQ(Names(CString(folder.Path()) + row.mask), row.names) << row.mask;
    EXPECT_TRUE(Names("").empty());
}

TEST(FileFind, TellsWhatItFound)
{
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.Write("file.tar.gz", "12345"), std::filesystem::perms::owner_read);
    std::filesystem::create_directory_symlink(".", folder.Path(".link"));
    CFileFind finder;
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath(), "");
    ASSERT_TRUE(finder.FindFile(folder.Path("file*").c_str()));
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath(), folder.Path("file.tar.gz").c_str());
    EXPECT_EQ(finder.GetFileTitle(), "file.tar");
    EXPECT_EQ(finder.GetLength(), 5u);
    EXPECT_TRUE(finder.IsReadOnly());
    EXPECT_FALSE(finder.IsDirectory() || finder.IsHidden() || finder.IsLink() || finder.IsDots());
    EXPECT_NE(finder.GetLastWriteTime().dwHighDateTime, 0u);
    EXPECT_FALSE(finder.FindNextFile());
    ASSERT_TRUE(finder.FindFile(folder.Path(".link").c_str()));
    finder.FindNextFile();
    EXPECT_TRUE(finder.IsDirectory() && finder.IsLink() && finder.IsHidden() && !finder.IsDots());
}

} // namespace
