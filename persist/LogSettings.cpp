#include "persist/LogSettings.h"

#include <charconv>
#include <memory>
#include <string_view>

#include "FileUtils.h"
#include "StringUtils.h"
#include "framework/PathParts.h"
#include "platform/Platform.h"

namespace {

constexpr const char* Company = "CorvaneSoftware";
constexpr const char* Switch = "Log";
constexpr const char* Extension = ".log";

#ifdef NDEBUG
constexpr const char* FolderOf64BitBuild = "SettingsPathRelease_x64";
#else
constexpr const char* FolderOf64BitBuild = "SettingsPathDebug_x64";
#endif
constexpr bool Is64Bit = sizeof(void*) == 8;
constexpr DWORD MostValueBytes = 0x10000;

// ---- the registry ---------------------------------------------------------------------------------------

struct CloseKey {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

bool HasName(const CString& application)
{
    return !application.IsEmpty() && application.View().find('\0') == std::string_view::npos;
}

CString KeyOf(const CString& application)
{
    return CString("Software\\") + Company + "\\" + application;
}

bool IsOne(std::string_view text)
{
    uint64 number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && number == 1;
}

// ---- the folder -----------------------------------------------------------------------------------------

CString WithSeparator(const CString& folder)
{
    const bool hasOne = !folder.IsEmpty() && PathParts::IsSeparator(folder.View().back());
    return hasOne ? folder : folder + "/";
}

CString FullPath(const CString& path)
{
    const DWORD room = GetFullPathNameA(path, 0, nullptr, nullptr);
    if (room == 0)
        return CString();
    CString full;
    const DWORD length = GetFullPathNameA(path, room, full.GetBuffer(static_cast<int>(room)), nullptr);
    full.ReleaseBuffer(length < room ? static_cast<int>(length) : 0);
    return full;
}

struct FreeTaskMemory {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};

// With its separator; empty where the system has no such folder.
CString KnownFolder(const KNOWNFOLDERID& folder)
{
    WCHAR* wide = nullptr;
    const bool isKnown = SHGetKnownFolderPath(folder, 0, nullptr, &wide) == S_OK;
    const std::unique_ptr<WCHAR, FreeTaskMemory> owner(wide);
    if (!isKnown)
        return CString();
    CString base;
    const int size = WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    WideCharToMultiByte(CP_ACP, 0, wide, -1, base.GetBuffer(size), size, nullptr, nullptr);
    base.ReleaseBuffer();
    return WithSeparator(base);
}

CString UsualFolder(const CString& fileName)
{
    const CString base = KnownFolder(FOLDERID_LocalAppData);
    return base.IsEmpty() ? base : base + Company + "/" + fileName;
}

// ---- the name -------------------------------------------------------------------------------------------

constexpr int MostNameBytes = 80; // it stands twice in a path, which may have 259 on the original platform

CString Escaped(const CString& name)
{
    const CString bad = FileUtils::GetBadFileNameChars(false) + "%";
    CString escaped;
    for (const char c : name) {
        const bool isControl = static_cast<unsigned char>(c) < 0x20;
        if (isControl || bad.Find(c) >= 0 || (c == '.' && escaped.IsEmpty()))
            escaped.AppendFormat("%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
        else
            escaped += c;
    }
    return escaped;
}

// FNV-1a
uint64 NumberFor(std::string_view text)
{
    uint64 number = 0xCBF29CE484222325;
    for (const char c : text)
        number = (number ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return number;
}

} // namespace

CString LogSettings::Value(const CString& key, const CString& name)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, key, 0, KEY_READ, &opened) != 0)
        return CString();
    const Key closer(opened);
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExA(opened, name, nullptr, &type, nullptr, &size) != 0 || type != REG_SZ ||
        size > MostValueBytes)
        return CString();
    CString text;
    BYTE* const buffer = reinterpret_cast<BYTE*>(text.GetBuffer(static_cast<int>(size)));
    const bool isRead = RegQueryValueExA(opened, name, nullptr, &type, buffer, &size) == 0;
    text.ReleaseBuffer(isRead ? static_cast<int>(size) : 0);
    if (text.View().ends_with('\0'))
        text.Delete(text.GetLength() - 1);
    return text;
}

bool LogSettings::IsSwitchedOn(const CString& application)
{
    return HasName(application) && IsOne(Value(KeyOf(application), Switch).View());
}

void LogSettings::SwitchOn(const CString& application, bool isOn)
{
    if (!HasName(application))
        return;
    HKEY created = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, KeyOf(application), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                        nullptr, &created, nullptr) != 0)
        return;
    const Key closer(created);
    const char* const text = isOn ? "1" : "0";
    RegSetValueExA(created, Switch, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), 2);
}

CString LogSettings::GetSettingsPathFromRegistry(const CString& application)
{
    if (!HasName(application))
        return CString();
    const CString key = KeyOf(application);
    const CString ofBuild = Is64Bit ? Value(key, FolderOf64BitBuild) : CString();
    return ofBuild.IsEmpty() ? Value(key, "SettingsPath") : ofBuild;
}

CString LogSettings::GetProgramFilesDir()
{
    return KnownFolder(FOLDERID_ProgramFiles);
}

void LogSettings::DealWithProgramFilesInstall(CString& folder)
{
    const CString programs = GetProgramFilesDir();
    if (!programs.IsEmpty() && StringUtils::MatchFirstChars(FullPath(WithSeparator(folder)), programs, false))
        folder.Empty();
}

CString LogSettings::LogFile(const CString& application)
{
    if (!HasName(application))
        return CString();
    const CString name = AsFileName(application);
    CString folder = GetSettingsPathFromRegistry(application);
    DealWithProgramFilesInstall(folder);
    if (folder.IsEmpty())
        folder = UsualFolder(name);
    return folder.IsEmpty() ? CString() : FullPath(WithSeparator(folder) + name + Extension);
}

CString LogSettings::AsFileName(const CString& application)
{
    CString name = Escaped(application);
    if (name.GetLength() <= MostNameBytes)
        return name;
    CString number;
    number.Format("%%%016llX", NumberFor(application.View()));
    return name.Left(MostNameBytes - number.GetLength()) + number;
}
