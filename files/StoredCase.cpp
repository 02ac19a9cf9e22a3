// Paths in the letter case that is stored on disk.
#include <optional>

#include "DirUtils.h"
#include "FileUtils.h"
#include "TextArray.h"
#include "framework/NamesOnDisk.h"
#include "framework/PathParts.h"
#include "platform/Platform.h"

namespace {

// An open listing of a folder.
class FolderListing {
public:
    explicit FolderListing(const CString& folder) : m_handle(FindFirstFileA(folder + "*", &m_entry)) {}
    ~FolderListing()
    {
        if (m_handle != INVALID_HANDLE_VALUE)
            FindClose(m_handle);
    }
    FolderListing(const FolderListing&) = delete;
    FolderListing& operator=(const FolderListing&) = delete;

    // Steps to the next entry; false when there is none. The first call gives the first one.
    bool Next()
    {
        if (m_handle == INVALID_HANDLE_VALUE)
            return false;
        const bool isFirst = m_isAtStart;
        m_isAtStart = false;
        return isFirst || FindNextFileA(m_handle, &m_entry);
    }
    const char* Name() const { return m_entry.cFileName; }
    bool IsFolder() const { return (m_entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

private:
    WIN32_FIND_DATAA m_entry = {};
    HANDLE m_handle;
    bool m_isAtStart = true;
};

enum class Wanted { Folder, Anything };

// The name in this folder ("" or ending in a separator) that equals `name` ignoring case, as it is stored: an
// exact match if there is one, else the first in byte order. A name that cannot be listed but exists is taken
// as passed.
std::optional<CString> StoredName(const CString& folder, const CString& name, Wanted wanted)
{
    std::optional<CString> found;
    for (FolderListing listing(folder); listing.Next();) {
        if (name.CompareNoCase(listing.Name()) != 0 || (wanted == Wanted::Folder && !listing.IsFolder()))
            continue;
        if (name == listing.Name())
            return name;
        if (!found || *found > listing.Name())
            found = CString(listing.Name());
    }
    return found || !NamesOnDisk::Exists(folder + name) ? found : name;
}

// Whether a folder of exactly this name is listed.
bool IsStored(const CString& folder, const CString& name)
{
    for (FolderListing listing(folder); listing.Next();)
        if (listing.IsFolder() && name == listing.Name())
            return true;
    return false;
}

// The start of the result: the first part, found below the separator in front of it, or a drive in upper
// case.
std::optional<CString> StoredFirstPart(const CString& front, const CString& part)
{
    constexpr int ShorterThan = 4; // with its separator: "c:\"
    CString upper(part);
    upper.MakeUpper();
    const bool isShort = front.IsEmpty() && part.GetLength() + 1 < ShorterThan;
    const bool areTwoFolders = isShort && part != upper && IsStored(front, part) && IsStored(front, upper);
    if (isShort && !areTwoFolders && NamesOnDisk::Exists(upper + "\\"))
        return upper;
    return StoredName(front, part, Wanted::Folder);
}

// The directory path in stored case, or nothing when it does not exist in any letter case.
std::optional<CString> StoredFolder(const CString& dirPath)
{
    if (dirPath.Find('\0') >= 0)
        return std::nullopt;
    TextArray parts;
    DirUtils::BreakUpDirs(dirPath, parts);
    const bool beginsWithSeparator = PathParts::IsSeparator(dirPath[0]);
    CString result = beginsWithSeparator ? dirPath.Left(1) : CString();
    if (parts.IsEmpty())
        return beginsWithSeparator ? std::optional(result) : std::nullopt;
    for (std::size_t i = 0; i < parts.GetCount(); ++i) {
        const auto name =
            i == 0 ? StoredFirstPart(result, parts[i]) : StoredName(result, parts[i], Wanted::Folder);
        if (!name)
            return std::nullopt;
        result += *name + '\\';
    }
    return result;
}

} // namespace

CString DirUtils::GetCaseSensitiveDirPath(const CString& dirPath)
{
    return StoredFolder(dirPath).value_or(dirPath);
}

CString FileUtils::GetCaseSensitiveFilePath(const CString& path)
{
    const CString folderPart = DirUtils::ParsePathFromFile(path);
    const CString name = ParseFileNameFromPath(path, true);
    const auto folder = folderPart.IsEmpty() ? std::optional(CString()) : StoredFolder(folderPart);
    if (!folder || name.IsEmpty() || name.Find('\0') >= 0)
        return path;
    const auto stored = StoredName(*folder, name, Wanted::Anything);
    return stored ? *folder + *stored : path;
}
