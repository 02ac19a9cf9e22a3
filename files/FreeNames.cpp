// Names that nothing has yet, and names in another form.
#include "DirUtils.h"
#include "FileUtils.h"
#include "StringUtils.h"
#include "TextArray.h"
#include "framework/FailureMarkers.h"
#include "framework/NamesOnDisk.h"
#include "framework/PathParts.h"
#include "platform/Platform.h"

namespace {

constexpr char CopySuffix[] = " copy";

// The first of front + 1 + back, front + 2 + back, ... that does not exist below `folder`.
CString FirstFreeNumbered(const CString& folder, const CString& front, const CString& back)
{
    for (uint64 n = 1;; ++n) {
        CString candidate;
        candidate.Format("%s%u%s", front, n, back);
        if (!NamesOnDisk::Exists(folder + candidate))
            return candidate;
    }
}

// Puts the path in the other form, if the system knows one that fits the buffer.
void ConvertBy(DWORD (*convert)(const char*, char*, DWORD), CString& path)
{
    char converted[MAX_PATH];
    const DWORD length = convert(path, converted, sizeof converted);
    if (length > 0 && length < sizeof converted)
        path = CString(converted, static_cast<int>(length));
}

} // namespace

CString FileUtils::GetUniqueFileName(const CString& dir, const CString& fileName)
{
    CString candidate = dir + fileName;
    if (!NamesOnDisk::Exists(candidate))
        return candidate;
    const CString end = "." + GetFileExt(fileName); // kept: the dot also without an extension
    const CString base = ParseFileNameFromPath(fileName, false) + CopySuffix;
    candidate = dir + base + end;
    return NamesOnDisk::Exists(candidate) ? dir + FirstFreeNumbered(dir, base, end) : candidate;
}

CString DirUtils::GetUniqueSubDir(const CString& parentDir, const CString& subDirName)
{
    // Kept: a / at the end will not do.
    const bool endsInBackslash = !parentDir.IsEmpty() && parentDir[parentDir.GetLength() - 1] == '\\';
    if (!endsInBackslash || !NamesOnDisk::Exists(parentDir) || StringUtils::IsEffectivelyEmpty(subDirName))
        return {};
    if (!NamesOnDisk::Exists(parentDir + subDirName))
        return subDirName;
    const bool endsInSeparator = PathParts::IsSeparator(subDirName[subDirName.GetLength() - 1]);
    return FirstFreeNumbered(parentDir, subDirName.Left(subDirName.GetLength() - endsInSeparator), "\\");
}

CString FileUtils::GetTempFile(const CString& dir, const CString& prefix, unsigned int& unique)
{
    unique = 0;
    int length = dir.GetLength();
    while (length > 0 && StringUtils::IsSpace(static_cast<unsigned char>(dir[length - 1])))
        --length;
    const CString folder = dir.Left(length);
    if (folder.IsEmpty() || !PathParts::IsSeparator(folder[length - 1]) || !NamesOnDisk::Exists(folder)) {
        FailureMarkers::Report("{F1A8BB00-471B-4D7C-9766-55857561C699}");
        return {};
    }
    char path[MAX_PATH] = "";
    unique = GetTempFileNameA(folder, prefix, 0, path);
    if (unique == 0)
        FailureMarkers::ReportWithLastError("{E4949422-0B7B-4D2B-AE39-0E30647219F3}");
    return unique == 0 ? CString() : CString(path);
}

void FileUtils::ConvertToLongFileName(CString& path)
{
    if (path[1] == ':' && path.Find('~') >= 0 && path.GetLength() < MAX_PATH && NamesOnDisk::Exists(path))
        ConvertBy([](const char* from, char* to, DWORD size) { return GetLongPathNameA(from, to, size); },
                  path);
}

void DirUtils::ConvertToLongPathName(CString& path)
{
    FileUtils::ConvertToLongFileName(path);
}

void FileUtils::ConvertToShortFileName(CString& path)
{
    if (!path.IsEmpty() && path.GetLength() < MAX_PATH && NamesOnDisk::Exists(path))
        ConvertBy([](const char* from, char* to, DWORD size) { return GetShortPathNameA(from, to, size); },
                  path);
}
