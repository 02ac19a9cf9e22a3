#include "persist/LogFile.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include "CMemFile.h"
#include "framework/PathParts.h"
#include "persist/LogMerge.h"
#include "persist/LogRecord.h"

namespace {

// Milliseconds. Another writer needs a fraction of one; a reader may be an editor that is left open.
constexpr DWORD WaitForWriters = 3000;
constexpr DWORD WaitForReaders = 500;
constexpr int MostDamagedFiles = 999;

bool IsMissing(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

void MakeFolders(const CString& path)
{
    for (int i = 1; i < path.GetLength(); ++i)
        if (PathParts::IsSeparator(path[i]))
            CreateDirectoryA(path.Left(i), nullptr);
}

void Store(CFile& file, const CString& application, const LogEntries& entries)
{
    CArchive archive(&file, CArchive::store);
    try {
        LogRecord::Store(archive, application, entries);
        archive.Close();
    } catch (...) {
        archive.Abort(); // what is still in its buffer would go to a file that is given up
        throw;
    }
}

// The name stays free for the file that comes in its place.
bool MoveAside(const CString& path)
{
    for (int number = 1; number <= MostDamagedFiles; ++number) {
        CString aside = path + ".damaged";
        if (number > 1)
            aside.AppendFormat("%d", number);
        if (MoveFileExA(path, aside, 0))
            return true;
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            return false;
    }
    return false;
}

} // namespace

// ---- the new file, removed with its owner unless it has got the log's name ------------------------------

class LogFile::NewFile : public SharedFile {
public:
    ~NewFile() override
    {
        if (IsOpen())
            DeleteFileA(m_path);
    }

    bool OpenAs(const CString& path, const SharedFile* model)
    {
        m_path = path;
        // Sharing of deletion lets it be renamed before it is closed, which is when the next writer may come.
        constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_DELETE;
        return OpenShared(path, GENERIC_WRITE, share, CREATE_NEW, model) ||
               (GetLastError() == ERROR_FILE_EXISTS &&
                OpenShared(path, GENERIC_WRITE, share, CREATE_ALWAYS, model));
    }
    const CString& Path() const { return m_path; }

private:
    CString m_path;
};

// Waits for others who have a file open, but not again and again for one who never closes it.
template <class Attempt>
bool LogFile::Retry(Attempt attempt, DWORD mostWait)
{
    const DWORD start = GetTickCount();
    while (!attempt()) {
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION)
            return false;
        if (!m_isPatient || GetTickCount() - start >= mostWait) {
            m_isPatient = false;
            SetLastError(error);
            return false;
        }
        Sleep(1);
    }
    return true;
}

// ---- what stands in the file ----------------------------------------------------------------------------

LogFile::Content LogFile::Load(CFile& file, LogEntries& entries)
{
    try {
        if (file.SeekToEnd() == 0) // somebody emptied it: nothing to keep aside
            return Content::Complete;
        file.SeekToBegin();
        CArchive archive(&file, CArchive::load);
        return LogRecord::Load(archive, entries) ? Content::Complete : Content::Damaged;
    } catch (const CArchiveException&) {
        return Content::Damaged;
    } catch (const std::length_error&) {
        return Content::Damaged;
    } catch (const CFileException&) {
        return Content::Unreadable;
    }
}

bool LogFile::IsKnown(const CString& path) const
{
    SharedFile file;
    return m_known != nullptr &&
           file.OpenShared(path, SharedFile::OnlyToAsk, SharedFile::ShareAll, OPEN_EXISTING) &&
           file.Identity() == m_knownAs;
}

bool LogFile::LooksKnown(const WIN32_FILE_ATTRIBUTE_DATA& facts) const
{
    return m_known != nullptr && facts.nFileSizeLow == m_knownAs.sizeLow &&
           facts.nFileSizeHigh == m_knownAs.sizeHigh &&
           facts.ftLastWriteTime.dwLowDateTime == m_knownAs.writtenLow &&
           facts.ftLastWriteTime.dwHighDateTime == m_knownAs.writtenHigh;
}

void LogFile::Remember(const CString& path, Content content)
{
    auto file = std::make_unique<SharedFile>();
    const bool isOpen = file->OpenShared(path, SharedFile::OnlyToAsk, SharedFile::ShareAll, OPEN_EXISTING);
    const auto identity = isOpen ? file->Identity() : std::nullopt;
    m_known = identity ? std::move(file) : nullptr;
    m_knownAs = identity.value_or(FileIdentity());
    m_knownContent = content;
}

