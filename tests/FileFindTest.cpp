#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "CFileFind.h"
#include "platform/Platform.h"
#include "support/TemporaryFolder.h"

namespace {

std::vector<std::string> Found(const std::string& pattern)
{
    std::vector<std::string> names;
    CFileFind finder;
    for (bool more = finder.FindFile(pattern.c_str()); more;) {
        more = finder.FindNextFile();
        names.emplace_back(finder.GetFileName().View());
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(FileFind, ListsEveryNameAsItIsStoredAndOnce)
{
    const TemporaryFolder folder;
    std::vector<std::string> names = {".dot", "\xFF\x80", std::string(200, 'x'), " x", "-"};
    for (int i = 0; i < 1500; ++i)
        names.push_back("File" + std::to_string(i));
    for (const auto& name : names)
        folder.Write(name, "");
    names.insert(names.end(), {".", ".."});
    std::sort(names.begin(), names.end());
    EXPECT_EQ(Found(folder.Path("*")), names);
    EXPECT_EQ(Found(folder.Path("\xFF?")), std::vector<std::string>{"\xFF\x80"});
    for (const char* nothing : {"none/*", "File1/*"})
        EXPECT_EQ(Found(folder.Path(nothing)), std::vector<std::string>()) << nothing;
}

TEST(FileFind, TellsWhatItFound)
{
    const TemporaryFolder folder;
    const std::string file = folder.Write("file.tar.gz", "");
    std::filesystem::resize_file(file, 5'000'000'000);
    const std::chrono::sys_seconds time =
        std::chrono::sys_days(std::chrono::year(2000) / 2 / 29) + std::chrono::hours(21);
    std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(time));
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    CFileFind finder;
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath(), "");
    ASSERT_TRUE(finder.FindFile(folder.Path("file*").c_str()));
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath() + finder.GetFileTitle(), (file + "file.tar").c_str());
    EXPECT_EQ(finder.GetLength(), 5'000'000'000u);
    const auto written = finder.GetLastWriteTime();
    EXPECT_EQ(uint64{written.dwHighDateTime} << 32 | written.dwLowDateTime, 0x01BF82F7F0E90800u);
    EXPECT_TRUE(finder.IsReadOnly() && !finder.IsDirectory() && !finder.IsLink() && !finder.IsHidden() &&
                !finder.IsDots());
}

} // namespace
