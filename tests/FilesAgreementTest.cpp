// What the platform does to files against the answers of the original platform.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <string>

#include "platform/Platform.h"
#include "support/Agreement.h"
#include "support/TemporaryFolder.h"

namespace {

using Agreement::Fits;
using Agreement::Parts;
using Agreement::Row;

// The folder of the recording, C:\pa.
class Place {
public:
    Place()
    {
        for (const char* name :
             {"a long folder name", "A Long Folder Name", "dir", "full/inside", "Find/Sub"})
            m_folder.MakeFolder(name);
        for (const char* name : {"plain.txt", "ro.txt", "hidden.txt", "noext", "attr.txt", "other.txt"})
            m_folder.Write(name, "0123456789");
        for (const char* name :
             {"notes.txt", "Readme.TXT", "noext", "a.b.txt", ".dot", "Zeta.dat", "notes.txtx"})
            m_folder.Write("Find/" + std::string(name), "123456789");
        SetFileAttributesA(m_folder.Path("ro.txt").c_str(), FILE_ATTRIBUTE_READONLY);
        const std::string hidden = m_folder.Path("hidden.txt");
        SetFileAttributesA(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN);
        if ((GetFileAttributesA(hidden.c_str()) & FILE_ATTRIBUTE_HIDDEN) == 0) // which takes a dot here
            std::filesystem::rename(hidden, m_folder.Path(m_hidden = ".hidden.txt"));
        SetLastError(0);
    }
    // Of a recorded path.
    std::string Path(std::string path) const
    {
        if (path.starts_with("C:\\pa") || path.starts_with("C:/pa"))
            path.replace(0, 5, Root());
        if (const std::size_t hidden = path.find("hidden.txt"); hidden != std::string::npos)
            path.replace(hidden, 10, m_hidden);
        return path == "C:\\" ? std::filesystem::current_path().root_path().string() : path;
    }
    // And back.
    std::string Shown(std::string path, const char* root) const
    {
        return path.starts_with(Root()) ? path.replace(0, Root().size(), root) : path;
    }

private:
    std::string Root() const { return m_folder.Path().substr(0, m_folder.Path().size() - 1); }

    TemporaryFolder m_folder;
    std::string m_hidden = "hidden.txt";
};

// For questions that change nothing.
const Place& Kept()
{
    static const Place place;
    SetLastError(0);
    return place;
}

const std::string Plain = "C:\\pa\\plain.txt";

std::string Hex(DWORD number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(number));
    return text;
}

std::string WithError(const std::string& answer)
{
    return answer + " error=" + std::to_string(GetLastError());
}

std::string Outcome(BOOL done)
{
    return done ? "true" : WithError("false");
}

bool Has(const std::string& words, const char* word)
{
    return words.find(word) != std::string::npos;
}

// ---- opening: "C:\pa\dir, read, OPEN_EXISTING", "first read share 0, then none share 0" -----------------

HANDLE Open(const std::string& path, const std::string& access, const std::string& share = "0",
            DWORD disposition = OPEN_EXISTING, DWORD attributes = FILE_ATTRIBUTE_NORMAL)
{
    const DWORD rights =
        (Has(access, "read") ? GENERIC_READ : 0) | (Has(access, "write") ? GENERIC_WRITE : 0);
    const DWORD shared =
        (Has(share, "read") ? FILE_SHARE_READ : 0) | (Has(share, "write") ? FILE_SHARE_WRITE : 0);
    return CreateFileA(path.c_str(), rights, shared, nullptr, disposition, attributes, nullptr);
}

// Says how opening went, and closes.
std::string Opened(HANDLE handle)
{
    const std::string answer = WithError(handle == INVALID_HANDLE_VALUE ? "invalid" : "opened");
    CloseHandle(handle);
    return answer;
}

DWORD DispositionOf(const std::string& name)
{
    const char* const names[] = {"disposition 0", "CREATE_NEW",        "CREATE_ALWAYS", "OPEN_EXISTING",
                                 "OPEN_ALWAYS",   "TRUNCATE_EXISTING", "disposition 6"};
    return static_cast<DWORD>(std::find(std::begin(names), std::end(names), name) - names);
}

std::string AskCreateFile(const Row& row)
{
    const Place place;
    Parts parts;
    if (Fits(row.what, "first (.*) share (.*), then (.*) share ([^,]*)(, CREATE_ALWAYS)?", parts)) {
        const HANDLE held = Open(place.Path(Plain), parts[0], parts[1]);
        const DWORD disposition = parts[4].empty() ? OPEN_EXISTING : CREATE_ALWAYS;
        const std::string answer = Opened(Open(place.Path(Plain), parts[2], parts[3], disposition));
        CloseHandle(held);
        return answer;
    }
    Fits(row.what, "(.*), (read|write|read.write), ([A-Z_]*|disposition .)( with .*)?", parts);
    const DWORD attributes = Has(parts[3], "BACKUP") ? FILE_FLAG_BACKUP_SEMANTICS : FILE_ATTRIBUTE_NORMAL;
    const std::string path = place.Path(parts[0]);
    const std::string answer = Opened(Open(path, parts[1], "0", DispositionOf(parts[2]), attributes));
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data);
    const bool isSizeTold = parts[0] == Plain && parts[1] == "read+write";
    return isSizeTold ? answer + " size_after=" + std::to_string(data.nFileSizeLow) : answer;
}

// ---- files by name: "C:\pa\ro.txt -> C:\pa\new.txt", "C:\pa\plain.txt, held open with share 0" ----------

std::string AttributesOf(const std::string& path)
{
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? WithError("invalid") : Hex(attributes);
}

