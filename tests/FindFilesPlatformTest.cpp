#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/Platform.h"
#include "platform/posix/WildcardMatch.h"
#include "support/TemporaryFolder.h"

namespace {

struct Found {
    std::vector<std::string> names; // in the order of finding
    DWORD error;                    // that ended it
};

Found Find(const std::string& pattern)
{
    WIN32_FIND_DATAA data;
    Found found = {};
    SetLastError(0);
    const HANDLE handle = FindFirstFileA(pattern.c_str(), &data);
    if (handle != INVALID_HANDLE_VALUE) {
        do
            found.names.emplace_back(data.cFileName);
        while (FindNextFileA(handle, &data));
        found.error = GetLastError();
        EXPECT_TRUE(FindClose(handle));
        return found;
    }
    found.error = GetLastError();
    return found;
}

std::string Sorted(std::vector<std::string> names)
{
    std::sort(names.begin(), names.end());
    std::string text;
    for (const auto& name : names)
        text += (text.empty() ? "" : "|") + name;
    return text;
}

TEST(FindFilesPlatformTest, PatternsByTheRulesOfThisSystem)
{
    const TemporaryFolder folder;
    for (const char* name : {"notes.txt", "Readme.TXT", "a.b.txt", "notes.txtx"})
        folder.Write(name, "");
    folder.MakeFolder("Sub");
    const struct {
        const char *pattern, *names;
        DWORD error;
    } cases[] = {
        {"*.txt", "a.b.txt|notes.txt", 18},
        {"*.TXT", "Readme.TXT", 18}, // letter case counts
        {"notes.????", "notes.txt|notes.txtx", 18},
        {"none\\none\\*", "", 3},
        {"none\\none", "", 3},
        {"notes.txt\\*", "", 267},
        {"Sub/", "", 2},
        {"Sub/../a*", "a.b.txt", 18},
    };
    for (const auto& row : cases) {
        const Found found = Find(folder.Path(row.pattern));
        EXPECT_EQ(Sorted(found.names), row.names) << row.pattern;
        EXPECT_EQ(found.error, row.error) << row.pattern;
    }
    WIN32_FIND_DATAA data;
    EXPECT_EQ(FindFirstFileA(nullptr, &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST(FindFilesPlatformTest, AnyNameIsFoundAsItIsStored)
{
    const TemporaryFolder folder;
    const std::vector<std::string> odd = {"line\nend", "\xFF\x80", std::string(255, 'x'), "*?", " ", "...",
                                          "-",         "\\"};
    for (const auto& name : odd)
        folder.Write(name, "");
    symlink("loop", folder.Path("loop").c_str());
    std::vector<std::string> expected = odd;
    for (const char* other : {".", "..", "loop"})
        expected.emplace_back(other);
    EXPECT_EQ(Sorted(Find(folder.Path("*")).names), Sorted(expected));
    EXPECT_EQ(Find(folder.Path("\xFF?")).names, std::vector<std::string>{"\xFF\x80"});
}

TEST(FindFilesPlatformTest, AFolderOfManyEntriesIsListedOnceEach)
{
    const TemporaryFolder folder;
    std::vector<std::string> names = {".", ".."};
    for (int i = 0; i < 3000; ++i) {
        names.push_back("file" + std::to_string(i));
        ASSERT_EQ(mkfifo(folder.Path(names.back()).c_str(), 0600), 0); // and no pipe is opened
    }
    EXPECT_EQ(Sorted(Find(folder.Path("*")).names), Sorted(names));
}

TEST(FindFilesPlatformTest, WhatIsNoOpenSearchIsRefused)
{
    const TemporaryFolder folder;
    const std::string file = folder.Write("file", "");
    WIN32_FIND_DATAA data;
    const HANDLE closed = FindFirstFileA(folder.Path("*").c_str(), &data);
    EXPECT_FALSE(CloseHandle(closed));
    EXPECT_TRUE(FindClose(closed));
    const HANDLE open = CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    int local = 0;
    const HANDLE hostile[] = {nullptr, INVALID_HANDLE_VALUE,       closed, open,
                              &local,  reinterpret_cast<HANDLE>(1)};
    for (const HANDLE handle : hostile) {
        SetLastError(0);
        EXPECT_FALSE(FindClose(handle));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_FALSE(FindNextFileA(handle, &data));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_TRUE(CloseHandle(open));
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

TEST(FindFilesPlatformTest, WildcardsMatchAsTheSlowModelSays)
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
