// Programs are started by an intermediary that the caller forks and that forks the program in turn. With the
// intermediary gone, the program is nobody's child, so that it leaves no zombie and the caller's own handling
// of children never meets it. A pipe that closes when the program begins tells the caller how it went.
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
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/posix/CommandLine.h"
#include "platform/posix/Failures.h"
#include "platform/posix/FileDescriptor.h"
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

[[noreturn]] void ReportAndExit(int report, bool isOfFolder) noexcept
{
    const Failure failure{isOfFolder, errno};
    [[maybe_unused]] const ssize_t ignored = write(report, &failure, sizeof failure);
    _exit(1);
}

// Leaves open the three standard files and the report, and answers where the report is now.
int KeepOnlyStandardFiles(int report) noexcept
{
    if (report != FirstBeyondStandard)
        dup3(report, FirstBeyondStandard, O_CLOEXEC);
    closefrom(FirstBeyondStandard + 1);
    const int nothing = open("/dev/null", O_RDWR); // may take the place of one that the caller has closed
    dup2(nothing, STDIN_FILENO);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(output, F_GETFD) < 0)
            dup2(nothing, output);
    if (nothing > FirstBeyondStandard)
        close(nothing);
    return FirstBeyondStandard;
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

[[noreturn]] void BecomeProgram(const Launch& launch, int report) noexcept
{
    report = KeepOnlyStandardFiles(report);
    ResetSignals();
    if (!launch.folder.empty() && chdir(launch.folder.c_str()) != 0)
        ReportAndExit(report, true);
    execv(launch.program.c_str(), launch.arguments.data());
    ReportAndExit(report, false);
}

[[noreturn]] void Mediate(const Launch& launch, int report) noexcept
{
    setsid();
    const pid_t program = _Fork();
    if (program == 0)
        BecomeProgram(launch, report);
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
pid_t ForkIntermediary(const Launch& launch, int report) noexcept
{
    const BlockedSignals blocked;
    const pid_t intermediary = _Fork();
    if (intermediary == 0)
        Mediate(launch, report);
    return intermediary;
}

// The caller may have closed its standard files; the pipe must not take their places.
FileDescriptor BeyondStandard(FileDescriptor file) noexcept
{
    return file.Get() >= FirstBeyondStandard
               ? std::move(file)
               : FileDescriptor(fcntl(file.Get(), F_DUPFD_CLOEXEC, FirstBeyondStandard));
}

Failure AwaitReport(int pipe) noexcept
{
    Failure failure = {};
    ssize_t got = 0;
    while ((got = read(pipe, &failure, sizeof failure)) < 0 && errno == EINTR)
        ;
    return got == sizeof failure ? failure : Failure{};
}

Failure Start(const Launch& launch) noexcept
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {false, errno};
    const FileDescriptor reading = BeyondStandard(FileDescriptor(ends[0]));
    FileDescriptor writing = BeyondStandard(FileDescriptor(ends[1]));
    const bool hasPipe = reading.IsOpen() && writing.IsOpen();
    const pid_t intermediary = hasPipe ? ForkIntermediary(launch, writing.Get()) : -1;
    if (intermediary < 0)
        return {false, errno};
    writing = FileDescriptor();
    const Failure failure = AwaitReport(reading.Get());
    while (waitpid(intermediary, nullptr, 0) < 0 &&
           errno == EINTR) // another error: somebody else waited for it
        ;
    return failure;
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
