#include "DirUtils.h"
#include "FileUtils.h"
#include "framework/PathParts.h"

CString FileUtils::ParseFileNameFromPath(const CString& path, bool withExtension)
{
    const auto name = PathParts::FileName(path.View());
    return CString(withExtension ? name : PathParts::BaseName(name));
}

CString DirUtils::ParsePathFromFile(const CString& path)
{
    return CString(PathParts::Folder(path.View()));
}
