// The file of the application log: read where somebody else has written it, and replaced as a whole.
//
// The new content goes to <file>.new, which is made with the permissions and the owner of the file that was
// read or written last, and then takes its name. So a process may die at any moment: the file holds the old
// lines or the new ones, and what is left of <file>.new is overwritten by the next write. Only one process at
// a time can have <file>.new open; that is the lock between writers, and it ends with its process. A writer
// that keeps it for seconds is passed by, with <file>.new2.
//
// Where the folder allows no new file the content is overwritten in place, longer part first, so that a full
// disk leaves it whole; there a process that dies while writing can damage it.
//
// Damaged files, and those with another title or version, are moved to <file>.damaged, .damaged2, ... before
// they are replaced; where that fails they are left alone and nothing is written.
#pragma once

#include <memory>

#include "CString.h"
#include "persist/LogEntries.h"
#include "persist/SharedFile.h"

class LogFile {
public:
    // Merges the file's lines into the list, unless this object has read or written it last. Raises nothing
    // but what lack of memory does.
    void Read(const CString& path, LogEntries& entries);
    // Replaces the file by the list, into which lines that others have written are merged first; then the
    // list is trimmed again. False where it cannot be done now, or the file is read-only: nothing is pending
    // any less, the file is as it was. May raise CFileException too, with the same state.
    bool Write(const CString& path, const CString& application, uint64 mostEntries, LogEntries& entries);
    void Forget() noexcept; // closes what is open

private:
    enum class Content { Missing, Complete, Damaged, Unreadable };
    class NewFile;

    static Content Load(CFile& file, LogEntries& entries);
    bool IsKnown(const CString& path) const;
    bool LooksKnown(const WIN32_FILE_ATTRIBUTE_DATA& facts) const; // costs less, and may be mistaken
    void Remember(const CString& path, Content content);
    Content TakeUp(const CString& path, LogEntries& entries);
    Content TakeUpFrom(SharedFile& file, const CString& path, LogEntries& entries);
    bool Replace(NewFile& fresh, const CString& path, const CString& application, uint64 mostEntries,
                 LogEntries& entries);
    bool Overwrite(const CString& path, const CString& application, uint64 mostEntries, LogEntries& entries);
    template <class Attempt>
    bool Retry(Attempt attempt, DWORD mostWait);

    // Open for questions on the file that was read or written last, so that its index is given to no other.
    std::unique_ptr<SharedFile> m_known;
    FileIdentity m_knownAs = {};
    Content m_knownContent = Content::Complete;
    bool m_isPatient = true; // false after waiting in vain, until something succeeds
};
