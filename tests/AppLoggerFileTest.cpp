#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "persist/LogFile.h"
#include "platform/Platform.h"
#include "support/LogFiles.h"
#include "support/TemporaryFolder.h"

namespace {

class AppLoggerFileTest : public testing::Test {
protected:
    LogHome home;
};

const std::set<std::string> OnlyTheLog = {"App.log"};

pid_t InChild(const std::function<void()>& work)
{
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    return child;
}

void AddNumbers(int first, int last, const std::string& before = "")
{
    for (int i = first; i <= last; ++i)
        AppLogger::AddLine(before + std::to_string(i));
}

std::vector<int> NumbersIn(const StoredLines& lines, const std::string& before = "")
{
    std::vector<int> numbers;
    for (const StoredLine& line : lines)
        if (line.marker.empty() && line.text.starts_with(before))
            numbers.push_back(std::stoi(line.text.substr(before.size())));
    return numbers;
}

// One after the other, up to the last one.
testing::AssertionResult EndsAt(const std::vector<int>& numbers, int last)
{
    for (std::size_t i = 0; i < numbers.size(); ++i)
        if (numbers[i] != last - static_cast<int>(numbers.size() - 1 - i))
            return testing::AssertionFailure()
                   << numbers[i] << " is number " << i << " of " << numbers.size();
    return numbers.empty() ? testing::AssertionFailure() << "nothing" : testing::AssertionSuccess();
}

// ---- the death of the process ---------------------------------------------------------------------------

TEST_F(AppLoggerFileTest, NoLineThatAddLineReturnedFromIsLostWhenTheProcessIsKilled)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    home.Start();
    AppLogger::DeleteInstance();
    int last = 0;
    constexpr int kills = 400;
    for (int kill = 0; kill < kills; ++kill) {
        int acknowledged[2];
        ASSERT_EQ(pipe(acknowledged), 0);
        const pid_t child = InChild([&] {
            AppLogger::SetAppName("App");
            for (int number = last + 1;; ++number) {
                AppLogger::AddLine(std::to_string(number));
                if (write(acknowledged[1], &number, sizeof number) < 0)
                    return;
            }
        });
        close(acknowledged[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 12000));
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        int seen = last;
        while (read(acknowledged[0], &seen, sizeof seen) == sizeof seen) {
        }
        close(acknowledged[0]);
        waitpid(child, nullptr, 0);
        const StoredLines lines = home.Lines();
        const std::vector<int> numbers = NumbersIn(lines);
        const int inFile = numbers.empty() ? 0 : numbers.back();
        ASSERT_TRUE(inFile == seen || inFile == seen + 1) << inFile << " in the file, returned from " << seen;
        ASSERT_TRUE(numbers.empty() || EndsAt(numbers, inFile));
        ASSERT_LE(lines.size(), 500U);
        last = inFile;
    }
    std::printf("%d processes killed while they added %d lines\n", kills, last);
    EXPECT_GT(last, kills);
    home.Start();
    EXPECT_EQ(home.FilesThere(), OnlyTheLog);
}

// ---- files that cannot be written -----------------------------------------------------------------------

// The disk is full from a size on, as long as this lives.
class FullDisk {
public:
    explicit FullDisk(rlim_t size)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        m_handler = signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before;
    sighandler_t m_handler;
};

