#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "CFileFind.h"
#include "platform/Platform.h"
#include "platform/posix/WildcardMatch.h"
#include "support/RandomTexts.h"
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
    std::vector<std::string> names = {".dot", "line\nend", "\xFF\x80", std::string(255, 'x'), "*?", " ",
                                      "...",  "-",         "\\"};
    for (const auto& name : names)
        folder.Write(name, "");
    std::filesystem::create_symlink("loop", folder.Path("loop"));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0); // which is not opened
    for (int i = 0; i < 3000; ++i)
        folder.Write(names.emplace_back("file" + std::to_string(i)), "");
    names.insert(names.end(), {".", "..", "loop", "pipe"});
    std::sort(names.begin(), names.end());
    EXPECT_EQ(Found(folder.Path("*")), names);
    EXPECT_EQ(Found(folder.Path("\xFF?")), std::vector<std::string>{"\xFF\x80"});
    for (const char* nothing : {"LOOP", "none/*", "file1/*"})
        EXPECT_EQ(Found(folder.Path(nothing)), std::vector<std::string>()) << nothing;
}

TEST(FileFind, TellsWhatItFoundOrWhatALinkLeadsTo)
{
    const TemporaryFolder folder;
    const std::string file = folder.Write("file.tar.gz", "");
    std::filesystem::resize_file(file, 5'000'000'000);
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    const timespec times[] = {{0, 0}, {951868799, 999000199}}; // 2000-02-29 23:59:59.9990001
    utimensat(AT_FDCWD, file.c_str(), times, 0);
    std::filesystem::create_directory_symlink(".", folder.Path(".link"));
    std::filesystem::create_symlink("none", folder.Path("broken"));
    CFileFind finder;
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath(), "");
    ASSERT_TRUE(finder.FindFile(folder.Path("file*").c_str()));
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_EQ(finder.GetFilePath() + finder.GetFileTitle(), (file + "file.tar").c_str());
    EXPECT_EQ(finder.GetLength(), 5'000'000'000u);
    const auto written = finder.GetLastWriteTime();
    EXPECT_EQ(uint64{written.dwHighDateTime} << 32 | written.dwLowDateTime, 0x01BF8311163618F1u);
    const auto marks = [&] {
        return std::to_string(finder.IsReadOnly()) + std::to_string(finder.IsDirectory()) +
               std::to_string(finder.IsLink()) + std::to_string(finder.IsHidden()) +
               std::to_string(finder.IsDots());
    };
    EXPECT_EQ(marks(), "10000");
    for (const auto& [name, expected] : {std::pair(".link", "01110"), {"broken", "00100"}}) {
        ASSERT_TRUE(finder.FindFile(folder.Path(name).c_str()));
        finder.FindNextFile();
        EXPECT_EQ(marks(), expected) << name;
    }
}

// ---- wildcards against all ways to read them ------------------------------------------------------------

bool SlowMatch(const std::string& name, const std::string& mask, std::size_t n, std::size_t m)
{
    if (m == mask.size())
        return n == name.size();
    const char c = mask[m];
    const char next = m + 1 < mask.size() ? mask[m + 1] : '\0';
    const bool isAtEnd = n == name.size();
    if (c == '*') {
        const std::size_t lastDot = name.rfind('.');
        const std::size_t limit =
            next == '.' && lastDot != std::string::npos && lastDot >= n ? lastDot : name.size();
        for (std::size_t end = n; end <= limit; ++end)
            if (SlowMatch(name, mask, end, m + 1))
                return true;
        return false;
    }
    if (c == '?')
        return SlowMatch(name, mask, isAtEnd || name[n] == '.' ? n : n + 1, m + 1);
    if (c == '.' && isAtEnd && (next == '*' || next == '?' || next == '\0'))
        return SlowMatch(name, mask, n, m + 1);
    return !isAtEnd && name[n] == c && SlowMatch(name, mask, n + 1, m + 1);
}

TEST(FileFind, WildcardsMatchAsTheSlowModelSays)
{
    RandomTexts random;
    for (int round = 0; round < 200000; ++round) {
        const std::string name = random.Make(std::string("ab."), random.Below(5));
        const std::string mask = random.Make(std::string("a.*?"), random.Below(6));
        ASSERT_EQ(MatchesWildcards(name, mask), SlowMatch(name, mask, 0, 0)) << name << " by " << mask;
    }
    EXPECT_FALSE(MatchesWildcards(std::string(255, 'a'), "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b")); // and soon
}

} // namespace
