// Programs are started by an intermediary that the caller forks and that forks the program in turn. With the
// intermediary gone, the program is nobody's child, so that it leaves no zombie and the caller's own handling
// of children never meets it. The intermediary ends when the program runs or has failed, and the failure then
// stands in memory that all three share: no pipe, whose ends a fork by another thread could hold open.
//
// Between fork and exec only async-signal-safe functions are called: another thread of the caller may have
// held any lock at that moment.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <new>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/posix/CommandLine.h"
#include "platform/posix/Failures.h"
#include "platform/posix/PosixErrors.h"
#include "platform/posix/SystemPath.h"

namespace {

constexpr int FirstBeyondStandard = 3; // 0, 1, 2 are input, output, error output

// What went wrong; nothing has while the error is 0.
struct Failure {
    bool isOfFolder;
    int error;
};

// All that the program needs, made before the fork.
struct Launch {
    std::string program;
    std::string folder; // empty for the caller's own
    std::vector<std::string> words;
    std::vector<char*> arguments;
};

// ---- in the new processes -------------------------------------------------------------------------------

[[noreturn]] void ReportAndExit(Failure& report, bool isOfFolder) noexcept
{
    report = {isOfFolder, errno};
    _exit(1);
}

// The caller may have closed any of the three.
void KeepOnlyStandardFiles() noexcept
{
    closefrom(FirstBeyondStandard);
    close(STDIN_FILENO);
    open("/dev/null", O_RDWR); // takes the free place
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(output, F_GETFD) < 0)
            dup2(STDIN_FILENO, output);
}

void ResetSignals() noexcept
{
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void BecomeProgram(const Launch& launch, Failure& report) noexcept
{
    KeepOnlyStandardFiles();
    ResetSignals();
    if (!launch.folder.empty() && chdir(launch.folder.c_str()) != 0)
        ReportAndExit(report, true);
    execv(launch.program.c_str(), launch.arguments.data());
    ReportAndExit(report, false);
}

[[noreturn]] void Mediate(const Launch& launch, Failure& report) noexcept
{
    setsid();
    report = {};
    // It waits until the program runs or has failed. What the program does meanwhile to the intermediary's
    // memory is wanted (the report) or meets nothing that is used again, which the lints cannot know.
    const pid_t program = vfork(); // NOLINT(clang-analyzer-security.insecureAPI.vfork)
    if (program == 0)
        BecomeProgram(launch, report); // NOLINT(clang-analyzer-unix.Vfork)
    if (program < 0)
        ReportAndExit(report, false);
    _exit(0);
}

// ---- in the caller --------------------------------------------------------------------------------------

// No handler of the caller's runs in a new process: signals are blocked until those have been reset there.
class BlockedSignals {
public:
    BlockedSignals() noexcept
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before;
};

// _Fork, because it takes no locks and calls nothing that others registered for a fork.
pid_t ForkIntermediary(const Launch& launch, Failure& report) noexcept
{
    const BlockedSignals blocked;
    const pid_t intermediary = _Fork();
    if (intermediary == 0)
        Mediate(launch, report);
    return intermediary;
}

// A failure in memory that is shared with the processes forked from here; nullptr without memory.
class SharedFailure {
public:
    SharedFailure() noexcept
        : m_memory(mmap(nullptr, sizeof(Failure), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
    }
    SharedFailure(const SharedFailure&) = delete;
    SharedFailure& operator=(const SharedFailure&) = delete;
    ~SharedFailure()
    {
        if (Get() != nullptr)
            munmap(m_memory, sizeof(Failure));
    }

    Failure* Get() const noexcept
    {
        return m_memory == MAP_FAILED ? nullptr : static_cast<Failure*>(m_memory);
    }

private:
    void* m_memory;
};

Failure Start(const Launch& launch) noexcept
{
    const SharedFailure shared;
    Failure* const failure = shared.Get();
    if (failure == nullptr)
        return {false, errno};
    *failure = {false, ECHILD}; // should the intermediary come to a violent end
    const pid_t intermediary = ForkIntermediary(launch, *failure);
    if (intermediary < 0)
        return {false, errno};
    while (waitpid(intermediary, nullptr, 0) < 0 &&
           errno == EINTR) // another error: somebody else waited for it
        ;
    return *failure;
}

// The path from the root on, so that it holds in every folder.
std::string FullPath(const SystemPath& path)
{
    const bool isFull = path.View().starts_with('/');
    return (isFull ? std::string() : std::filesystem::current_path().string() + '/') +
           std::string(path.View());
}

Launch PreparedLaunch(const SystemPath& program, const char* commandLine, const SystemPath& folder)
{
    Launch launch{FullPath(program), std::string(folder.View()), {}, {}};
    if (commandLine != nullptr)
        launch.words = CommandLine::Split(commandLine);
    launch.words.resize(std::max<std::size_t>(launch.words.size(), 1));
    launch.words.front() = launch.program;
    for (std::string& word : launch.words)
        launch.arguments.push_back(word.data());
    launch.arguments.push_back(nullptr);
    return launch;
}

} // namespace

BOOL CreateProcessA(const char* program, char* commandLine, void*, void*, BOOL inheritHandles, DWORD,
                    void* environment, const char* folder, STARTUPINFOA*,
                    PROCESS_INFORMATION* process) noexcept
try {
    if (inheritHandles || environment != nullptr || process == nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    const SystemPath programPath(program);
    const SystemPath folderPath(folder);
    if (!programPath.IsUsable())
        return Fail(ErrorOfUnusable(programPath));
    if (folder != nullptr && !folderPath.IsUsable())
        return Fail(ERROR_DIRECTORY);
    *process = {};
    const Failure failure = Start(PreparedLaunch(programPath, commandLine, folderPath));
    if (failure.error == 0)
        return TRUE;
    return Fail(failure.isOfFolder ? ERROR_DIRECTORY : ErrorForPath(programPath, failure.error));
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
} catch (const std::filesystem::filesystem_error&) { // the current folder is gone
    return Fail(ERROR_PATH_NOT_FOUND);
}
