// Names that only POSIX systems have or refuse.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <set>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "CFileFind.h"
#include "FileUtils.h"
#include "platform/posix/WildcardMatch.h"
#include "support/MarkerLines.h"
#include "support/TemporaryFolder.h"

namespace {

TEST(NamesOnPosix, ListsOddNames)
{
    const TemporaryFolder folder;
    std::set<std::string> names = {"line\nend", "\xFF\x80", std::string(255, 'x'), "*?", " ", "...", "\\"};
    for (const auto& name : names)
        folder.Write(name, "");
    std::filesystem::create_symlink("loop", folder.Path("loop"));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0); // which is not opened
    names.insert({".", "..", "loop", "pipe"});
    std::set<std::string> found;
    CFileFind finder;
    for (bool more = finder.FindFile(folder.Path("*").c_str()); more;) {
        more = finder.FindNextFile();
        EXPECT_TRUE(found.emplace(finder.GetFileName().View()).second);
    }
    EXPECT_EQ(found, names);
    EXPECT_FALSE(finder.FindFile(folder.Path("LOOP").c_str()));
}

TEST(NamesOnPosix, TellsTheExactTimeAndWhatALinkLeadsTo)
{
    const TemporaryFolder folder;
    const timespec times[] = {{0, 0}, {951868799, 999000199}}; // 2000-02-29 23:59:59.9990001
    utimensat(AT_FDCWD, folder.Write("file", "").c_str(), times, 0);
    std::filesystem::create_directory_symlink(".", folder.Path(".link"));
    std::filesystem::create_symlink("none", folder.Path("broken"));
    CFileFind finder;
    for (const auto& [name, expected] : {std::pair("file", "000"), {".link", "111"}, {"broken", "010"}}) {
        ASSERT_TRUE(finder.FindFile(folder.Path(name).c_str()));
        finder.FindNextFile();
        EXPECT_EQ(std::to_string(finder.IsDirectory()) + std::to_string(finder.IsLink()) +
                      std::to_string(finder.IsHidden()),
                  expected)
            << name;
        const auto written = finder.GetLastWriteTime();
        EXPECT_EQ((uint64{written.dwHighDateTime} << 32 | written.dwLowDateTime) == 0x01BF8311163618F1u,
                  name == std::string("file"));
    }
}

// By the limits of the original platform, which Wine does not keep.
TEST(NamesOnPosix, TemporaryFilesThatTheSystemRefuses)
{
    const TemporaryFolder folder;
    const MarkerLines markers;
    const std::string deep = folder.MakeFolder(std::string(246 - folder.Path().size(), 'd') + "/");
    unsigned int unique = 0;
    for (const auto& [path, prefix] :
         {std::pair(deep, "abc"), {folder.Path(), "a/b"}, {folder.Path(), "a\\b"}}) {
        EXPECT_EQ(FileUtils::GetTempFile(CString(path), prefix, unique), "") << path;
        const CString marker = MarkerLines::Take().at(0);
        EXPECT_EQ(marker.Left(38), "{E4949422-0B7B-4D2B-AE39-0E30647219F3}");
        EXPECT_GT(marker.GetLength(), 40);
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

TEST(NamesOnPosix, WildcardsMatchAsTheSlowModelSays)
{
    const auto all = [](const std::string& letters, std::size_t longest) {
        std::vector<std::string> texts = {""};
        for (std::size_t first = 0, length = 1; length <= longest; ++length) {
            const std::size_t end = texts.size();
            for (; first < end; ++first)
                for (const char c : letters)
                    texts.push_back(texts[first] + c);
        }
        return texts;
    };
    for (const std::string& name : all("ab.", 4))
        for (const std::string& mask : all("a.*?", 5))
            ASSERT_EQ(MatchesWildcards(name, mask), SlowMatch(name, mask, 0, 0)) << name << " by " << mask;
    EXPECT_FALSE(MatchesWildcards(std::string(255, 'a'), "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b")); // and soon
}

} // namespace
