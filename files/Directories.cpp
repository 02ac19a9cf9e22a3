// Folders made, and made writable.
#include <algorithm>

#include "DirUtils.h"
#include "framework/NamesOnDisk.h"

bool DirUtils::CreateDirectory(const CString& dirPath)
{
    if (dirPath.Find('\0') >= 0)
        return false;
    const std::string_view path = dirPath.View();
    for (std::size_t end = 0; end < path.size();) {
        end = std::min(path.find_first_of("\\/", end + 1), path.size());
        const CString parent(path.substr(0, end));
        // A failure tells nothing: somebody else may make it now, and a server's name is no folder to make.
        if (!NamesOnDisk::IsFolder(parent))
            ::CreateDirectoryA(parent, nullptr);
    }
    return NamesOnDisk::IsFolder(dirPath);
}

bool DirUtils::EnsureDirIsWritable(const CString& dirPath)
{
    if (!NamesOnDisk::IsFolder(dirPath))
        return false;
    constexpr int writable = 2;
    const DWORD attributes = NamesOnDisk::Attributes(dirPath);
    const bool isReadOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    return (!isReadOnly || SetFileAttributesA(dirPath, attributes & ~FILE_ATTRIBUTE_READONLY)) &&
           _access(dirPath, writable) == 0;
}
