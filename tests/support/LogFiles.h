// What tests of the log share: log files written and read byte by byte, and a log of the test's own.
#pragma once

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "AppLogger.h"
#include "CStringArray.h"
#include "support/ArchiveBytes.h"
#include "support/UserSettings.h"

using StoredLines = std::vector<std::pair<std::string, std::string>>; // markers and texts

inline std::string Number(uint64 value, int bytes)
{
    return bytes == 0 ? std::string() : static_cast<char>(value & 0xFF) + Number(value >> 8, bytes - 1);
}

inline std::string ShortText(const std::string& text)
{
    return Number(text.size(), 1) + text;
}

inline std::string EntryBytes(const std::string& marker, const std::string& text, unsigned day = 700000,
                              unsigned second = 1)
{
    return Number(2, 2) + Number(3, 2) + Number(day, 4) + Number(second, 4) + ShortText(marker) +
           ShortText(text);
}

inline std::string HeaderBytes(uint64 count, unsigned version = 7,
                               const std::string& title = "Corvane Software Log File")
{
    return ShortText(title) + Number(version, 2) + ShortText("App") + Number(count, 8);
}

inline std::string LogBytes(const StoredLines& lines)
{
    std::string bytes = HeaderBytes(lines.size());
    for (const auto& [marker, text] : lines)
        bytes += EntryBytes(marker, text);
    return bytes;
}

// Raises for everything that LogBytes does not write, but for other times.
inline StoredLines LinesIn(const std::string& bytes)
{
    std::size_t at = 0;
    const auto text = [&](std::size_t length) {
        at += length;
        return at > bytes.size() ? throw std::runtime_error("breaks off") : bytes.substr(at - length, length);
    };
    const auto shortText = [&] { return text(static_cast<unsigned char>(text(1)[0])); };
    const std::string header = text(HeaderBytes(0).size());
    StoredLines lines;
    while (at < bytes.size()) {
        if (text(4) != Number(0x30002, 4) || text(8).empty())
            throw std::runtime_error("no entry");
        const std::string marker = shortText();
        lines.emplace_back(marker, shortText());
    }
    return header == HeaderBytes(lines.size()) ? lines : throw std::runtime_error("another header");
}

inline const StoredLines::value_type Started = {"{7A7B98BB-B07D-450C-BEB1-5ECF84735ACC}", "Logging started"};

// A user without settings and a logger that has forgotten everything.
struct LogHome {
    LogHome() { Forget(); }
    ~LogHome() { Forget(); }

    static void Load(const std::string& bytes)
    {
        LoadFrom(bytes, [](CArchive& archive) { AppLogger::Serialize(archive); });
    }
    static std::string Stored()
    {
        return StoredBy([](CArchive& archive) { AppLogger::Serialize(archive); });
    }
    static void Forget()
    {
        AppLogger::DeleteInstance();
        AppLogger::m_csAppName.Empty();
        AppLogger::m_csLogFile.Empty();
        AppLogger::m_nMaxLogEntries = 500;
        Load(HeaderBytes(0));
    }
    static void Start(const std::string& name = "App")
    {
        AppLogger::SetAppName(name);
        AppLogger::EnableLogging(true);
    }
    static std::vector<std::string> Texts()
    {
        CStringArray lines;
        AppLogger::GetLogText(lines);
        return {lines.begin(), lines.end()};
    }
    static constexpr const char* Name = "state/CorvaneSoftware/App/App.log";
    static std::string KeyOf(const std::string& app) { return "Software\\CorvaneSoftware\\" + app; }

    const TemporaryFolder& Folder() const { return settings.Folder(); }
    std::string Path() const { return Folder().Path(Name); }
    void Write(const std::string& bytes) const { Folder().Write(Name, bytes); }
    std::string Bytes() const
    {
        return std::filesystem::is_directory(Path()) ? "a folder" : Folder().Read(Name);
    }
    StoredLines Lines() const { return LinesIn(Bytes()); }
    std::set<std::string> Files() const
    {
        std::set<std::string> names;
        for (const auto& entry :
             std::filesystem::directory_iterator(Folder().Path("state/CorvaneSoftware/App")))
            names.insert(entry.path().filename().string());
        return names;
    }

    UserSettings settings;
};
