// What a program that is started has of its host's: nothing.
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ExeUtils.h"
#include "platform/posix/CommandLine.h"
#include "support/Cases.h"
#include "support/TemporaryFolder.h"

namespace {

TEST(CommandLine, IsCutAsThePlatformsRuntimeCutsIt)
{
    for (const auto& [line, words] : Cases<2>("command lines")) {
        std::string joined;
        for (const std::string& word : CommandLine::Split(line))
            joined += word + '|';
        EXPECT_EQ(joined, words) << line;
    }
}

std::string Lines(const std::string& text, const std::string& begin)
{
    std::string lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with(begin))
            lines += line + '\n';
    return lines;
}

TEST(LaunchOnPosix, GivesTheProgramNothingOfTheHosts)
{
    const TemporaryFolder folder;
    const CString script(folder.Write("look", "#!/bin/sh\nls -l /proc/$$/fd | sed 's/.* \\([0-9]* ->\\)/fd "
                                              "\\1/' >\"$0.new\"\nmv \"$0.new\" \"$0.said\"\n"));
    chmod(script, 0700);
    // The host's files, its input too, stay open in a program unless they are closed: this one is not marked.
    const int secret = open(folder.Write("secret", "").c_str(), O_RDONLY);
    const int input = dup(0);
    ASSERT_TRUE(fcntl(secret, F_DUPFD, 200) == 200 && dup2(secret, 0) == 0);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked, oldMask, nowMask;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &oldMask);
    ASSERT_TRUE(ExeUtils::LaunchApp(script));
    const std::string files = folder.Await("look.said");
    ASSERT_TRUE(ExeUtils::LaunchApp("/bin/cp", "/proc/self/status state", folder.Path())); // its own state
    const std::string state = folder.Await("state", [](const std::string& lines) {
        return !Lines(lines, "nonvoluntary").empty(); // the last one
    });
    pthread_sigmask(SIG_SETMASK, &oldMask, &nowMask);
    std::signal(SIGPIPE, before);
    dup2(input, 0);
    for (const int file : {secret, input, 200})
        close(file);
    EXPECT_TRUE(sigismember(&nowMask, SIGUSR1) && !sigismember(&nowMask, SIGTERM));
    EXPECT_EQ(files.find("secret"), std::string::npos) << files;
    EXPECT_NE(files.find("fd 0 -> /dev/null"), std::string::npos) << files;
    EXPECT_EQ(files.find("/dev/null"), files.rfind("/dev/null")) << files;
    EXPECT_EQ(Lines(state, "SigBlk") + Lines(state, "SigIgn"),
              "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
    EXPECT_NE(Lines(state, "NSsid"), "NSsid:\t" + std::to_string(getsid(0)) + "\n");
    EXPECT_NE(Lines(state, "PPid"), "PPid:\t" + std::to_string(getpid()) + "\n");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1); // the host has no child, not even a dead one
}

TEST(LaunchOnPosix, WorksWithoutStandardFilesAndFromManyThreads)
{
    const TemporaryFolder folder;
    const CString script(folder.Write("many", "#!/bin/sh\ncat || exit\necho \"$1\" >>\"$0.log\"\n"));
    chmod(script, 0700);
    const int saved[] = {dup(0), dup(1), dup(2)};
    for (int file = 0; file < 3; ++file)
        close(file);
    const bool isStarted = ExeUtils::LaunchApp(script, "first");
    const bool isRefused = !ExeUtils::LaunchApp(folder.Path("none"));
    for (int file = 0; file < 3; ++file) {
        dup2(saved[file], file);
        close(saved[file]);
    }
    EXPECT_TRUE(isStarted && isRefused);

    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int run = 0; run < 10; ++run) {
                EXPECT_TRUE(ExeUtils::LaunchApp(script, "again"));
                EXPECT_FALSE(ExeUtils::LaunchApp(script, "", "/none"));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    const std::string log =
        folder.Await("many.log", [](const std::string& lines) { return lines.size() == 6 + 40 * 6; });
    EXPECT_EQ(log.size(), 6U + 40 * 6) << log;
}

} // namespace
