// What tests of the log share: log files written and read byte by byte, and a log of the test's own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "AppLogger.h"
#include "CStringArray.h"
#include "support/ArchiveBytes.h"
#include "support/UserSettings.h"

struct StoredLine {
    std::string marker;
    std::string text;
    std::uint32_t day = 700000;
    std::uint32_t second = 1;

    friend bool operator==(const StoredLine& a, const StoredLine& b)
    {
        return std::tie(a.marker, a.text) == std::tie(b.marker, b.text);
    }
    friend std::ostream& operator<<(std::ostream& out, const StoredLine& line)
    {
        return out << line.marker << '|' << line.text;
    }
};
using StoredLines = std::vector<StoredLine>;

inline std::string Number(std::uint64_t value, int bytes)
{
    std::string out;
    for (; bytes > 0; --bytes, value >>= 8)
        out += static_cast<char>(value & 0xFF);
    return out;
}

inline std::string ShortText(const std::string& text)
{
    return Number(text.size(), 1) + text;
}

inline std::string BytesOfLine(const StoredLine& line, unsigned version = 2)
{
    return Number(version, 2) + Number(3, 2) + Number(line.day, 4) + Number(line.second, 4) +
           ShortText(line.marker) + ShortText(line.text);
}

inline std::string LogBytes(const StoredLines& lines, unsigned version = 7,
                            const std::string& title = "Corvane Software Log File")
{
    std::string bytes = ShortText(title) + Number(version, 2) + ShortText("Any") + Number(lines.size(), 8);
    for (const StoredLine& line : lines)
        bytes += BytesOfLine(line);
    return bytes;
}

// Raises for everything that LogBytes does not write.
inline StoredLines LinesIn(const std::string& bytes)
{
    std::size_t at = 0;
    const auto number = [&](int width) {
        std::uint64_t value = 0;
        for (int i = 0; i < width; ++i)
            value |= std::uint64_t{static_cast<unsigned char>(bytes.at(at++))} << 8 * i;
        return value;
    };
    const auto text = [&] {
        const auto length = static_cast<std::size_t>(number(1));
        at += length;
        return bytes.substr(at - length, length);
    };
    if (text() != "Corvane Software Log File" || number(2) != 7)
        throw std::runtime_error("no log");
    text();
    StoredLines lines;
    for (std::uint64_t left = number(8); left > 0; --left) {
        if (number(2) != 2 || number(2) != 3)
            throw std::runtime_error("no entry");
        StoredLine line;
        line.day = static_cast<std::uint32_t>(number(4));
        line.second = static_cast<std::uint32_t>(number(4));
        line.marker = text();
        line.text = text();
        lines.push_back(line);
    }
    if (at != bytes.size())
        throw std::runtime_error("bytes behind the log");
    return lines;
}

inline const StoredLine Started = {"{7A7B98BB-B07D-450C-BEB1-5ECF84735ACC}", "Logging started"};

// A user with an empty registry and state folder, and a logger that has forgotten everything.
class LogHome {
public:
    LogHome()
    {
        settings.Set("XDG_STATE_HOME", StateFolder());
        Forget();
    }
    ~LogHome() { Forget(); }

    std::string StateFolder() const { return settings.Folder() / "state"; }
    std::string Folder() const { return StateFolder() + "/CorvaneSoftware/App/"; }
    std::string Path() const { return Folder() + "App.log"; }
    void Write(const std::string& bytes) const { UserSettings::WriteFile(Path(), bytes); }
    std::string Bytes() const { return UserSettings::ReadFile(Path()); }
    StoredLines Lines() const { return LinesIn(Bytes()); }
    std::filesystem::path Switch(const std::string& app = "App") const
    {
        return settings.Tree() / "Software/CorvaneSoftware" / app / "Log";
    }
    void Start() const
    {
        AppLogger::SetAppName("App");
        AppLogger::EnableLogging(true);
    }
    std::set<std::string> FilesThere() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Folder()))
            names.insert(entry.path().filename());
        return names;
    }

    static void Forget()
    {
        AppLogger::DeleteInstance();
        AppLogger::m_csAppName.Empty();
        AppLogger::m_csLogFile.Empty();
        AppLogger::m_nMaxLogEntries = 500;
        LoadFrom(LogBytes({}), [](CArchive& archive) { AppLogger::Serialize(archive); });
    }
    static std::vector<std::string> Texts()
    {
        CStringArray lines;
        AppLogger::GetLogText(lines);
        return {lines.begin(), lines.end()};
    }

    UserSettings settings;
};
