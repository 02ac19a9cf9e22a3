#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <new>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/Platform.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD ShareReadWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;

class OpenFilesPlatformTest : public testing::Test {
protected:
    OpenFilesPlatformTest()
    {
        folder.Write("existing", "0123456789");
        folder.Write("readonly", "0123456789");
        folder.MakeFolder("folder");
        chmod(folder.Path("readonly").c_str(), 0444);
    }

    HANDLE Open(const std::string& name, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING) const
    {
        SetLastError(77);
        return CreateFileA(folder.Path(name).c_str(), access, share, nullptr, disposition,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    // The error of opening, with "opened" in front if there was a handle, which is closed again.
    std::string Outcome(const std::string& name, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING)
    {
        const HANDLE handle = Open(name, access, share, disposition);
        const std::string error = std::to_string(GetLastError());
        if (handle == INVALID_HANDLE_VALUE)
            return error;
        EXPECT_TRUE(CloseHandle(handle));
        return "opened " + error;
    }

    TemporaryFolder folder;
};

BOOL MoveTo(HANDLE handle, int64 distance, DWORD method = FILE_BEGIN)
{
    return SetFilePointerEx(handle, LARGE_INTEGER{distance}, nullptr, method);
}

TEST_F(OpenFilesPlatformTest, OddNamesFailOrOpen)
{
    const struct {
        const char* name;
        DWORD access;
        std::array<const char*, 5> answers; // CREATE_NEW, CREATE_ALWAYS, OPEN_EXISTING, OPEN_ALWAYS, TRUNCATE
    } cases[] = {
        {"readonly", GENERIC_READ, {"80", "5", "opened 0", "opened 183", "87"}},
        {"existing\\", GENERIC_READ, {"123", "123", "123", "123", "87"}},
        {"existing/below", GENERIC_READ, {"3", "3", "3", "3", "87"}},
        {"new/", GENERIC_WRITE, {"123", "123", "2", "123", "2"}},
        {"folder/", GENERIC_WRITE, {"80", "5", "5", "5", "5"}},
        {"folder\\..\\existing", ReadWrite, {"80", "opened 183", "opened 0", "opened 183", "opened 0"}},
        {"a*b?<c>|\"d. ", ReadWrite, {"opened 0", "opened 183", "opened 0", "opened 183", "opened 0"}},
    };
    for (const auto& row : cases)
        for (DWORD disposition = CREATE_NEW; disposition <= TRUNCATE_EXISTING; ++disposition)
            EXPECT_EQ(Outcome(row.name, row.access, 0, disposition), row.answers[disposition - 1])
                << row.name << " disposition " << disposition;
    EXPECT_EQ(folder.Read("readonly"), "0123456789");
    EXPECT_EQ(CreateFileA(nullptr, GENERIC_READ, 0, nullptr, OPEN_ALWAYS, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(OpenFilesPlatformTest, LongPathsLinksAndPipes)
{
    std::string deep = "folder";
    for (int level = 0; level < 12; ++level)
        deep += "\\" + std::string(250, 'x');
    std::string forSystem = deep;
    std::replace(forSystem.begin(), forSystem.end(), '\\', '/');
    folder.MakeFolder(forSystem);
    EXPECT_EQ(Outcome(deep + "\\file", GENERIC_WRITE, 0, CREATE_NEW), "opened 0");
    EXPECT_EQ(Outcome("folder/" + std::string(256, 'x'), GENERIC_WRITE, 0, CREATE_NEW), "123");
    EXPECT_EQ(Outcome(std::string(10'000'000, '\\'), GENERIC_WRITE, 0, CREATE_NEW), "123");
    EXPECT_EQ(Outcome("\xFF\x80\n", GENERIC_WRITE, 0, CREATE_NEW), "opened 0");

    ASSERT_EQ(symlink("target", folder.Path("link").c_str()), 0);
    EXPECT_EQ(Outcome("link", GENERIC_READ, 0), "2");
    EXPECT_EQ(Outcome("link", ReadWrite, 0, CREATE_NEW), "80");
    EXPECT_EQ(Outcome("link", ReadWrite, 0, OPEN_ALWAYS), "opened 183");
    EXPECT_TRUE(folder.Has("target"));

    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0666), 0);
    EXPECT_EQ(Outcome("pipe", GENERIC_READ, 0), "opened 0"); // and nobody waits for a writer
}

TEST_F(OpenFilesPlatformTest, AFileMadeReadOnlyCanBeWrittenByItsMaker)
{
    const HANDLE handle = CreateFileA(folder.Path("new").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_READONLY, nullptr);
    DWORD done = 0;
    EXPECT_TRUE(WriteFile(handle, "abc", 3, &done, nullptr));
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(folder.Read("new"), "abc");
    EXPECT_EQ(Outcome("new", GENERIC_WRITE, 0), "5");
    const HANDLE first = Open("new", GENERIC_READ, 0); // and shared as any other
    EXPECT_EQ(Outcome("new", GENERIC_READ, ShareReadWrite), "32");
    EXPECT_TRUE(CloseHandle(first));
}

TEST_F(OpenFilesPlatformTest, PositionsAreCheckedOnBothWidths)
{
    const HANDLE handle = Open("existing", GENERIC_READ, 0);
    constexpr int64 largest = INT64_MAX;
    const struct {
        int64 distance;
        DWORD method;
        int64 position; // or minus the error
    } cases[] = {
        {-11, FILE_END, -131},
        {INT64_MIN, FILE_END, -131},
        {largest, FILE_END, -87},
        {1LL << 40, FILE_BEGIN, 1LL << 40},
        {-1, FILE_CURRENT, (1LL << 40) - 1},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.distance);
        LARGE_INTEGER position = {0};
        const BOOL moved = SetFilePointerEx(handle, LARGE_INTEGER{row.distance}, &position, row.method);
        EXPECT_EQ(moved ? position.QuadPart : -static_cast<int64>(GetLastError()), row.position);
    }
    LONG high = 1;
    EXPECT_EQ(SetFilePointer(handle, -1, &high, FILE_BEGIN), 0xFFFFFFFF); // a position, not a failure
    EXPECT_EQ(GetLastError(), 0U);
    EXPECT_EQ(high, 1);
    EXPECT_EQ(SetFilePointer(handle, 1, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    high = 0;
    EXPECT_EQ(SetFilePointer(handle, 0, &high, FILE_CURRENT), 0xFFFFFFFF); // and it stayed there
    EXPECT_EQ(high, 1);
    char byte = 0;
    DWORD done = 0;
    EXPECT_FALSE(ReadFile(handle, &byte, 1, &done, &done)); // overlapped
    EXPECT_FALSE(SetEndOfFile(handle));                     // opened for reading
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(CloseHandle(handle));
}

TEST_F(OpenFilesPlatformTest, WhatIsNoHandleIsRefused)
{
    const HANDLE closed = Open("existing", ReadWrite, 0);
    EXPECT_TRUE(CloseHandle(closed));
    int local = 0;
    const HANDLE hostile[] = {nullptr,
                              INVALID_HANDLE_VALUE,
                              closed,
                              &local,
                              reinterpret_cast<HANDLE>(1),
                              reinterpret_cast<HANDLE>(std::uintptr_t{4} << 20),
                              reinterpret_cast<HANDLE>((std::uintptr_t{4} << 20) + 4)};
    for (const HANDLE handle : hostile) {
        SCOPED_TRACE(handle);
        char byte;
        DWORD done = 99;
        LARGE_INTEGER size;
        EXPECT_FALSE(ReadFile(handle, &byte, 1, &done, nullptr));
        EXPECT_EQ(done, 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_FALSE(WriteFile(handle, "x", 1, &done, nullptr));
        EXPECT_FALSE(GetFileSizeEx(handle, &size));
        EXPECT_FALSE(MoveTo(handle, 0));
        EXPECT_FALSE(SetEndOfFile(handle));
        EXPECT_FALSE(FlushFileBuffers(handle));
        SetLastError(0);
        EXPECT_FALSE(CloseHandle(handle));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
}

TEST_F(OpenFilesPlatformTest, AFullDiskIsReportedWithWhatWasWritten)
{
    const HANDLE full = CreateFileA("/dev/full", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (full == INVALID_HANDLE_VALUE)
        GTEST_SKIP() << "no device that is always full";
    DWORD done = 99;
    EXPECT_FALSE(WriteFile(full, "x", 1, &done, nullptr));
    EXPECT_EQ(done, 0U);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_TRUE(CloseHandle(full));
}

// ---- sharing --------------------------------------------------------------------------------------------

// The process that holds a file open while this one tries.
class OtherProcess {
public:
    template <class Action>
    explicit OtherProcess(Action action)
    {
        int ready[2];
        int end[2];
        if (pipe(ready) != 0 || pipe(end) != 0)
            throw std::runtime_error("no pipe");
        m_process = fork();
        if (m_process == 0) {
            close(end[1]);
            action();
            char byte = 0;
            if (write(ready[1], &byte, 1) == 1)
                (void)!read(end[0], &byte, 1); // until the other end is closed
            _exit(0);
        }
        close(ready[1]);
        close(end[0]);
        char byte;
        if (read(ready[0], &byte, 1) != 1)
            throw std::runtime_error("the other process failed");
        close(ready[0]);
        m_end = end[1];
    }
    void Kill() { kill(m_process, SIGKILL), waitpid(m_process, nullptr, 0), m_process = -1; }
    ~OtherProcess()
    {
        close(m_end);
        if (m_process > 0)
            waitpid(m_process, nullptr, 0);
    }

private:
    pid_t m_process;
    int m_end;
};

struct Opening {
    DWORD access, share;
};

// Every access with every way to share.
std::vector<Opening> AllOpenings()
{
    std::vector<Opening> all;
    for (const DWORD access : {0U, GENERIC_READ, GENERIC_WRITE, ReadWrite})
        for (DWORD share = 0; share < 8; ++share)
            all.push_back({access, share});
    return all;
}

bool Permits(const Opening& open, const Opening& next)
{
    if (open.access == 0 || next.access == 0)
        return true;
    return ((next.access & GENERIC_READ) == 0 || (open.share & FILE_SHARE_READ) != 0) &&
           ((next.access & GENERIC_WRITE) == 0 || (open.share & FILE_SHARE_WRITE) != 0);
}

TEST_F(OpenFilesPlatformTest, EveryPairOfOpeningsAgreesWithinAProcessAndBetweenTwo)
{
    const auto checkAll = [&](const Opening& first) {
        for (const Opening& second : AllOpenings()) {
            const bool fits = Permits(first, second) && Permits(second, first);
            EXPECT_EQ(Outcome("existing", second.access, second.share), fits ? "opened 0" : "32")
                << std::hex << first.access << " share " << first.share << ", then " << second.access
                << " share " << second.share;
        }
    };
    for (const Opening& first : AllOpenings()) {
        const HANDLE held = Open("existing", first.access, first.share);
        checkAll(first);
        EXPECT_TRUE(CloseHandle(held));
        OtherProcess other([&] { Open("existing", first.access, first.share); });
        checkAll(first);
    }
}

TEST_F(OpenFilesPlatformTest, TheLocksOfADeadProcessAreGone)
{
    OtherProcess other([&] { Open("existing", ReadWrite, 0); });
    EXPECT_EQ(Outcome("existing", GENERIC_READ, ShareReadWrite), "32");
    other.Kill();
    EXPECT_EQ(Outcome("existing", GENERIC_READ, ShareReadWrite), "opened 0");
}

TEST_F(OpenFilesPlatformTest, OfTwoThatComeAtOnceExactlyOneGetsIn)
{
    struct Shared {
        std::atomic<int> tried{0}, opened{0}, closed{0};
    };
    constexpr int rounds = 1000;
    void* const memory =
        mmap(nullptr, sizeof(Shared) * rounds, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto* const shared = new (memory) Shared[rounds];
    // Without sleeping at first, so that both go on at the same moment.
    const auto await = [](const std::atomic<int>& counter) {
        for (int spin = 0; counter < 2; ++spin)
            if (spin > 5000)
                sched_yield();
    };
    const auto play = [&] {
        for (int round = 0; round < rounds; ++round) {
            const HANDLE handle = Open("existing", GENERIC_READ, 0);
            shared[round].opened += handle != INVALID_HANDLE_VALUE;
            ++shared[round].tried;
            await(shared[round].tried); // so both have tried while the winner holds the file
            CloseHandle(handle);
            ++shared[round].closed;
            await(shared[round].closed);
        }
    };
    const pid_t other = fork();
    play();
    if (other == 0)
        _exit(0);
    waitpid(other, nullptr, 0);
    for (int round = 0; round < rounds; ++round)
        EXPECT_EQ(shared[round].opened, 1) << "round " << round;
    munmap(memory, sizeof(Shared) * rounds);
}

} // namespace
