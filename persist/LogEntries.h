// The lines of the application log in memory, oldest first, kept as their bytes in the log file, so that
// writing them all is one block.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "BasicTypes.h"
#include "CString.h"
#include "DateTime.h"

class CArchive;

struct LogEntry {
    DateTime time;
    CString marker; // with its braces, or empty
    CString text;

    // A line as it was given, without its time.
    static LogEntry FromLine(std::string_view line);
    // Raises CArchiveException also for an entry version other than the stored one.
    void Serialize(CArchive& archive);
};

class LogEntries {
public:
    // An entry that the file does not have yet is pending.
    void Add(const LogEntry& entry, bool isPending);
    void AddEncoded(std::string_view bytes, bool isPending);
    void TrimTo(uint64 most); // drops the oldest
    void MarkWritten() noexcept;
    void DropWritten(); // what is not pending

    std::size_t GetCount() const noexcept { return m_entries.size(); }
    std::string_view Encoded() const noexcept { return std::string_view(m_bytes).substr(m_droppedBytes); }
    static LogEntry Decoded(std::string_view bytes);
    static DateTime TimeOf(std::string_view bytes);

    // visit(bytes, isPending) for each; the views hold until the next change.
    template <class Visit>
    void ForEach(Visit visit) const
    {
        std::string_view rest = Encoded();
        for (const Entry& entry : m_entries) {
            visit(rest.substr(0, entry.size), entry.isPending);
            rest.remove_prefix(entry.size);
        }
    }

private:
    struct Entry {
        std::size_t size; // of its bytes
        bool isPending;
    };

    std::string m_bytes;
    std::size_t m_droppedBytes = 0; // at the beginning of them, removed now and then
    std::deque<Entry> m_entries;
};
