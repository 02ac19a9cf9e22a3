#include "platform/posix/RegistryTree.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <map>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/CoarseClock.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/PosixErrors.h"
#include "platform/posix/PosixPlatform.h"

namespace {

constexpr std::size_t MaxNameBytes = 255;         // the NAME_MAX of the usual file systems
constexpr std::size_t MaxKept = 256;              // answers held in memory
constexpr std::string_view Special("/%\\.\0", 5); // characters of names that have to be looked at

std::atomic<unsigned int> generation = 0;

LSTATUS Status(DWORD error)
{
    return static_cast<LSTATUS>(error);
}
LSTATUS StatusOfErrno()
{
    return Status(ErrorForErrno(errno));
}

bool IsFolder(const std::string& path)
{
    struct stat about;
    return stat(path.c_str(), &about) == 0 && S_ISDIR(about.st_mode);
}

// ---- what was asked within the last second --------------------------------------------------------------

class RecentAnswers {
public:
    template <class Ask>
    RegistryTree::Value Get(const std::string& name, Ask ask)
    {
        const std::lock_guard lock(m_mutex);
        const int64 now = CoarseClock::Now();
        const unsigned int current = generation;
        if (now >= m_end || current != m_generation || m_answers.size() >= MaxKept) {
            m_answers.clear();
            m_end = now + CoarseClock::Second;
            m_generation = current;
        }
        if (const auto known = m_answers.find(name); known != m_answers.end())
            return known->second;
        return m_answers.emplace(name, ask()).first->second;
    }

private:
    std::mutex m_mutex;
    std::map<std::string, RegistryTree::Value, std::less<>> m_answers;
    int64 m_end = 0;
    unsigned int m_generation = 0;
};

RecentAnswers& Recent()
{
    static RecentAnswers& recent = *new RecentAnswers; // for as long as code may run
    return recent;
}

bool AppendName(std::string& path, std::string_view name, RegistryTree::NameOf kind)
{
    if (name.size() > MaxNameBytes)
        return false;
    const bool isUsual = name.find_first_of(Special) == std::string_view::npos && !name.empty();
    const std::string escaped = isUsual ? std::string() : RegistryTree::EscapedName(name, kind);
    if (escaped.size() > MaxNameBytes)
        return false;
    path += '/';
    path += isUsual ? name : std::string_view(escaped);
    return true;
}

// How many bytes of the file's end are a line end.
off_t LineEndBytes(int file, off_t size)
{
    char last[2] = {};
    const off_t count = size < 2 ? size : 2;
    if (count == 0 || pread(file, last + 2 - count, static_cast<std::size_t>(count), size - count) != count ||
        last[1] != '\n')
        return 0;
    return last[0] == '\r' ? 2 : 1;
}

bool WriteAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return false;
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

namespace RegistryTree {

unsigned int Generation() noexcept
{
    return generation;
}

std::string Root()
{
    const char* const configuration = std::getenv("XDG_CONFIG_HOME");
    if (configuration != nullptr && configuration[0] == '/')
        return std::string(configuration) + "/kvt01/HKEY_CURRENT_USER";
    const char* const home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/')
        return std::string(home) + "/.config/kvt01/HKEY_CURRENT_USER";
    return {};
}

std::string EscapedName(std::string_view name, NameOf kind)
{
    if (name.empty())
        return "%";
    std::string escaped;
    for (const char c : name) {
        const bool isSpecial = c == '/' || c == '%' || c == '\0' || (c == '\\' && kind == NameOf::Value) ||
                               (c == '.' && escaped.empty());
        if (!isSpecial) {
            escaped += c;
            continue;
        }
        constexpr char Hex[] = "0123456789ABCDEF";
        escaped += '%';
        escaped += Hex[c >> 4 & 15];
        escaped += Hex[c & 15];
    }
    return escaped;
}

bool AppendKey(std::string& folder, std::string_view path)
{
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('\\'), path.size());
        if (end > 0 && !AppendName(folder, path.substr(0, end), NameOf::Key))
            return false;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return true;
}

bool AppendValue(std::string& path, std::string_view name)
{
    return AppendName(path, name, NameOf::Value);
}

bool HasKey(const std::string& folder)
{
    const auto ask = [&folder] {
        return Value{Status(IsFolder(folder) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND), 0, {}};
    };
    return Recent().Get(folder + '/', ask).status == 0;
}

Value Read(const std::string& path)
{
    return Recent().Get(path, [&path] { return ReadFile(path, ShortText); });
}

Value ReadFile(const std::string& path, std::size_t room)
{
    // Not to wait for a pipe's other end.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat about;
    if (file.Get() < 0 || fstat(file.Get(), &about) != 0)
        return {StatusOfErrno(), 0, {}};
    if (!S_ISREG(about.st_mode))
        return {Status(S_ISDIR(about.st_mode) ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED), 0, {}};
    Value value{0, static_cast<std::size_t>(about.st_size - LineEndBytes(file.Get(), about.st_size)), {}};
    if (value.length > room)
        return value;
    value.text.resize(value.length);
    std::size_t done = 0;
    while (done < value.length) {
        const ssize_t count = read(file.Get(), value.text.data() + done, value.length - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {StatusOfErrno(), 0, {}};
        if (count == 0)
            break; // it was cut meanwhile
        done += static_cast<std::size_t>(count);
    }
    value.text.resize(done);
    value.length = done;
    return value;
}

LSTATUS CreateKey(const std::string& folder)
{
    for (std::size_t end = 1; end != std::string::npos;) {
        end = folder.find('/', end + 1);
        const std::string part = folder.substr(0, end);
        if (mkdir(part.c_str(), 0700) == 0)
            ++generation;
        else if (!IsFolder(part))
            return errno == EEXIST ? Status(ERROR_ACCESS_DENIED) : StatusOfErrno();
    }
    return 0;
}

LSTATUS Write(const std::string& path, std::string_view text)
{
    std::string fresh = path.substr(0, path.rfind('/')) + "/%newXXXXXX"; // no name is written like that
    const FileDescriptor file(mkostemp(fresh.data(), O_CLOEXEC));
    if (file.Get() < 0)
        return StatusOfErrno();
    // A line end of the text's own is kept by one more, which the reader takes off.
    const bool written = WriteAll(file.Get(), text) && (!text.ends_with('\n') || WriteAll(file.Get(), "\n"));
    if (!written || rename(fresh.c_str(), path.c_str()) != 0) {
        const LSTATUS status = StatusOfErrno();
        unlink(fresh.c_str());
        return status;
    }
    ++generation;
    return 0;
}

LSTATUS Delete(const std::string& path)
{
    if (IsFolder(path))
        return Status(ERROR_FILE_NOT_FOUND);
    if (unlink(path.c_str()) != 0)
        return StatusOfErrno();
    ++generation;
    return 0;
}

} // namespace RegistryTree