std::string AskNamed(const Row& row)
{
    const Place place;
    Parts parts;
    Fits(row.what, "([^,>]*)( -> ([^,]*))?(,.*)?", parts);
    const std::string path = place.Path(parts[0]), to = place.Path(parts[2]);
    const HANDLE held = Has(parts[3], "held") ? Open(path, "read") : INVALID_HANDLE_VALUE;
    const BOOL failsIfThere = Has(parts[3], "fail if there") ? TRUE : FALSE;
    std::string answer =
        row.operation == "GetFileAttributesA"
            ? AttributesOf(path)
            : Outcome(row.operation == "DeleteFileA"        ? DeleteFileA(path.c_str())
                      : row.operation == "CreateDirectoryA" ? CreateDirectoryA(path.c_str(), nullptr)
                      : row.operation == "RemoveDirectoryA" ? RemoveDirectoryA(path.c_str())
                      : row.operation == "MoveFileA"        ? MoveFileA(path.c_str(), to.c_str())
                      : row.operation == "MoveFileExA"
                          ? MoveFileExA(path.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)
                          : CopyFileA(path.c_str(), to.c_str(), failsIfThere));
    if (row.operation == "CopyFileA" && parts[0].ends_with("ro.txt"))
        answer = AttributesOf(to);
    CloseHandle(held);
    EXPECT_TRUE(!row.operation.starts_with("Move") || answer != "true" || AttributesOf(to).starts_with("0x"));
    return answer;
}

std::string AskSetAttributes(const Row& row)
{
    const Place place;
    Parts parts;
    Fits(row.what, "(.*) to (.*)", parts);
    const std::string path = place.Path(parts[0]);
    const auto attributes = static_cast<DWORD>(std::stoul(parts[1], nullptr, 16));
    const std::string outcome = Outcome(SetFileAttributesA(path.c_str(), attributes));
    return outcome == "true" ? outcome + " then " + AttributesOf(path) : outcome;
}

std::string AskAccess(const Row& row)
{
    Parts parts;
    Fits(row.what, "(.*) mode (.)", parts);
    const int answer = _access(Kept().Path(parts[0]).c_str(), std::stoi(parts[1]));
    return answer == 0 ? "0" : "-1 errno=" + std::to_string(errno);
}

// ---- names ----------------------------------------------------------------------------------------------

std::string AskTempName(const Row& row)
{
    const Place place;
    Parts parts;
    Fits(row.what, "(.*), prefix ([A-Za-z]+), unique ([0-9A-Fx]+)", parts);
    const char* const prefix = parts[1] == "null" ? nullptr : parts[1] == "empty" ? "" : parts[1].c_str();
    const auto unique = static_cast<UINT>(std::stoul(parts[2], nullptr, 0));
    char name[MAX_PATH] = "untouched";
    const UINT number = GetTempFileNameA(place.Path(parts[0]).c_str(), prefix, unique, name);
    if (number == 0)
        return WithError("returned=0") + " name=" + name;
    const std::string file = _access(name, 0) == 0 ? " file=made" : " file=not made";
    return (unique & 0xFFFF) == 0 ? "returned=nonzero name=(number varies)" + file
                                  : "returned=" + Hex(number) + " name=" + place.Shown(name, "<dir>") + file;
}

std::string AskLongOrShort(const Row& row)
{
    char buffer[MAX_PATH] = "";
    const auto operation = row.operation == "GetLongPathNameA" ? GetLongPathNameA : GetShortPathNameA;
    if (operation(Kept().Path(row.what).c_str(), buffer, sizeof buffer) == 0)
        return WithError("returned=0");
    char root[MAX_PATH] = "";
    operation(Kept().Path("C:\\pa").c_str(), root, sizeof root); // it has two forms as well
    std::string shown = buffer;
    if (shown.starts_with(root))
        shown.replace(0, std::strlen(root), "C:\\pa");
    return "returned=" + std::to_string(shown.size()) + " name=" + shown;
}

// The names found, sorted, and the error at the end.
std::string AskFindFirst(const Row& row)
{
    Parts parts;
    const bool isSpecial = Fits(row.what, "(.*): (attributes|first two).*", parts);
    const std::string pattern = Kept().Path(isSpecial ? parts[0] : row.what);
    WIN32_FIND_DATAA data;
    const HANDLE handle = FindFirstFileA(pattern.c_str(), &data);
    if (handle == INVALID_HANDLE_VALUE)
        return WithError("invalid");
    const std::string facts = Hex(data.dwFileAttributes) + ' ' + std::to_string(data.nFileSizeLow) + " '" +
                              data.cAlternateFileName + '\'';
    Parts names;
    do
        names.emplace_back(data.cFileName);
    while (FindNextFileA(handle, &data));
    const std::string end = WithError(" end");
    EXPECT_TRUE(FindClose(handle));
    if (isSpecial)
        return parts[1] == "attributes" ? facts : names[0] + '|' + names[1];
    std::sort(names.begin(), names.end());
    return std::accumulate(names.begin() + 1, names.end(), names[0],
                           [](const auto& text, const auto& name) { return text + '|' + name; }) +
           end;
}

TEST(FilesAgreement, WithTheOriginalPlatform)
{
    Agreement::CompareFiles(
        {{"CreateFileA", AskCreateFile},
         {"_access", AskAccess},
         {"(GetFileAttributes|DeleteFile|[A-Z][a-z]*Directory|MoveFile(Ex)?|CopyFile)A", AskNamed},
         {"SetFileAttributesA", AskSetAttributes},
         {"GetTempFileNameA", AskTempName},
         {"Get(Long|Short)PathNameA", AskLongOrShort},
         {"FindFirstFileA", AskFindFirst}});
}

} // namespace