TEST_F(AppLoggerFileTest, LinesWaitWhileTheFileCannotBeWritten)
{
    home.Start();
    HANDLE handle = nullptr;
    std::optional<FullDisk> disk;
    const std::pair<std::function<void()>, std::function<void()>> obstacles[] = {
        {[&] { disk.emplace(home.Bytes().size() + 10); }, [&] { disk.reset(); }},
        {[&] { chmod(home.Path().c_str(), 0444); }, [&] { chmod(home.Path().c_str(), 0644); }},
        {[&] {
             handle = CreateFileA(home.Path().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
         },
         [&] { CloseHandle(handle); }},
    };
    StoredLines expected = {Started};
    for (const auto& [block, unblock] : obstacles) {
        block();
        const std::string before = home.Bytes();
        for (int i = 0; i < 3; ++i) {
            AppLogger::AddLine("{wait} " + std::string(200, 'x'));
            expected.push_back({"{wait}", std::string(200, 'x')});
            EXPECT_EQ(home.Bytes(), before);
            EXPECT_EQ(home.FilesThere(), OnlyTheLog);
        }
        unblock();
        EXPECT_EQ(home.Bytes(), before);
        AppLogger::AddLine("free");
        expected.push_back({"", "free"});
        EXPECT_EQ(home.Lines(), expected);
        EXPECT_EQ(LogHome::Texts().size(), expected.size());
    }
    chmod(home.Path().c_str(), 0444);
    AppLogger::AddLine("waits for another logger");
    AppLogger::DeleteInstance();
    chmod(home.Path().c_str(), 0644);
    AppLogger::GetInstance();
    AppLogger::ForceWrite();
    EXPECT_EQ(home.Lines().size(), expected.size() + 1);
}

TEST_F(AppLoggerFileTest, AFileInAFolderThatTakesNoOtherIsOverwritten)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFolder("closed") + "/App.log";
    folder.Write("closed/App.log", LogBytes({{"", "old"}}));
    const uid_t user = geteuid();
    const uid_t nobody = user == 0 ? 65534 : user;
    EXPECT_EQ(chown(path.c_str(), nobody, gid_t(-1)), 0);
    chmod(folder.Path().c_str(), 0755);
    chmod(folder.Path("closed").c_str(), 0555);
    ASSERT_EQ(seteuid(nobody), 0);

    LogFile file;
    LogEntries entries;
    entries.Add(LogEntry::FromLine("new"), true);
    EXPECT_TRUE(file.Write(path.c_str(), "App", 500, entries));
    const std::string whole = folder.Read("closed/App.log");
    EXPECT_EQ(LinesIn(whole), (StoredLines{{"", "old"}, {"", "new"}}));
    entries.Add(LogEntry::FromLine("{wait} " + std::string(100, 'x')), true);
    {
        const FullDisk disk(whole.size() + 10);
        EXPECT_THROW(file.Write(path.c_str(), "App", 500, entries), CFileException);
        EXPECT_EQ(folder.Read("closed/App.log"), whole);
    }
    EXPECT_TRUE(file.Write(path.c_str(), "App", 2, entries));
    EXPECT_EQ(LinesIn(folder.Read("closed/App.log")).size(), 2U);

    folder.Write("closed/App.log", "no log"); // which could not be kept aside
    EXPECT_FALSE(file.Write(path.c_str(), "App", 500, entries));
    EXPECT_EQ(folder.Read("closed/App.log"), "no log");
    EXPECT_EQ(seteuid(user), 0);
    chmod(folder.Path("closed").c_str(), 0755);
}

TEST_F(AppLoggerFileTest, OddPlacesAreLeftAlone)
{
    std::filesystem::create_directories(home.Path()); // a folder of the log's name
    home.Start();
    AppLogger::AddLine("waits");
    EXPECT_TRUE(std::filesystem::is_directory(home.Path()));
    EXPECT_EQ(home.FilesThere(), OnlyTheLog);
    std::filesystem::remove_all(home.StateFolder()); // and then not even the folders are there
    AppLogger::AddLine("no longer");
    EXPECT_EQ(home.Lines(), (StoredLines{Started, {"", "waits"}, {"", "no longer"}}));
}

TEST_F(AppLoggerFileTest, AWriterThatHangsIsPassedBy)
{
    home.Start();
    const HANDLE handle = CreateFileA((home.Path() + ".new").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      CREATE_ALWAYS, 0, nullptr);
    AddNumbers(1, 100); // one of them waits
    EXPECT_TRUE(EndsAt(NumbersIn(home.Lines()), 100));
    CloseHandle(handle);
    AddNumbers(101, 101);
    EXPECT_TRUE(EndsAt(NumbersIn(home.Lines()), 101));
    EXPECT_EQ(home.FilesThere(), OnlyTheLog);
}

// ---- damaged files --------------------------------------------------------------------------------------

TEST_F(AppLoggerFileTest, DamagedFilesAreKeptAsideAndReadAsFarAsTheyGo)
{
    const StoredLines three = {{"{a}", "one"}, {"", "two"}, {"{c}", ""}};
    const std::string whole = LogBytes(three);
    const std::size_t header = LogBytes({}).size();
    std::string claiming = whole;
    claiming.replace(header - 8, 8, Number(~0ULL, 8));
    std::vector<std::pair<std::string, std::size_t>> cases = {
        // with how many entries are read
        {LogBytes(three, 5), 0},
        {LogBytes(three, 8), 0},
        {LogBytes(three, 7, "Corvane Software Log"), 0},
        {"plain text\n", 0},
        {std::string(100000, '\xFF'), 0},
        {claiming, 3},
        {whole.substr(0, whole.size() - BytesOfLine(three[2]).size()) + BytesOfLine(three[2], 3), 2},
    };
    for (std::size_t length = 1; length < whole.size(); ++length) {
        std::size_t end = header, entries = 0;
        while ((end += BytesOfLine(three[entries]).size()) <= length)
            ++entries;
        cases.emplace_back(whole.substr(0, length), entries);
    }
    std::size_t number = 0;
    for (const auto& [bytes, left] : cases) {
        SCOPED_TRACE(HexOf(bytes).substr(0, 400));
        home.Write(bytes);
        home.Start();
        StoredLines expected(three.begin(), three.begin() + static_cast<std::ptrdiff_t>(left));
        expected.push_back(Started);
        ASSERT_EQ(home.Lines(), expected);
        ++number;
        const std::string aside = home.Path() + ".damaged" + (number == 1 ? "" : std::to_string(number));
        ASSERT_EQ(UserSettings::ReadFile(aside), bytes);
        ASSERT_EQ(home.FilesThere().size(), number + 1);
        home.Forget();
    }
}

