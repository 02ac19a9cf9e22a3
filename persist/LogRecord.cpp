#include "persist/LogRecord.h"

namespace {

constexpr const char* Title = "Corvane Software Log File";
constexpr WORD OldestVersion = 6;
constexpr WORD Version = 7;

} // namespace

void LogRecord::Store(CArchive& archive, const CString& applicationName, const LogEntries& entries)
{
    archive << Title << Version << applicationName << uint64{entries.GetCount()};
    archive.Write(entries.Encoded().data(), entries.Encoded().size());
}

bool LogRecord::Load(CArchive& archive, LogEntries& entries)
{
    CString title;
    archive >> title;
    if (title != Title)
        return false;
    WORD version = 0;
    archive >> version;
    if (version < OldestVersion || version > Version)
        return false;
    CString applicationName;
    uint64 count = 0;
    archive >> applicationName >> count;
    for (uint64 i = 0; i < count; ++i) {
        LogEntry entry;
        entry.Serialize(archive);
        entries.Add(entry, false);
    }
    return true;
}
