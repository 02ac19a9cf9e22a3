#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "persist/LogFile.h"
#include "persist/LogMerge.h"
#include "platform/Platform.h"
#include "support/Cases.h"
#include "support/LogFiles.h"
#include "support/RandomTexts.h"
#include "support/TemporaryFolder.h"

namespace {

class AppLoggerFileTest : public testing::Test {
protected:
    AppLoggerFileTest() { LogHome::Start(); }

    LogHome home;
    const std::set<std::string> onlyTheLog = {"App.log"};
};

pid_t InChild(const std::function<void()>& work)
{
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    return child;
}

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

// ---- the death of the process ---------------------------------------------------------------------------

// The number of the last line that a child returned from before it was killed, some time after its start or
// after its first line.
int LastOfKilledChild(int first, bool waitsForFirst, std::chrono::microseconds lifeTime)
{
    int acknowledged[2];
    EXPECT_EQ(pipe(acknowledged), 0);
    const pid_t child = InChild([&] {
        AppLogger::SetAppName("App");
        for (int number = first;; ++number) {
            AddNumbers(number, number, "x");
            EXPECT_GT(write(acknowledged[1], &number, sizeof number), 0);
        }
    });
    close(acknowledged[1]);
    int last = first - 1;
    if (waitsForFirst && read(acknowledged[0], &last, sizeof last) <= 0)
        ADD_FAILURE();
    std::this_thread::sleep_for(lifeTime);
    EXPECT_EQ(kill(child, SIGKILL), 0);
    while (read(acknowledged[0], &last, sizeof last) == sizeof last) {
    }
    close(acknowledged[0]);
    waitpid(child, nullptr, 0);
    return last;
}

TEST_F(AppLoggerFileTest, NoLineThatAddLineReturnedFromIsLostWhenTheProcessIsKilled)
{
    RandomTexts random;
    AppLogger::DeleteInstance();
    int last = 0;
    constexpr int kills = 300;
    for (int i = 0; i < kills; ++i) {
        const std::chrono::microseconds lifeTime(random.Below(8000));
        const int returned = LastOfKilledChild(last + 1, i % 2 == 0, lifeTime);
        const StoredLines lines = home.Lines();
        last = LastIn(lines, "x");
        ASSERT_TRUE(last == returned || last == returned + 1)
            << last << " in the file, " << returned << " returned";
        ASSERT_LE(lines.size(), 500U);
    }
    std::printf("%d processes killed while they added %d lines\n", kills, last);
    EXPECT_GE(last, kills / 2);
}

// ---- files that cannot be written -----------------------------------------------------------------------

// The disk is full from a size of files on, as long as this lives.
struct FullDisk {
    explicit FullDisk(rlim_t size)
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit = {size, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        handler = signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        signal(SIGXFSZ, handler);
    }
    rlimit before;
    sighandler_t handler;
};

TEST_F(AppLoggerFileTest, LinesWaitWhileTheFileCannotBeWritten)
{
    const std::string path = home.Path();
    HANDLE handle = nullptr;
    std::optional<FullDisk> disk;
    const std::pair<std::function<void()>, std::function<void()>> obstacles[] = {
        {[&] { disk.emplace(home.Bytes().size() + 10); }, [&] { disk.reset(); }},
        {[&] { chmod(path.c_str(), 0444); }, [&] { chmod(path.c_str(), 0644); }},
        {[&] { handle = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr); },
         [&] { CloseHandle(handle); }},
        {[&] { std::filesystem::remove(path), mkdir(path.c_str(), 0755); }, [&] { rmdir(path.c_str()); }},
    };
    StoredLines expected = {Started};
    for (const auto& [block, unblock] : obstacles) {
        block();
        const std::string before = home.Bytes();
        for (int i = 0; i < 3; ++i) {
            AppLogger::AddLine("{wait} " + std::string(200, 'x'));
            expected.push_back({"{wait}", std::string(200, 'x')});
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

TEST_F(AppLoggerFileTest, AFileInAFolderThatTakesNoOtherIsOverwritten)
{
    const TemporaryFolder folder;
    const CString path(folder.MakeFolder("closed") + "/App.log");
    const auto content = [&] { return folder.Read("closed/App.log"); };
    folder.Write("closed/App.log", LogBytes({{"", "old"}}));
    const uid_t user = geteuid();
    const uid_t nobody = user == 0 ? 65534 : user;
    EXPECT_EQ(chown(path, nobody, gid_t(-1)), 0);
    chmod(folder.Path().c_str(), 0755);
    chmod(folder.Path("closed").c_str(), 0555);
    ASSERT_EQ(seteuid(nobody), 0);

    LogFile file;
    LogEntries entries;
    entries.Add({DateTime(2025, 1, 1, 0, 0, 0), "", "new"}, true);
    EXPECT_TRUE(file.Write(path, "App", 500, entries));
    const std::string whole = content();
    EXPECT_EQ(LinesIn(whole), (StoredLines{{"", "old"}, {"", "new"}}));
    entries.Add({DateTime(2025, 1, 1, 0, 0, 0), "{wait}", CString('x', 100)}, true);
    {
        const FullDisk disk(whole.size() + 10);
        EXPECT_THROW(file.Write(path, "App", 500, entries), CFileException);
        EXPECT_EQ(content(), whole);
    }
    EXPECT_TRUE(file.Write(path, "App", 1, entries));
    EXPECT_EQ(LinesIn(content()), (StoredLines{{"{wait}", std::string(100, 'x')}}));
    EXPECT_EQ(seteuid(user), 0);
    chmod(folder.Path("closed").c_str(), 0755);
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
    std::filesystem::remove_all(home.State());
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
        const std::string aside = home.Path() + ".damaged" + (kept < 2 ? "" : std::to_string(kept));
        ASSERT_EQ(UserSettings::ReadFile(aside), isKept ? bytes : "");
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
        std::vector<pid_t> children;
        for (const char* name : {"x", "y"})
            children.push_back(InChild([&] { AddNumbers(1, 20, name); }));
        std::vector<std::thread> threads;
        for (char name = 'a'; name < 'i'; ++name)
            threads.emplace_back([name] { AddNumbers(1, 20, std::string(1, name)); });
        for (std::thread& thread : threads)
            thread.join();
        for (const pid_t child : children)
            waitpid(child, nullptr, 0);
        const StoredLines lines = home.Lines();
        EXPECT_EQ(lines.size(), bound == 60 ? 60U : 1U + 10U * 20U);
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
        const TemporaryFolder folder;
        const CString path(folder.Path("App.log"));
        const std::size_t bound = 1 + random.Below(8);
        Writer writers[3];
        StoredLines all;
        const auto trim = [&](StoredLines& lines) {
            while (lines.size() > bound)
                lines.erase(lines.begin());
        };
        for (int step = 0; step < 40; ++step) {
            Writer& writer = writers[random.Below(3)];
            const bool isReadOnly = folder.Has("App.log") && random.OneIn(8);
            chmod(path, isReadOnly ? 0444 : 0644);
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
            ASSERT_EQ(LinesIn(folder.Read("App.log")), all) << "round " << round << " step " << step;
        }
    }
}

} // namespace
