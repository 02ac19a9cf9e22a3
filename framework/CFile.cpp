#include "CFile.h"

#include <algorithm>

#include "framework/PathParts.h"
#include "framework/SystemMessages.h"
#include "platform/Platform.h"

namespace {

constexpr std::size_t MostAtOnce = 0x40000000; // bytes in one call of the platform, whose counts are 32-bit

DWORD AccessFor(UINT openFlags)
{
    switch (openFlags & (CFile::modeWrite | CFile::modeReadWrite)) {
    case CFile::modeRead:
        return GENERIC_READ;
    case CFile::modeWrite:
        return GENERIC_WRITE;
    default:
        return GENERIC_READ | GENERIC_WRITE;
    }
}

DWORD ShareFor(UINT openFlags)
{
    switch (openFlags & 0x70) {
    case CFile::shareDenyWrite:
        return FILE_SHARE_READ;
    case CFile::shareDenyRead:
        return FILE_SHARE_WRITE;
    case CFile::shareDenyNone:
        return FILE_SHARE_READ | FILE_SHARE_WRITE;
    default:
        return 0;
    }
}

DWORD DispositionFor(UINT openFlags)
{
    if ((openFlags & CFile::modeCreate) == 0)
        return OPEN_EXISTING;
    return (openFlags & CFile::modeNoTruncate) != 0 ? OPEN_ALWAYS : CREATE_ALWAYS;
}

CFileException LastErrorOf(const CString& fileName)
{
    const auto error = static_cast<LONG>(GetLastError());
    return CFileException(CFileException::OsErrorToException(error), error, fileName);
}

LARGE_INTEGER Large(int64 value)
{
    LARGE_INTEGER large;
    large.QuadPart = value;
    return large;
}

} // namespace

// ---- the exception --------------------------------------------------------------------------------------

static CString CauseText(int cause, LONG osError)
{
    if (osError != 0)
        return SystemMessages::TextFor(static_cast<DWORD>(osError));
    switch (cause) {
    case CFileException::none:
        return "no file error";
    case CFileException::invalidFile:
        return "the file is not open";
    case CFileException::badSeek:
        return "position outside the file";
    case CFileException::diskFull:
        return "no room left";
    default:
        return "file error";
    }
}

CFileException::CFileException(int cause, LONG osError, const CString& fileName)
    : CException(cause), m_lOsError(osError), m_strFileName(fileName), m_text(CauseText(cause, osError))
{
    if (!fileName.IsEmpty())
        m_text = fileName + ": " + m_text;
}

int CFileException::OsErrorToException(LONG osError) noexcept
{
    switch (static_cast<DWORD>(osError)) {
    case ERROR_SUCCESS:
        return none;
    case ERROR_FILE_NOT_FOUND:
        return fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_DIRECTORY:
        return badPath;
    case ERROR_TOO_MANY_OPEN_FILES:
        return tooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return accessDenied;
    case ERROR_INVALID_HANDLE:
        return invalidFile;
    case ERROR_NEGATIVE_SEEK:
        return badSeek;
    case ERROR_SHARING_VIOLATION:
        return sharingViolation;
    case ERROR_DISK_FULL:
        return diskFull;
    default:
        return genericException;
    }
}

void CFile::ThrowLastError() const
{
    throw LastErrorOf(m_strFileName);
}

void CFile::RequireOpen() const
{
    if (m_hFile == nullptr)
        throw CFileException(CFileException::invalidFile, 0, m_strFileName);
}

// ---- opening and closing --------------------------------------------------------------------------------

CFile::CFile(const char* fileName, UINT openFlags)
{
    CFileException error;
    if (!CFile::Open(fileName, openFlags, &error))
        throw error;
}

CFile::~CFile()
{
    CFile::Abort();
}

bool CFile::Open(const char* fileName, UINT openFlags, CFileException* error)
{
    Abort();
    const CString name(fileName);
    const HANDLE handle = CreateFileA(name, AccessFor(openFlags), ShareFor(openFlags), nullptr,
                                      DispositionFor(openFlags), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        if (error != nullptr)
            *error = LastErrorOf(name);
        return false;
    }
    m_hFile = handle;
    m_strFileName = name;
    return true;
}

