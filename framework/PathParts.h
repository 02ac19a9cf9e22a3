// Where a path is cut: the one place for the rules that more than one class needs. All parts are views of the
// input.
#pragma once

#include <string_view>

namespace PathParts {

inline bool IsSeparator(char c)
{
    return c == '\\' || c == '/';
}

// Everything up to and including the last separator of either kind; empty without one.
inline std::string_view Folder(std::string_view path)
{
    return path.substr(0, path.find_last_of("\\/") + 1); // npos + 1 is 0
}

// Everything after the last separator of either kind.
inline std::string_view FileName(std::string_view path)
{
    return path.substr(path.find_last_of("\\/") + 1);
}

// A file name before its last dot; all of it without a dot.
inline std::string_view BaseName(std::string_view fileName)
{
    return fileName.substr(0, fileName.rfind('.'));
}

// A file name after its last dot; empty without a dot.
inline std::string_view Extension(std::string_view fileName)
{
    const auto dot = fileName.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : fileName.substr(dot + 1);
}

} // namespace PathParts
