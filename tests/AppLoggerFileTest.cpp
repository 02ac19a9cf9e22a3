#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <thread>

#include "persist/LogFile.h"
#include "persist/LogMerge.h"
#include "support/Cases.h"
#include "support/LogFiles.h"
#include "support/RandomTexts.h"

namespace {

class AppLoggerFileTest : public testing::Test {
protected:
    AppLoggerFileTest() { LogHome::Start(); }

    // Another process adds lines with these numbers behind a prefix; what it says goes to a file.
    void Write(const std::string& before, int first, int last) const
    {
        std::string words = "log " + before;
        for (const int number : {first, last, static_cast<int>(AppLogger::m_nMaxLogEntries)})
            words += ' ' + std::to_string(number);
        RunProgram(KVT01_TEST_CHILD, words + " >\"" + folder.Path("said by " + before) + '"');
    }

    LogHome home;
    TemporaryFolder folder;
    const std::set<std::string> onlyTheLog = {"App.log"};
};

void AddNumbers(int first, int last, const std::string& before)
{
    for (int i = first; i <= last; ++i)
        AppLogger::AddLine(before + std::to_string(i));
}

// Of the numbers behind a prefix the last one; 0 if none is there, -1 if they do not count up one by one.
int LastIn(const StoredLines& lines, const std::string& before)
{
    int last = 0;
    for (const auto& [marker, text] : lines) {
        if (!text.starts_with(before))
            continue;
        const int number = std::stoi(text.substr(before.size()));
        if (last != 0 && number != last + 1)
            return -1;
        last = number;
    }
    return last;
}

TEST_F(AppLoggerFileTest, NoLineThatAddLineReturnedFromIsLostWhenTheProcessIsKilled)
{
    RandomTexts random;
    AppLogger::DeleteInstance();
    int last = 0;
    constexpr int kills = 300;
    for (int i = 0; i < kills; ++i) {
        folder.Write("said by x", "");
        std::thread writer([&] { Write("x", last + 1, INT_MAX); });
        const auto saysLines = [&](int count) {
            return folder.Await("said by x", [count](const std::string& text) {
                return std::count(text.begin(), text.end(), '\n') >= count;
            });
        };
        const int process = std::stoi(saysLines(i % 4 == 0 ? 1 : 2)); // sometimes before the first line
        std::this_thread::sleep_for(std::chrono::microseconds(random.Below(8000)));
        KillProcess(process);
        writer.join();
        const auto said = Words(folder.Read("said by x"));
        const int mostReturned = said.size() < 2 ? last : std::stoi(said.back());
        const StoredLines lines = home.Lines();
        last = LastIn(lines, "x");
        ASSERT_TRUE(last == mostReturned || last == mostReturned + 1)
            << last << " in the file, " << mostReturned << " returned";
        ASSERT_LE(lines.size(), 500U);
    }
    std::printf("%d processes killed while they added %d lines\n", kills, last);
    EXPECT_GE(last, kills / 2);
}

TEST_F(AppLoggerFileTest, LinesWaitWhileTheFileCannotBeWritten)
{
    const std::string path = home.Path();
    HANDLE handle = nullptr;
    const std::pair<std::function<void()>, std::function<void()>> obstacles[] = {
        {[&] { SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY); },
         [&] { SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL); }},
        {[&] { handle = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr); },
         [&] { CloseHandle(handle); }},
        {[&] {
             std::filesystem::rename(path, folder.Path("aside")), std::filesystem::create_directory(path);
         },
         [&] { std::filesystem::remove(path); }},
    };
    StoredLines expected = {Started};
    for (const auto& [block, unblock] : obstacles) {
        block();
        const std::string before = home.Bytes();
        for (int i = 0; i < 3; ++i) {
            AppLogger::AddLine("{wait} x");
            expected.push_back({"{wait}", "x"});
            EXPECT_EQ(home.Bytes(), before);
            EXPECT_EQ(home.Files(), onlyTheLog);
        }
        unblock();
        AppLogger::AddLine("free");
        expected.push_back({"", "free"});
        EXPECT_EQ(home.Lines(), expected);
        EXPECT_EQ(LogHome::Texts().size(), expected.size());
    }
}

TEST_F(AppLoggerFileTest, AWriterThatHangsIsPassedBy)
{
    const HANDLE handle = CreateFileA((home.Path() + ".new").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      CREATE_ALWAYS, 0, nullptr);
    AddNumbers(1, 100, "x"); // one of them waits
    EXPECT_EQ(LastIn(home.Lines(), "x"), 100);
    CloseHandle(handle);
    AddNumbers(101, 101, "x");
    EXPECT_EQ(LastIn(home.Lines(), "x"), 101);
    EXPECT_EQ(home.Files(), onlyTheLog);
}

TEST_F(AppLoggerFileTest, WhatWasDeletedOrEmptiedComesBack)
{
    AddNumbers(1, 10, "x");
    const std::string before = home.Bytes();
    home.Write("");
    AppLogger::ForceWrite();
    EXPECT_EQ(home.Bytes(), before);
    DeleteFileA(home.Path().c_str());
    AppLogger::ForceWrite();
    EXPECT_EQ(home.Bytes(), before);
}

// ---- damaged files --------------------------------------------------------------------------------------