void CFile::Close()
{
    if (m_hFile == nullptr)
        return;
    const BOOL closed = CloseHandle(m_hFile);
    m_hFile = nullptr;
    if (!closed)
        ThrowLastError();
    m_strFileName.Empty();
}

void CFile::Abort() noexcept
{
    if (m_hFile != nullptr)
        CloseHandle(m_hFile);
    m_hFile = nullptr;
    m_strFileName.Empty();
}

// ---- bytes ----------------------------------------------------------------------------------------------

std::size_t CFile::Read(void* buffer, std::size_t count)
{
    RequireOpen();
    auto* const to = static_cast<BYTE*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        DWORD got = 0;
        if (!ReadFile(m_hFile, to + done, static_cast<DWORD>(std::min(count - done, MostAtOnce)), &got,
                      nullptr))
            ThrowLastError();
        if (got == 0)
            break;
        done += got;
    }
    return done;
}

void CFile::Write(const void* buffer, std::size_t count)
{
    RequireOpen();
    const auto* const from = static_cast<const BYTE*>(buffer);
    for (std::size_t done = 0; done < count;) {
        DWORD put = 0;
        const auto step = static_cast<DWORD>(std::min(count - done, MostAtOnce));
        if (!WriteFile(m_hFile, from + done, step, &put, nullptr))
            ThrowLastError();
        if (put == 0)
            throw CFileException(CFileException::diskFull, 0, m_strFileName);
        done += put;
    }
}

uint64 CFile::Seek(int64 offset, UINT from)
{
    static_assert(begin == FILE_BEGIN && current == FILE_CURRENT && end == FILE_END);
    RequireOpen();
    LARGE_INTEGER position = {};
    if (!SetFilePointerEx(m_hFile, Large(offset), &position, from))
        throw CFileException(CFileException::badSeek, static_cast<LONG>(GetLastError()), m_strFileName);
    return static_cast<uint64>(position.QuadPart);
}

uint64 CFile::GetPosition() const
{
    RequireOpen();
    LARGE_INTEGER position = {};
    if (!SetFilePointerEx(m_hFile, Large(0), &position, FILE_CURRENT))
        ThrowLastError();
    return static_cast<uint64>(position.QuadPart);
}

uint64 CFile::GetLength() const
{
    RequireOpen();
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(m_hFile, &size))
        ThrowLastError();
    return static_cast<uint64>(size.QuadPart);
}

void CFile::SetLength(uint64 length)
{
    Seek(static_cast<int64>(length), begin); // a length beyond 63 bits is a position below 0
    if (!SetEndOfFile(m_hFile))
        ThrowLastError();
}

void CFile::Flush()
{
    RequireOpen();
    if (!FlushFileBuffers(m_hFile))
        ThrowLastError();
}

// ---- names ----------------------------------------------------------------------------------------------

CString CFile::GetFileName() const
{
    return CString(PathParts::FileName(m_strFileName.View()));
}

CString CFile::GetFileTitle() const
{
    return CString(PathParts::BaseName(PathParts::FileName(m_strFileName.View())));
}

void CFile::Remove(const char* fileName)
{
    if (!DeleteFileA(CString(fileName)))
        throw LastErrorOf(fileName);
}

void CFile::Rename(const char* oldName, const char* newName)
{
    if (!MoveFileA(CString(oldName), CString(newName)))
        throw LastErrorOf(oldName);
}

bool CFile::GetStatus(const char* fileName, CFileStatus& status)
{
    const DWORD attributes = GetFileAttributesA(CString(fileName));
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    CFileStatus found;
    found.m_readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    found.m_folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (CFile file; !found.m_folder && file.Open(fileName, modeRead | shareDenyNone))
        found.m_size = file.GetLength();
    status = found;
    return true;
}

bool CFile::GetStatus(CFileStatus& status) const
{
    if (!IsOpen())
        return false;
    CFileStatus found;
    if (BY_HANDLE_FILE_INFORMATION facts = {};
        m_hFile != nullptr && GetFileInformationByHandle(m_hFile, &facts))
        found.m_readOnly = (facts.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    found.m_size = GetLength();
    status = found;
    return true;
}
