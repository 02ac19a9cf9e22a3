#include "CFileFind.h"

#include "framework/PathParts.h"
#include "platform/Platform.h"

struct CFileFind::Search {
    HANDLE handle;
    CString root;
    WIN32_FIND_DATAA current = {};
    WIN32_FIND_DATAA next = {};
    bool hasNext = true;

    ~Search() { FindClose(handle); }
};

CFileFind::CFileFind() = default;
CFileFind::CFileFind(CFileFind&&) noexcept = default;
CFileFind& CFileFind::operator=(CFileFind&&) noexcept = default;
CFileFind::~CFileFind() = default;

bool CFileFind::FindFile(const char* pattern)
{
    Close();
    WIN32_FIND_DATAA first = {};
    const HANDLE handle = FindFirstFileA(pattern, &first);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    m_search.reset(new Search{handle, CString(PathParts::Folder(CString(pattern).View()))});
    m_search->next = first;
    return true;
}

bool CFileFind::FindNextFile()
{
    if (m_search == nullptr || !m_search->hasNext)
        return false;
    m_search->current = m_search->next;
    m_search->hasNext = ::FindNextFileA(m_search->handle, &m_search->next) != FALSE;
    return m_search->hasNext;
}

void CFileFind::Close()
{
    m_search.reset();
}

CString CFileFind::GetFileName() const
{
    return m_search == nullptr ? CString() : CString(m_search->current.cFileName);
}

CString CFileFind::GetFilePath() const
{
    return GetRoot() + GetFileName();
}

CString CFileFind::GetFileTitle() const
{
    return CString(PathParts::BaseName(GetFileName().View()));
}

CString CFileFind::GetRoot() const
{
    return m_search == nullptr ? CString() : m_search->root;
}

uint64 CFileFind::GetLength() const
{
    return m_search == nullptr
               ? 0
               : uint64{m_search->current.nFileSizeHigh} << 32 | m_search->current.nFileSizeLow;
}

FILETIME CFileFind::GetCreationTime() const
{
    return m_search == nullptr ? FILETIME{} : m_search->current.ftCreationTime;
}

FILETIME CFileFind::GetLastAccessTime() const
{
    return m_search == nullptr ? FILETIME{} : m_search->current.ftLastAccessTime;
}

FILETIME CFileFind::GetLastWriteTime() const
{
    return m_search == nullptr ? FILETIME{} : m_search->current.ftLastWriteTime;
}

static bool Give(const FILETIME& found, FILETIME* time)
{
    if (time == nullptr || (found.dwLowDateTime == 0 && found.dwHighDateTime == 0))
        return false;
    *time = found;
    return true;
}

bool CFileFind::GetCreationTime(FILETIME* time) const
{
    return Give(GetCreationTime(), time);
}

bool CFileFind::GetLastAccessTime(FILETIME* time) const
{
    return Give(GetLastAccessTime(), time);
}

bool CFileFind::GetLastWriteTime(FILETIME* time) const
{
    return Give(GetLastWriteTime(), time);
}

bool CFileFind::MatchesMask(DWORD attributes) const
{
    return m_search != nullptr && (m_search->current.dwFileAttributes & attributes) != 0;
}

bool CFileFind::IsDirectory() const
{
    return MatchesMask(FILE_ATTRIBUTE_DIRECTORY);
}

bool CFileFind::IsLink() const
{
    return MatchesMask(FILE_ATTRIBUTE_REPARSE_POINT);
}

bool CFileFind::IsDots() const
{
    return IsDirectory() && (GetFileName() == "." || GetFileName() == "..");
}

bool CFileFind::IsReadOnly() const
{
    return MatchesMask(FILE_ATTRIBUTE_READONLY);
}

bool CFileFind::IsHidden() const
{
    return MatchesMask(FILE_ATTRIBUTE_HIDDEN);
}

bool CFileFind::IsSystem() const
{
    return MatchesMask(FILE_ATTRIBUTE_SYSTEM);
}

bool CFileFind::IsArchived() const
{
    return MatchesMask(FILE_ATTRIBUTE_ARCHIVE);
}

bool CFileFind::IsNormal() const
{
    return MatchesMask(FILE_ATTRIBUTE_NORMAL);
}

bool CFileFind::IsTemporary() const
{
    return MatchesMask(FILE_ATTRIBUTE_TEMPORARY);
}

bool CFileFind::IsCompressed() const
{
    return MatchesMask(FILE_ATTRIBUTE_COMPRESSED);
}
