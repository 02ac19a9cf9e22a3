// A path on its way to the system.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "BasicTypes.h"

// The path with `/` for every `\`, its other bytes untouched: a file whose stored name holds a backslash is
// therefore out of reach, and a name made of `* ? < > | "` is a name like any other. Nothing throws; a path
// that is null, empty or has no memory is not usable.
class SystemPath {
public:
    explicit SystemPath(const char* path) noexcept
        : SystemPath(path == nullptr ? std::string_view() : std::string_view(path))
    {
    }
    explicit SystemPath(std::string_view path) noexcept;
    SystemPath(const SystemPath&) = delete;
    SystemPath& operator=(const SystemPath&) = delete;

    bool IsUsable() const noexcept { return m_length > 0; }
    const char* Text() const noexcept { return m_long ? m_long.get() : m_short; }
    std::string_view View() const noexcept { return {Text(), m_length}; }
    bool EndsInSeparator() const noexcept { return View().ends_with('/'); }
    std::string_view WithoutLastSeparators() const noexcept; // of "/" one stays
    std::string_view Folder() const noexcept;                // of "a/b/" and "a/b": "a/"; of "a": "."
    std::string_view LastName() const noexcept;              // of "a/b/" and "a/b": "b"; of "/": empty

private:
    char m_short[256];
    std::unique_ptr<char[]> m_long; // instead of the other where that is too small
    std::size_t m_length = 0;
    bool m_outOfMemory = false;

    friend DWORD ErrorOfUnusable(const SystemPath& path) noexcept;
};

// Why a path is not usable.
DWORD ErrorOfUnusable(const SystemPath& path) noexcept;

// What a failed call says of a path, from the errno that it left: a missing file is told from a missing
// folder on the way, and a separator after the name of a file is a wrong name.
DWORD ErrorForPath(const SystemPath& path, int posixError) noexcept;
