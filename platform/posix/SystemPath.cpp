#include "platform/posix/SystemPath.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <sys/stat.h>

#include "platform/posix/PosixErrors.h"
#include "platform/posix/PosixPlatform.h"

SystemPath::SystemPath(std::string_view path) noexcept
{
    char* text = m_short;
    if (path.size() >= sizeof m_short) {
        m_long.reset(new (std::nothrow) char[path.size() + 1]);
        text = m_long.get();
    }
    m_short[0] = '\0';
    m_outOfMemory = text == nullptr;
    if (m_outOfMemory)
        return;
    std::replace_copy(path.begin(), path.end(), text, '\\', '/');
    text[path.size()] = '\0';
    m_length = path.size();
}

std::string_view SystemPath::WithoutLastSeparators() const noexcept
{
    const auto last = View().find_last_not_of('/');
    return View().substr(0, last == std::string_view::npos ? 1 : last + 1);
}

std::string_view SystemPath::Folder() const noexcept
{
    const std::string_view path = WithoutLastSeparators();
    const auto separator = path.rfind('/');
    return separator == std::string_view::npos ? std::string_view(".") : path.substr(0, separator + 1);
}

std::string_view SystemPath::LastName() const noexcept
{
    const std::string_view path = WithoutLastSeparators();
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0
}

DWORD ErrorOfUnusable(const SystemPath& path) noexcept
{
    return path.m_outOfMemory ? ERROR_NOT_ENOUGH_MEMORY : ERROR_PATH_NOT_FOUND;
}

DWORD ErrorForPath(const SystemPath& path, int posixError) noexcept
{
    if (posixError != ENOENT && posixError != ENOTDIR)
        return ErrorForErrno(posixError);
    const SystemPath folder(path.Folder());
    struct stat state;
    if (stat(folder.Text(), &state) != 0 || !S_ISDIR(state.st_mode))
        return ERROR_PATH_NOT_FOUND;
    return posixError == ENOTDIR ? ERROR_INVALID_NAME : ERROR_FILE_NOT_FOUND;
}
