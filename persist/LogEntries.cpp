#include "persist/LogEntries.h"

#include <algorithm>
#include <utility>

#include "CArchive.h"
#include "CMemFile.h"

namespace {

constexpr WORD EntryVersion = 2;

// An archive in memory needs no large buffer of its own.
constexpr int BufferSize = 512;

template <class Load>
void LoadFrom(std::string_view bytes, Load load)
{
    BYTE buffer[BufferSize];
    CMemFile file(reinterpret_cast<BYTE*>(const_cast<char*>(bytes.data())), bytes.size()); // only read
    CArchive archive(&file, CArchive::load, sizeof buffer, buffer);
    load(archive);
}

std::string BytesOf(LogEntry entry)
{
    BYTE buffer[BufferSize];
    CMemFile file;
    CArchive archive(&file, CArchive::store, sizeof buffer, buffer);
    entry.Serialize(archive);
    archive.Close();
    std::string bytes(static_cast<std::size_t>(file.GetLength()), '\0');
    file.SeekToBegin();
    file.Read(bytes.data(), bytes.size());
    return bytes;
}

} // namespace

// ---- one entry ------------------------------------------------------------------------------------------

LogEntry LogEntry::FromLine(std::string_view line)
{
    line = line.substr(0, line.find_last_not_of(' ') + 1); // npos + 1 is 0
    if (!line.starts_with('{'))
        return {DateTime(), CString(), CString(line)};
    const std::size_t brace = line.find('}');
    if (brace == std::string_view::npos)
        return {DateTime(), CString(line) + "}", CString()};
    const std::string_view text = line.substr(brace + 1);
    return {DateTime(), CString(line.substr(0, brace + 1)),
            CString(text.substr(std::min(text.find_first_not_of(' '), text.size())))};
}

void LogEntry::Serialize(CArchive& archive)
{
    if (archive.IsStoring()) {
        archive << EntryVersion;
        time.Serialize(archive);
        archive << marker << text;
        return;
    }
    WORD version = 0;
    archive >> version;
    if (version != EntryVersion)
        throw CArchiveException(CArchiveException::badSchema);
    time.Serialize(archive);
    archive >> marker >> text;
}

// ---- all of them ----------------------------------------------------------------------------------------

void LogEntries::Add(const LogEntry& entry, bool isPending)
{
    AddEncoded(BytesOf(entry), isPending);
}

void LogEntries::AddEncoded(std::string_view bytes, bool isPending)
{
    m_entries.push_back({bytes.size(), isPending});
    try {
        m_bytes += bytes;
    } catch (...) {
        m_entries.pop_back();
        throw;
    }
}

void LogEntries::TrimTo(uint64 most)
{
    while (m_entries.size() > most) {
        m_droppedBytes += m_entries.front().size;
        m_entries.pop_front();
    }
    if (m_droppedBytes <= m_bytes.size() / 2)
        return;
    m_bytes.erase(0, m_droppedBytes);
    m_droppedBytes = 0;
}

void LogEntries::MarkWritten() noexcept
{
    for (Entry& entry : m_entries)
        entry.isPending = false;
}

void LogEntries::DropWritten()
{
    LogEntries kept;
    ForEach([&](std::string_view bytes, bool isPending) {
        if (isPending)
            kept.AddEncoded(bytes, true);
    });
    *this = std::move(kept);
}

LogEntry LogEntries::Decoded(std::string_view bytes)
{
    LogEntry entry;
    LoadFrom(bytes, [&](CArchive& archive) { entry.Serialize(archive); });
    return entry;
}

DateTime LogEntries::TimeOf(std::string_view bytes)
{
    DateTime time;
    LoadFrom(bytes, [&](CArchive& archive) {
        WORD version = 0;
        archive >> version;
        time.Serialize(archive);
    });
    return time;
}
