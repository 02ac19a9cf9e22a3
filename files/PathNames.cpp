// Paths as text: no question to the file system.
#include <algorithm>

#include "DirUtils.h"
#include "FileUtils.h"
#include "StringUtils.h"
#include "TextArray.h"
#include "framework/PathParts.h"

namespace {

constexpr std::string_view StrictBadChars = "\\/:*?\"<>|' ";
constexpr std::string_view PlainBadChars = StrictBadChars.substr(0, 9);

std::string_view BadChars(bool strict)
{
    return strict ? StrictBadChars : PlainBadChars;
}

bool EndsInSeparator(const CString& path)
{
    return !path.IsEmpty() && PathParts::IsSeparator(path[path.GetLength() - 1]);
}

// Leaves the path, trimmed, with `separator` as its last character.
void EnsureTrailing(char separator, CString& path)
{
    StringUtils::Trim(path);
    if (EndsInSeparator(path))
        path.SetAt(path.GetLength() - 1, separator);
    else if (!path.IsEmpty())
        path += separator;
}

} // namespace

// ---- taking apart ---------------------------------------------------------------------------------------

CString FileUtils::ParseFileNameFromPath(const CString& path, bool withExtension)
{
    const auto name = PathParts::FileName(path.View());
    return CString(withExtension ? name : PathParts::BaseName(name));
}

CString FileUtils::GetFileExt(const CString& path)
{
    const std::string_view text = path.View();
    const auto dot = text.rfind('.');
    if (dot == std::string_view::npos)
        return {};
    const auto extension = text.substr(dot + 1);
    const bool isInName = extension.find('\\') == std::string_view::npos; // kept: / is no separator here
    return isInName ? CString(extension) : CString();
}

void FileUtils::Split(const CString& path, CString& dir, CString& name, CString& ext)
{
    const CString whole(path); // an output may be the input
    const auto fileName = PathParts::FileName(whole.View());
    const bool hasDot = fileName.find('.') != std::string_view::npos;
    dir = CString(PathParts::Folder(whole.View()));
    name = hasDot ? CString(PathParts::BaseName(fileName)) : CString();
    // Kept: a name without a dot is all extension.
    ext = CString(hasDot ? PathParts::Extension(fileName) : fileName);
    if (dir.IsEmpty()) {
        StringUtils::Trim(ext);
        StringUtils::Trim(name);
    }
}

CString DirUtils::ParsePathFromFile(const CString& path)
{
    return CString(PathParts::Folder(path.View()));
}

CString DirUtils::ParseParentDir(const CString& dirPath)
{
    const std::string_view path = dirPath.View();
    return path.empty() ? CString() : CString(PathParts::Folder(path.substr(0, path.size() - 1)));
}

CString DirUtils::ParseLastDir(const CString& path)
{
    if (StringUtils::IsEffectivelyEmpty(path))
        return {};
    const auto folder = PathParts::Folder(path.View());
    return folder.empty() ? CString() : CString(PathParts::FileName(folder.substr(0, folder.size() - 1)));
}

bool DirUtils::BreakUpDirs(const CString& path, TextArray& parts)
{
    const CString whole(path); // which may be an element of parts
    parts.RemoveAll();
    std::string_view rest = whole.View();
    if (StringUtils::IsEffectivelyEmpty(whole) || (rest.size() == 1 && PathParts::IsSeparator(rest[0])))
        return true;
    if (PathParts::IsSeparator(rest.back()))
        rest.remove_suffix(1);
    if (!rest.empty() && PathParts::IsSeparator(rest.front()))
        rest.remove_prefix(1);
    for (const char separator : {'\\', '/'}) // forward slashes count only once no backslash is left
        for (auto at = rest.rfind(separator); at != std::string_view::npos; at = rest.rfind(separator)) {
            parts.Add(CString(rest.substr(at + 1)));
            rest = rest.substr(0, at);
        }
    parts.Add(CString(rest));
    parts.Reverse();
    return true;
}

// ---- separators at the end ------------------------------------------------------------------------------

void DirUtils::EnsureTrailingBackslash(CString& path)
{
    EnsureTrailing('\\', path);
}

void DirUtils::EnsureTrailingForwardSlash(CString& path)
{
    EnsureTrailing('/', path);
}

void DirUtils::RemoveTrailingSlash(CString& path)
{
    StringUtils::Trim(path);
    if (EndsInSeparator(path))
        path.Truncate(path.GetLength() - 1);
}

// ---- comparing ------------------------------------------------------------------------------------------

CString DirUtils::FindCommonParentDir(const CString& a, const CString& b)
{
    TextArray partsOfA;
    TextArray partsOfB;
    BreakUpDirs(a, partsOfA);
    BreakUpDirs(b, partsOfB);
    CString common;
    for (std::size_t i = 0; i < std::min(partsOfA.GetCount(), partsOfB.GetCount()); ++i) {
        if (partsOfA[i].CompareNoCase(partsOfB[i]) != 0)
            break;
        common += partsOfA[i];
        common += '\\';
    }
    return common;
}

void DirUtils::MakePathsRelative(const CString& base, TextArray& paths)
{
    const CString front(base); // which may be an element of paths
    for (std::size_t i = 0; i < paths.GetCount(); ++i)
        if (!front.IsEmpty() && StringUtils::MatchFirstChars(paths[i], front, false))
            paths.Replace(i, paths[i].Mid(front.GetLength()));
}

uint64 DirUtils::IsInDirList(const CString& dir, const TextArray& list, bool& same, bool& entryInsideDir,
                             bool& dirInsideEntry)
{
    same = entryInsideDir = dirInsideEntry = false;
    for (std::size_t i = 0; i < list.GetCount(); i += 2) { // kept: every second entry
        same = list[i].CompareNoCase(dir) == 0;
        entryInsideDir = !same && StringUtils::MatchFirstChars(list[i], dir, false);
        dirInsideEntry = !same && !entryInsideDir && StringUtils::MatchFirstChars(dir, list[i], false);
        if (same || entryInsideDir || dirInsideEntry)
            return i;
    }
    return list.GetCount();
}

// ---- bad characters -------------------------------------------------------------------------------------

CString FileUtils::GetBadFileNameChars(bool strict)
{
    return CString(BadChars(strict));
}

CString FileUtils::ReplaceBadFileChars(const CString& name, char replacement, bool strict)
{
    if (StringUtils::IsEffectivelyEmpty(name))
        return name;
    CString cleaned;
    cleaned.Preallocate(name.GetLength());
    for (const char c : name) {
        const bool isBad = BadChars(strict).find(c) != std::string_view::npos;
        if (!isBad)
            cleaned += c;
        else if (replacement != '\0')
            cleaned += replacement;
    }
    return cleaned;
}
