#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "CFileFind.h"
#include "platform/Platform.h"
#include "support/TemporaryFolder.h"

namespace {

TEST(FileFind, FindsByPattern)
{
    const TemporaryFolder folder;
    const std::string endless(255, 'x');
    for (const std::string& name :
         {std::string(".dot"), std::string("notes.txt"), std::string("line\nend \xE9"), endless})
        folder.Write(name, name);
    folder.MakeFolder("Sub");
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"*", {".", "..", ".dot", "Sub", "line\nend \xE9", "notes.txt", endless}},
        {"n*", {"notes.txt"}},
        {"Sub\\*", {".", ".."}},
        {"none/*", {}},
        {"notes.txt/*", {}}};
    for (const auto& [mask, expected] : rows) {
        std::vector<std::string> names;
        CFileFind finder;
        for (bool more = finder.FindFile(CString(folder.Path()) + mask); more;) {
            more = finder.FindNextFile();
            names.emplace_back(finder.GetFileName().View());
        }
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, expected) << mask;
    }
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
