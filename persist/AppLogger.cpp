#include "AppLogger.h"

#include <utility>

#include "CStringArray.h"
#include "framework/FailureMarkers.h"
#include "framework/NeverDestroyed.h"
#include "persist/LogEntries.h"
#include "persist/LogFile.h"
#include "persist/LogRecord.h"
#include "persist/LogSettings.h"
#include "platform/Platform.h"

namespace {

constexpr const char* StartedLine = "{7A7B98BB-B07D-450C-BEB1-5ECF84735ACC}Logging started";
constexpr uint64 UsualMaxEntries = 500;

constinit NeverDestroyed<CString> applicationName;
constinit NeverDestroyed<CString> logFilePath;

struct Log {
    Log() { InitializeCriticalSection(&section); }

    // What is in the file is read from there again by whoever goes on with it.
    void LeaveFile()
    {
        entries.DropWritten();
        file.Forget();
    }

    CRITICAL_SECTION section;
    LogEntries entries;
    LogFile file;
    bool isAdding = false;
};

// Outlives every logger, so that a thread that reports a failure meets no lock that is being destroyed.
Log& TheLog()
{
    static Log& log = *new Log;
    return log;
}

class Locked {
public:
    Locked() : m_log(TheLog()) { EnterCriticalSection(&m_log.section); }
    ~Locked() { LeaveCriticalSection(&m_log.section); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    Log* operator->() const { return &m_log; }

private:
    Log& m_log;
};

// Sets a flag for as long as it lives.
class Raised {
public:
    explicit Raised(bool& flag) : m_flag(flag) { m_flag = true; }
    ~Raised() { m_flag = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& m_flag;
};

// The operation that failed may be one that raises nothing, and its caller may still ask for the last error.
void AddFailure(const CString& line)
{
    const DWORD error = GetLastError();
    try {
        AppLogger::AddLine(line);
    } catch (...) {
    }
    SetLastError(error);
}

CString TextOf(const LogEntry& entry)
{
    CString when = entry.time.ConvertDateToText(true);
    if (!entry.time.IsMidnight())
        when += " " + entry.time.ConvertTimeToText(true);
    when.Trim();
    return when + "\t" + entry.marker + "\t" + entry.text;
}

} // namespace

constinit AppLogger* AppLogger::m_pInstance = nullptr;
constinit CString& AppLogger::m_csAppName = applicationName.value;
constinit CString& AppLogger::m_csLogFile = logFilePath.value;
constinit bool AppLogger::m_bCheckedRegistry = false;
constinit uint64 AppLogger::m_nMaxLogEntries = UsualMaxEntries;

// ---- on and off -----------------------------------------------------------------------------------------

void AppLogger::SetAppName(const CString& appName)
{
    const Locked log;
    if (appName != m_csAppName) {
        log->LeaveFile();
        m_csLogFile.Empty();
    }
    m_csAppName = appName;
    if (m_pInstance == nullptr && !m_bCheckedRegistry && CheckLogging()) {
        MakeInstance();
        AddLine(StartedLine);
    }
}

bool AppLogger::CheckLogging()
{
    const Locked log;
    if (m_csAppName.IsEmpty())
        return false;
    m_bCheckedRegistry = true;
    return LogSettings::IsSwitchedOn(m_csAppName);
}

void AppLogger::EnableLogging(bool enable)
{
    const Locked log;
    const bool isLogging = m_pInstance != nullptr;
    if (m_csAppName.IsEmpty() || (enable == isLogging && enable == LogSettings::IsSwitchedOn(m_csAppName)))
        return;
    LogSettings::SwitchOn(m_csAppName, enable);
    DeleteInstance();
    SetAppName(m_csAppName);
}

AppLogger* AppLogger::GetInstance()
{
    const Locked log;
    if (m_pInstance == nullptr && CheckLogging())
        MakeInstance();
    return m_pInstance;
}

void AppLogger::MakeInstance()
{
    m_pInstance = new AppLogger;
    FailureMarkers::SetSink(AddFailure);
    SetLogFile();
}

void AppLogger::DeleteInstance()
{
    const Locked log;
    if (m_pInstance != nullptr)
        FailureMarkers::SetSink(nullptr);
    delete std::exchange(m_pInstance, nullptr);
    m_bCheckedRegistry = false;
    log->LeaveFile();
}

// ---- lines ----------------------------------------------------------------------------------------------

void AppLogger::AddLine(const CString& line)
{
    const Locked log;
    if (m_pInstance == nullptr || log->isAdding)
        return;
    const Raised adding(log->isAdding);
    LogEntry entry = LogEntry::FromLine(line.View());
    entry.time.SetToCurrent();
    log->entries.Add(entry, true);
    log->entries.TrimTo(m_nMaxLogEntries);
    ForceWrite();
}

void AppLogger::GetLogText(CStringArray& lines)
{
    // Not under the lock: what the locale needs may fail, on two threads at once, and add lines.
    const LogEntries entries = Locked()->entries;
    entries.ForEach([&](std::string_view bytes, bool) { lines.Add(TextOf(LogEntries::Decoded(bytes))); });
}

void AppLogger::SetMaxLogEntries(uint64 maxEntries)
{
    const Locked log;
    m_nMaxLogEntries = maxEntries;
}

// ---- the file -------------------------------------------------------------------------------------------

bool AppLogger::SetLogFile()
{
    const Locked log;
    const CString found = LogSettings::LogFile(m_csAppName);
    if (!found.IsEmpty())
        m_csLogFile = found;
    if (!HaveLogFile())
        return false;
    log->file.Read(m_csLogFile, log->entries);
    return true;
}

bool AppLogger::HaveLogFile()
{
    const Locked log;
    return !m_csLogFile.IsEmpty();
}

void AppLogger::ForceWrite()
{
    const Locked log;
    try {
        if (!HaveLogFile() && !SetLogFile())
            return;
        log->entries.TrimTo(m_nMaxLogEntries); // also what has just been read
        log->file.Write(m_csLogFile, m_csAppName, m_nMaxLogEntries, log->entries);
    } catch (...) { // the lines stay in memory
    }
}

void AppLogger::Serialize(CArchive& archive)
{
    const Locked log;
    if (archive.IsStoring()) {
        LogRecord::Store(archive, m_csAppName, log->entries);
        return;
    }
    LogEntries loaded;
    try {
        if (LogRecord::Load(archive, loaded))
            log->entries = std::move(loaded);
    } catch (...) {
        if (loaded.GetCount() > 0)
            log->entries = std::move(loaded);
        throw;
    }
}

CString AppLogger::GetRegistryValue(const CString& key, const CString& value)
{
    return LogSettings::Value(key, value);
}

CString AppLogger::GetSettingsPathFromRegistry()
{
    const Locked log;
    return LogSettings::GetSettingsPathFromRegistry(m_csAppName);
}

void AppLogger::DealWithProgramFilesInstall(CString& folder)
{
    LogSettings::DealWithProgramFilesInstall(folder);
}

CString AppLogger::GetProgramFilesDir()
{
    return LogSettings::GetProgramFilesDir();
}
