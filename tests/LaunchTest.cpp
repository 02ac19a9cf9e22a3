#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "ExeUtils.h"
#include "ExternalAppRun.h"
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

class Launch : public testing::Test {
protected:
    // A script that leaves what it prints in the file "said" as soon as it is complete.
    CString Script(const std::string& name, const std::string& commands)
    {
        const std::string said = m_folder.Path("said");
        const std::string path =
            m_folder.Write(name, "#!/bin/sh\n{\n" + commands + "\n} >'" + said + ".new' 2>&1\nmv '" + said +
                                     ".new' '" + said + "'\n");
        chmod(path.c_str(), 0700);
        return CString(path);
    }
    // What is in the file as soon as it is complete.
    template <class IsComplete>
    std::string Await(const char* name, IsComplete isComplete)
    {
        for (int tries = 0; tries < 6000 && !isComplete(m_folder.Read(name)); ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return m_folder.Read(name);
    }
    std::string AwaitSaid()
    {
        const std::string said = Await("said", [&](const std::string&) { return m_folder.Has("said"); });
        std::filesystem::remove(m_folder.Path("said"));
        return said;
    }

    TemporaryFolder m_folder;
};

TEST_F(Launch, StartsTheProgramInItsFolderWithItsArguments)
{
    const CString script = Script("show \"it", "pwd -P; for word; do echo \"<$word>\"; done; cat");
    const std::string folder = std::filesystem::canonical(m_folder.MakeFolder("in here")).string();
    ASSERT_TRUE(ExeUtils::LaunchApp(script, "a \"b c\" \"\" $HOME ; \xE9", CString(folder), "title", true));
    EXPECT_EQ(AwaitSaid(), folder + "\n<a>\n<b c>\n<>\n<$HOME>\n<;>\n<\xE9>\n"); // and no input
    ASSERT_TRUE(ExeUtils::LaunchApp(script));
    EXPECT_EQ(AwaitSaid(), std::filesystem::current_path().string() + "\n");
    CString backslashes(folder);
    backslashes.Replace('/', '\\');
    const CString relative(std::filesystem::proximate(script.GetString()).string()); // to the host's folder
    ASSERT_TRUE(ExeUtils::LaunchApp(relative, "", backslashes));
    EXPECT_EQ(AwaitSaid(), folder + "\n");
    ExternalAppRun app;
    app.SetPath(script);
    app.SetArgs("one");
    app.SetInitDir("/");
    ASSERT_TRUE(app.Run());
    EXPECT_EQ(AwaitSaid(), "/\n<one>\n");
}

TEST_F(Launch, SaysWhatDoesNotStart)
{
    const CString script = Script("script", "echo started");
    const CString plain(m_folder.Write("plain", "echo started"));
    const CString noFormat(m_folder.Write("noFormat", "echo started")); // a shell would run it
    chmod(noFormat, 0700);
    const CString folder(m_folder.Path());
    const CString nul("\0", 1);
    const CString cases[][3] = {
        {"", "", folder},           {folder + "none", "", folder}, {folder, "", folder},
        {plain, "", folder},        {noFormat, "", folder},        {script, "", plain},
        {script, "", folder + nul}, {script + nul, "", folder},    {script, "a" + nul, folder},
        {"sh", "", folder}};
    for (const auto& [path, arguments, initialFolder] : cases)
        EXPECT_FALSE(ExeUtils::LaunchApp(path, arguments, initialFolder)) << path << " in " << initialFolder;
    EXPECT_FALSE(m_folder.Has("said") || m_folder.Has("said.new"));
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

TEST_F(Launch, GivesTheProgramNothingOfTheHosts)
{
    const CString script = Script("look", "ls -l /proc/$$/fd | sed 's/.* \\([0-9]* ->\\)/fd \\1/'");
    // The host's files, its input too, stay open in a program unless they are closed: this one is not marked.
    const int secret = open(m_folder.Write("secret", "").c_str(), O_RDONLY);
    const int input = dup(0);
    ASSERT_TRUE(fcntl(secret, F_DUPFD, 200) == 200 && dup2(secret, 0) == 0);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked, oldMask, nowMask;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &oldMask);
    ASSERT_TRUE(ExeUtils::LaunchApp(script));
    const std::string files = AwaitSaid();
    ASSERT_TRUE(ExeUtils::LaunchApp("/bin/cp", "/proc/self/status state", m_folder.Path())); // its own state
    const std::string state = Await("state", [](const std::string& lines) {
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

TEST_F(Launch, WorksWithoutStandardFilesAndFromManyThreads)
{
    const CString script(m_folder.Write("many", "#!/bin/sh\ncat || exit\necho \"$1\" >>\"$0.log\"\n"));
    chmod(script, 0700);
    const int saved[] = {dup(0), dup(1), dup(2)};
    for (int file = 0; file < 3; ++file)
        close(file);
    const bool isStarted = ExeUtils::LaunchApp(script, "first");
    const bool isRefused = !ExeUtils::LaunchApp(m_folder.Path("none"));
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
        Await("many.log", [](const std::string& lines) { return lines.size() == 6 + 40 * 6; });
    EXPECT_EQ(log.size(), 6U + 40 * 6) << log;
}

} // namespace