TEST_F(AppLoggerFileTest, DamagedFilesAreKeptAsideAndReadAsFarAsTheyGo)
{
    const StoredLines three = {{"{a}", "one"}, {"", "two"}, {"{c}", ""}};
    const std::string whole = LogBytes(three), entries = whole.substr(HeaderBytes(0).size());
    std::size_t kept = 0;
    const auto check = [&](const std::string& bytes, std::size_t read, bool isKept) {
        SCOPED_TRACE(HexOf(bytes).substr(0, 400));
        LogHome::Forget();
        home.Write(bytes);
        AppLogger::SetAppName("App");
        StoredLines expected(three.begin(), three.begin() + static_cast<std::ptrdiff_t>(read));
        expected.push_back(Started);
        ASSERT_EQ(home.Lines(), expected);
        kept += isKept ? 1 : 0;
        ASSERT_EQ(home.Files().size(), kept + 1);
        const std::string aside =
            LogHome::Name + std::string(".damaged") + (kept < 2 ? "" : std::to_string(kept));
        ASSERT_EQ(home.Folder().Read(aside), isKept ? bytes : "");
    };
    check(whole + "more", 3, false);
    check(HeaderBytes(3, 6) + entries, 3, false);
    check("", 0, false);
    check(HeaderBytes(3, 5) + entries, 0, true);
    check(HeaderBytes(3, 8) + entries, 0, true);
    check(HeaderBytes(3, 7, "Corvane Software Log") + entries, 0, true);
    check(HeaderBytes(~0ULL) + entries, 3, true);
    check(HeaderBytes(2) + EntryBytes("{a}", "one") + Number(3, 2) + EntryBytes("", "").substr(2), 1, true);
    for (std::size_t length = 1, read = 0; length < whole.size(); ++length) {
        read +=
            length == LogBytes({three.begin(), three.begin() + static_cast<int>(read) + 1}).size() ? 1 : 0;
        check(whole.substr(0, length), read, true);
    }
}

// ---- several writers ------------------------------------------------------------------------------------

TEST_F(AppLoggerFileTest, ThreadsAndProcessesKeepEachOthersLines)
{
    for (const std::size_t bound : {500U, 60U}) {
        LogHome::Forget();
        std::filesystem::remove(home.Path());
        AppLogger::SetAppName("App");
        AppLogger::SetMaxLogEntries(bound);
        std::vector<std::thread> threads;
        for (char name = 'a'; name < 'i'; ++name)
            threads.emplace_back([name] { AddNumbers(1, 20, std::string(1, name)); });
        for (const char* name : {"x", "y"})
            threads.emplace_back([this, name] { Write(name, 1, 20); });
        for (std::thread& thread : threads)
            thread.join();
        const StoredLines lines = home.Lines();
        EXPECT_EQ(lines.size(), bound == 60 ? 60U : 3U + 10U * 20U); // three started
        for (const char name : std::string("abcdefghxy")) {
            const int last = LastIn(lines, std::string(1, name));
            EXPECT_TRUE(last == 20 || (last == 0 && bound == 60)) << name << last;
        }
    }
}

// "a1 b2*": the line a of second 1, and b of second 2, which is pending.
LogEntries EntriesOf(const std::string& texts)
{
    LogEntries entries;
    for (const std::string& text : Words(texts))
        entries.Add({DateTime(2025, 1, 1, 0, 0, text[1] - '0'), "", text.substr(0, 1)}, text.ends_with('*'));
    return entries;
}

TEST(LogMergeTest, LinesGoWhereTheyBelong)
{
    for (const auto& [inFile, ours, merged] : Cases<3>("merged logs")) {
        std::string texts;
        LogMerge::Merged(EntriesOf(inFile), EntriesOf(ours)).ForEach([&](std::string_view bytes, bool) {
            texts += bytes.back();
        });
        EXPECT_EQ(texts, merged) << inFile << " and " << ours;
    }
}

// Several lists with a file in common, against one list of all lines in the order in which they got there.
// All carry the same second, so that only the order of writing decides.
TEST_F(AppLoggerFileTest, WritersAgreeWithOneListOfAllLines)
{
    RandomTexts random;
    struct Writer {
        LogFile file;
        LogEntries entries;
        StoredLines pending;
    };
    for (int round = 0; round < 40; ++round) {
        const std::string name = std::to_string(round);
        const CString path(folder.Path(name));
        const std::size_t bound = 1 + random.Below(8);
        Writer writers[3];
        StoredLines all;
        const auto trim = [&](StoredLines& lines) {
            while (lines.size() > bound)
                lines.erase(lines.begin());
        };
        for (int step = 0; step < 40; ++step) {
            Writer& writer = writers[random.Below(3)];
            const bool isReadOnly = folder.Has(name) && random.OneIn(8);
            SetFileAttributesA(path, isReadOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
            const std::string text = random.OneIn(4) ? "same" : std::to_string(step);
            writer.entries.Add({DateTime(2025, 1, 1, 0, 0, 1), "", text.c_str()}, true);
            writer.entries.TrimTo(bound);
            writer.pending.push_back({"", text});
            trim(writer.pending);
            ASSERT_EQ(writer.file.Write(path, "App", bound, writer.entries), !isReadOnly);
            if (isReadOnly)
                continue;
            all.insert(all.end(), writer.pending.begin(), writer.pending.end());
            trim(all);
            writer.pending.clear();
            ASSERT_EQ(LinesIn(folder.Read(name)), all) << "round " << round << " step " << step;
        }
    }
}

} // namespace
