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
    const std::string odd(255, 'x');
    const std::vector<std::string> files = {".dot",      "Readme.TXT", "Zeta.dat",       "a.b.txt", "noext",
                                            "notes.txt", "notes.txtx", "line\nend \xE9", odd};
    for (const auto& name : files)
        folder.Write(name, name);
    std::filesystem::create_directory(folder.Path() + "Sub");
    std::filesystem::create_directory_symlink("Sub", folder.Path() + "ToSub");
    std::filesystem::create_symlink("nowhere", folder.Path() + "broken");
    std::vector<std::string> all = files;
    for (const char* other : {".", "..", "Sub", "ToSub", "broken"})
        all.emplace_back(other);
    std::sort(all.begin(), all.end());

    const struct {
        const char* mask;
        std::vector<std::string> names;
    } rows[] = {
        {"*", all},
        {"*.*", all},
        {"n*", {"noext", "notes.txt", "notes.txtx"}},
        {"Sub", {"Sub"}},
        {"Sub\\*", {".", ".."}},
        {"none/*", {}},
        {"notes.txt/*", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mask);
        EXPECT_EQ(Names(CString(folder.Path()) + row.mask), row.names);
    }
    EXPECT_TRUE(Names("").empty());
}

TEST(FileFind, TellsWhatItFound)
{
    const TemporaryFolder folder;
    folder.Write("file.tar.gz", "12345");
    std::filesystem::permissions(folder.Path() + "file.tar.gz", std::filesystem::perms::owner_read);
    std::filesystem::create_directory_symlink(".", folder.Path() + ".link");

    CFileFind finder;
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath(), "");
    ASSERT_TRUE(finder.FindFile(CString(folder.Path()) + "file*"));
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath(), CString(folder.Path()) + "file.tar.gz");
    EXPECT_EQ(finder.GetFileTitle(), "file.tar");
    EXPECT_EQ(finder.GetLength(), 5u);
    EXPECT_TRUE(finder.IsReadOnly());
    EXPECT_FALSE(finder.IsDirectory() || finder.IsHidden() || finder.IsLink() || finder.IsDots());
    EXPECT_NE(finder.GetLastWriteTime().dwHighDateTime, 0u);
    EXPECT_FALSE(finder.FindNextFile());

    ASSERT_TRUE(finder.FindFile(CString(folder.Path()) + ".link"));
    finder.FindNextFile();
    EXPECT_TRUE(finder.IsDirectory() && finder.IsLink() && finder.IsHidden());
    EXPECT_FALSE(finder.IsDots());
}

} // namespace