LogFile::Content LogFile::TakeUp(const CString& path, LogEntries& entries)
{
    if (IsKnown(path))
        return m_knownContent;
    Forget(); // while it is open, a file that was deleted may keep the name
    SharedFile file;
    const auto open = [&] {
        return file.OpenShared(path, GENERIC_READ, SharedFile::ShareAll, OPEN_EXISTING);
    };
    if (!Retry(open, WaitForReaders))
        return IsMissing(GetLastError()) ? Content::Missing : Content::Unreadable;
    return TakeUpFrom(file, path, entries);
}

LogFile::Content LogFile::TakeUpFrom(SharedFile& file, const CString& path, LogEntries& entries)
{
    Forget();
    LogEntries inFile;
    const Content content = Load(file, inFile);
    if (content == Content::Unreadable)
        return content;
    entries = LogMerge::Merged(inFile, entries);
    Remember(path, content);
    if (file.Identity() != m_knownAs) // another one has its name already
        Forget();
    return content;
}

void LogFile::Forget() noexcept
{
    m_known.reset();
}

void LogFile::Read(const CString& path, LogEntries& entries)
{
    TakeUp(path, entries);
}

// ---- writing --------------------------------------------------------------------------------------------

bool LogFile::Write(const CString& path, const CString& application, uint64 mostEntries, LogEntries& entries)
{
    WIN32_FILE_ATTRIBUTE_DATA facts;
    const bool isThere = GetFileAttributesExA(path, GetFileExInfoStandard, &facts);
    if (isThere && (facts.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0)
        return false;
    if (isThere && !LooksKnown(facts))
        TakeUp(path, entries); // so that the new file becomes like this one
    NewFile fresh;
    const auto open = [&] { return fresh.OpenAs(path + ".new", m_known.get()); };
    bool isOpen = Retry(open, WaitForWriters);
    if (!isOpen && GetLastError() == ERROR_PATH_NOT_FOUND) {
        MakeFolders(path);
        isOpen = Retry(open, WaitForWriters);
    }
    const bool isPassingBy = !isOpen && GetLastError() == ERROR_SHARING_VIOLATION;
    if (isPassingBy)
        isOpen = fresh.OpenAs(path + ".new2", m_known.get());
    bool isWritten = isOpen && Replace(fresh, path, application, mostEntries, entries);
    if (!isWritten && GetLastError() == ERROR_ACCESS_DENIED)
        isWritten = Overwrite(path, application, mostEntries, entries);
    m_isPatient = m_isPatient || (isWritten && !isPassingBy);
    return isWritten;
}

bool LogFile::Replace(NewFile& fresh, const CString& path, const CString& application, uint64 mostEntries,
                      LogEntries& entries)
{
    const Content content = TakeUp(path, entries);
    if (content == Content::Unreadable)
        return false;
    entries.TrimTo(mostEntries);
    Store(fresh, application, entries);
    if (content == Content::Damaged && !MoveAside(path))
        return false;
    Remember(fresh.Path(), Content::Complete);
    const auto move = [&] { return MoveFileExA(fresh.Path(), path, MOVEFILE_REPLACE_EXISTING); };
    if (!Retry(move, WaitForReaders)) {
        Forget();
        return false;
    }
    fresh.Close();
    entries.MarkWritten();
    return true;
}

static std::string BytesOf(const CString& application, const LogEntries& entries)
{
    CMemFile file;
    Store(file, application, entries);
    std::string bytes(static_cast<std::size_t>(file.GetLength()), '\0');
    file.SeekToBegin();
    file.Read(bytes.data(), bytes.size());
    return bytes;
}

// What goes behind the present end goes first: where there is no room for it, nothing has been lost yet.
static void PutInPlace(CFile& file, const std::string& content)
{
    const uint64 before = file.SeekToEnd();
    const auto common = static_cast<std::size_t>(std::min<uint64>(before, content.size()));
    try {
        file.Write(content.data() + common, content.size() - common);
    } catch (...) {
        file.SetLength(before);
        throw;
    }
    file.SeekToBegin();
    file.Write(content.data(), common);
    file.SetLength(content.size());
}

bool LogFile::Overwrite(const CString& path, const CString& application, uint64 mostEntries,
                        LogEntries& entries)
{
    SharedFile file;
    const auto open = [&] { return file.OpenShared(path, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING); };
    if (!Retry(open, WaitForReaders))
        return false;
    const Content content = IsKnown(path) ? m_knownContent : TakeUpFrom(file, path, entries);
    if (content != Content::Complete)
        return false;
    entries.TrimTo(mostEntries);
    PutInPlace(file, BytesOf(application, entries));
    Forget(); // at this moment another one could overwrite it with as many bytes
    entries.MarkWritten();
    return true;
}