TEST_F(AppLoggerFileTest, WholeFilesAreNotKeptAside)
{
    const StoredLines one = {{"", "old"}};
    for (const auto& [bytes, expected] : {std::pair(LogBytes(one, 6), one),
                                          {LogBytes(one) + "more", one},
                                          {LogBytes({}), StoredLines()},
                                          {std::string(), StoredLines()}}) {
        home.Write(bytes);
        home.Start();
        StoredLines lines = expected;
        lines.push_back(Started);
        EXPECT_EQ(home.Lines(), lines);
        EXPECT_EQ(home.FilesThere(), OnlyTheLog);
        home.Forget();
    }
}

// ---- several writers ------------------------------------------------------------------------------------

TEST_F(AppLoggerFileTest, EightThreadsAddAtOnce)
{
    home.Start();
    std::vector<std::thread> threads;
    for (char name = 'a'; name < 'i'; ++name)
        threads.emplace_back([name] { AddNumbers(1, 60, std::string(1, name)); });
    for (std::thread& thread : threads)
        thread.join();
    for (char name = 'a'; name < 'i'; ++name) {
        const std::vector<int> numbers = NumbersIn(home.Lines(), std::string(1, name));
        EXPECT_TRUE(EndsAt(numbers, 60));
        EXPECT_EQ(numbers.size(), 60U);
    }
}

TEST_F(AppLoggerFileTest, ProcessesKeepEachOthersLines)
{
    home.Start();
    AppLogger::DeleteInstance();
    for (const int count : {150, 500}) { // below the bound and beyond it
        std::vector<pid_t> children;
        for (const std::string name : {"a", "b", "c"})
            children.push_back(InChild([&] {
                AppLogger::SetAppName("App");
                AddNumbers(1, count, name);
            }));
        for (const pid_t child : children)
            waitpid(child, nullptr, 0);
        const StoredLines lines = home.Lines();
        EXPECT_EQ(lines.size(), count == 150 ? 1U + 3U + 450U : 500U);
        for (const char* name : {"a", "b", "c"}) {
            const std::vector<int> numbers = NumbersIn(lines, name);
            EXPECT_TRUE(numbers.empty() || EndsAt(numbers, count)) << name;
        }
        std::filesystem::remove(home.Path());
    }
}

TEST_F(AppLoggerFileTest, ADeletedFileComesBackWhole)
{
    home.Start();
    AddNumbers(1, 10);
    const std::string before = home.Bytes();
    for (const bool isEmptied : {false, true}) {
        isEmptied ? home.Write("") : void(std::filesystem::remove(home.Path()));
        AppLogger::ForceWrite();
        EXPECT_EQ(home.Bytes(), before);
    }
    home.Write(LogBytes({{"", "edited", 800000}})); // by hand, with a time to come
    AddNumbers(11, 11);
    StoredLines lines = home.Lines();
    EXPECT_EQ(lines.at(lines.size() - 2).text, "edited");
    lines.erase(lines.end() - 2);
    EXPECT_TRUE(EndsAt(NumbersIn(lines), 11));
}

// Several lists with a file in common, against one list of all lines in the order in which they got there.
// All carry the same second, so that only the order of writing decides.
TEST_F(AppLoggerFileTest, WritersAgreeWithOneListOfAllLines)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 40; ++round) {
        const TemporaryFolder folder;
        const CString path(folder.Path("App.log"));
        const std::size_t bound = 1 + random() % 8;
        struct Writer {
            LogFile file;
            LogEntries entries;
            std::vector<std::string> pending;
        } writers[3];
        std::vector<std::string> all;
        bool isReadOnly = false;
        for (int step = 0; step < 40; ++step) {
            Writer& writer = writers[random() % 3];
            if (folder.Has("App.log") && random() % 8 == 0)
                chmod(path, (isReadOnly = !isReadOnly) ? 0444 : 0644);
            const std::string text = random() % 4 == 0 ? "same" : std::to_string(step);
            writer.entries.Add({DateTime(2025, 1, 1, 0, 0, 1), "", text.c_str()}, true);
            writer.entries.TrimTo(bound);
            writer.pending.push_back(text);
            if (writer.pending.size() > bound)
                writer.pending.erase(writer.pending.begin());
            ASSERT_EQ(writer.file.Write(path, "App", bound, writer.entries), !isReadOnly);
            if (isReadOnly)
                continue;
            all.insert(all.end(), writer.pending.begin(), writer.pending.end());
            writer.pending.clear();
            all.erase(all.begin(), all.end() - static_cast<std::ptrdiff_t>(std::min(bound, all.size())));
            std::vector<std::string> inFile;
            for (const StoredLine& line : LinesIn(folder.Read("App.log")))
                inFile.push_back(line.text);
            ASSERT_EQ(inFile, all) << "round " << round << " step " << step;
        }
    }
}

} // namespace
