// What the platform does to files against the answers of the original platform, and the exceptions, each with
// its reason.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <set>
#include <string>
#include <sys/stat.h>

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
        for (const char* name : {"plain.txt", "ro.txt", ".hidden.txt", "noext", "attr.txt", "other.txt"})
            m_folder.Write(name, "0123456789");
        for (const char* name :
             {"notes.txt", "Readme.TXT", "noext", "a.b.txt", ".dot", "Zeta.dat", "notes.txtx"})
            m_folder.Write("Find/" + std::string(name), "123456789");
        chmod(m_folder.Path("ro.txt").c_str(), 0444);
        SetLastError(0);
    }
    // Of a recorded path; a hidden file has a name for it here, and the root has no drive.
    std::string Path(std::string path) const
    {
        if (path.starts_with("C:\\pa") || path.starts_with("C:/pa"))
            path.replace(0, 5, Root());
        if (const std::size_t hidden = path.find("hidden.txt"); hidden != std::string::npos)
            path.insert(hidden, ".");
        return path == "C:\\" ? "/" : path;
    }
    // And back.
    std::string Shown(std::string path, const char* root) const
    {
        return path.starts_with(Root()) ? path.replace(0, Root().size(), root) : path;
    }

private:
    std::string Root() const { return m_folder.Path().substr(0, m_folder.Path().size() - 1); }

    TemporaryFolder m_folder;
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
    std::snprintf(text, sizeof text, "0x%X", number);
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
    if (Fits(row.what, "first (.*) share (.*), then (.*) share ([^,]*)(, )?(.*)", parts)) {
        const HANDLE held = Open(place.Path(Plain), parts[0], parts[1]);
        const DWORD disposition = parts[5].empty() ? OPEN_EXISTING : DispositionOf(parts[5]);
        const std::string answer = Opened(Open(place.Path(Plain), parts[2], parts[3], disposition));
        CloseHandle(held);
        return answer;
    }
    if (!Fits(row.what, "(.*), (read|write|read.write), ([A-Z_]*|disposition .)( with .*)?", parts))
        return "?";
    const DWORD attributes = Has(parts[3], "BACKUP") ? FILE_FLAG_BACKUP_SEMANTICS : FILE_ATTRIBUTE_NORMAL;
    const std::string path = place.Path(parts[0]);
    const std::string answer = Opened(Open(path, parts[1], "0", DispositionOf(parts[2]), attributes));
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data);
    const bool isSizeTold = parts[0] == Plain && parts[1] == "read+write";
    return isSizeTold ? answer + " size_after=" + std::to_string(data.nFileSizeLow) : answer;
}

// ---- open files: "64 at 1000", "1 at 20 of a file of 10, size after", "handle opened for reading" -------

std::string AskOpenFile(const Row& row)
{
    const Place place;
    const std::string &operation = row.operation, &what = row.what;
    Parts parts;
    const bool writes = Has(what, "for writing") || (!Has(what, "for reading") && operation != "ReadFile");
    const HANDLE handle = what == "INVALID_HANDLE_VALUE" ? INVALID_HANDLE_VALUE
                          : what == "0"                  ? nullptr
                                                         : Open(place.Path(Plain), writes ? "write" : "read");
    const LONG position = Fits(what, ".*at ([0-9]+).*", parts) ? std::stoi(parts[0])
                          : Has(what, "at the end")            ? 10
                                                               : 0;
    SetFilePointer(handle, position, nullptr, FILE_BEGIN);
    const LONG number = Fits(what, "(-?[0-9]+) .*", parts) ? std::stoi(parts[0]) : 1;
    char buffer[64] = "x";
    DWORD count = 99;
    std::string answer;
    SetLastError(0);
    if (operation == "ReadFile" || operation == "WriteFile") {
        const auto size = static_cast<DWORD>(number);
        const BOOL done = operation == "ReadFile" ? ReadFile(handle, buffer, size, &count, nullptr)
                                                  : WriteFile(handle, buffer, size, &count, nullptr);
        answer = (done ? "true count=" : "false count=") + std::to_string(count);
        if (!done || what == "64 at the end")
            answer = WithError(answer);
    } else if (operation == "SetFilePointer") {
        const DWORD method = Has(what, "method 3") ? 3 : Has(what, "from the end") ? FILE_END : FILE_BEGIN;
        const DWORD moved = SetFilePointer(handle, number, nullptr, method);
        answer = WithError(Hex(moved));
    } else {
        answer = operation == "SetEndOfFile"  ? Outcome(SetEndOfFile(handle))
                 : operation == "CloseHandle" ? Outcome(CloseHandle(handle))
                                              : std::to_string(GetFileSize(handle, nullptr));
    }
    if (Has(what, "size after"))
        answer += " size=" + std::to_string(GetFileSize(handle, nullptr));
    CloseHandle(handle);
    return answer;
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
    if (!Fits(row.what, "([^,>]*)( -> ([^,]*))?(,.*)?", parts))
        return "?";
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
                                                     : CopyFileA(path.c_str(), to.c_str(), failsIfThere));
    if (row.operation == "CopyFileA" && parts[0].ends_with("ro.txt"))
        answer = AttributesOf(to);
    CloseHandle(held);
    return answer;
}

std::string AskSetAttributes(const Row& row)
{
    const Place place;
    Parts parts;
    if (!Fits(row.what, "(.*) to (.*)", parts))
        return "?";
    const std::string path = place.Path(parts[0]);
    const auto attributes = static_cast<DWORD>(std::stoul(parts[1], nullptr, 16));
    const std::string outcome = Outcome(SetFileAttributesA(path.c_str(), attributes));
    return outcome == "true" ? outcome + " then " + AttributesOf(path) : outcome;
}

std::string AskAccess(const Row& row)
{
    Parts parts;
    const bool isThere = Fits(row.what, "(.*) mode (.)", parts) &&
                         _access(Kept().Path(parts[0]).c_str(), std::stoi(parts[1])) == 0;
    return isThere ? "0" : "-1 errno=" + std::to_string(errno);
}

// ---- names ----------------------------------------------------------------------------------------------

std::string TempFiles(const std::string& what)
{
    const Place place;
    const std::string folder = place.Path("C:\\pa\\dir");
    std::set<std::string> names;
    bool isNumberTold = true, isMadeEmpty = true;
    for (int call = 0; call < 200; ++call) {
        char name[MAX_PATH] = "";
        const UINT number = GetTempFileNameA(folder.c_str(), "abcd", 0, name);
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        isNumberTold &=
            name == folder + "\\abc" + Hex(number).substr(2) + ".tmp" && number >= 1 && number <= 0xFFFF;
        isMadeEmpty &= GetFileAttributesExA(name, GetFileExInfoStandard, &data) && data.nFileSizeLow == 0;
        names.insert(name);
    }
    return Has(what, "different names") ? std::to_string(names.size())
           : Has(what, "made, empty")   ? isMadeEmpty ? "made, empty" : "not made"
           : isNumberTold               ? "yes"
                                        : "no";
}

std::string AskTempName(const Row& row)
{
    Parts parts;
    if (!Fits(row.what, "(.*), prefix ([A-Za-z]+), unique ([0-9A-Fx]+)", parts))
        return TempFiles(row.what);
    const Place place;
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
    const auto operation = row.operation == "GetLongPathNameA" ? GetLongPathNameA : GetShortPathNameA;
    const Place& place = Kept();
    Parts parts;
    const bool isForRoom = Fits(row.what, "buffer of (.*): .*", parts);
    const std::string path = place.Path(isForRoom ? Plain : row.what);
    const auto length = static_cast<DWORD>(path.size());
    const DWORD room = !isForRoom        ? MAX_PATH
                       : parts[0] == "5" ? 5
                                         : length + (Has(row.what, "plus 1") ? 1 : 0);
    char buffer[MAX_PATH] = "";
    const DWORD returned = operation(path.c_str(), buffer, room);
    const std::string shown = place.Shown(buffer, "C:\\pa");
    return isForRoom       ? std::to_string(returned - length)
           : returned == 0 ? WithError("returned=0")
                           : "returned=" + std::to_string(shown.size()) + " name=" + shown;
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
    std::string text;
    for (const auto& name : names)
        text += (text.empty() ? "" : "|") + name;
    return text + end;
}

// ---- where this system differs --------------------------------------------------------------------------

const char* const LetterCase = "the file system's rule for letter case holds";
const char* const AnyByte = "any byte may stand in a name, and a blank or dot at its end stays";
const char* const NoDevices = "names of devices, drives and the prefix \\\\?\\ mean nothing";
const char* const HiddenByName = "hidden is what begins with a dot";

const std::vector<Agreement::Exception> Exceptions = {
    {"CreateFileA", ".*PLAIN.*", "invalid error=2", LetterCase},
    {"CreateFileA", ".*(\\*|<|txt |txt\\.).* read, OPEN.*", "invalid error=2", AnyByte},
    {"CreateFileA", "NUL, read, OPEN.*", "invalid error=2", NoDevices},
    {"DeleteFileA", ".*\\*.*", "false error=2", AnyByte},
    {"_access", ".*PLAIN.*", "-1 errno=2", LetterCase},
    {"_access", ".*(\\*|\\?in|<|\\||noext\\.|txt ).* mode 0", "-1 errno=2", AnyByte},
    {"_access", "(C:|NUL|.*nul|\\\\\\\\\\?.*) mode 0", "-1 errno=2", NoDevices},
    {"GetFileAttributesA", ".*PLAIN.*", "invalid error=2", LetterCase},
    {"GetFileAttributesA", ".*(\\*|\\?in|<|\\||noext\\.|txt ).*", "invalid error=2", AnyByte},
    {"GetFileAttributesA", "C:|NUL|.*nul", "invalid error=2", NoDevices},
    {"GetFileAttributesA", "\\\\\\\\\\?.*", "invalid error=3", NoDevices},
    {"SetFileAttributesA", ".* to 0x2", "true then 0x20", HiddenByName},
    {"GetShortPathNameA", ".*PLAIN.*", "returned=0 error=2", LetterCase},
    {"GetLongPathNameA", ".*\\*.txt", "returned=0 error=2", AnyByte},
    {"GetLongPathNameA", "(.\\\\)?PLAIN.TXT", "returned=0 error=2", LetterCase},
    {"GetLongPathNameA", "..\\\\PA\\\\PLAIN.TXT", "returned=0 error=3", LetterCase},
    {"GetLongPathNameA", "C:", "returned=0 error=2", NoDevices},
    {"GetLongPathNameA", "C:\\\\", "returned=1 name=/", NoDevices},
    {"FindFirstFileA", ".*(README.txt|readme.txt|sub|SUB|zeta.d\\?t|find)", "invalid error=2", LetterCase},
    {"FindFirstFileA", ".*(sub\\\\\\*|FIND.*)", "invalid error=3", LetterCase},
};

TEST(FilesAgreement, WithTheOriginalPlatform)
{
    Agreement::Compare("files-answers.tsv",
                       {{"CreateFileA", AskCreateFile},
                        {"ReadFile", AskOpenFile},
                        {"WriteFile", AskOpenFile},
                        {"SetFilePointer", AskOpenFile},
                        {"SetEndOfFile", AskOpenFile},
                        {"GetFileSize", AskOpenFile},
                        {"CloseHandle", AskOpenFile},
                        {"_access", AskAccess},
                        {"GetFileAttributesA", AskNamed},
                        {"SetFileAttributesA", AskSetAttributes},
                        {"DeleteFileA", AskNamed},
                        {"CreateDirectoryA", AskNamed},
                        {"RemoveDirectoryA", AskNamed},
                        {"MoveFileA", AskNamed},
                        {"CopyFileA", AskNamed},
                        {"GetTempFileNameA", AskTempName},
                        {"GetLongPathNameA", AskLongOrShort},
                        {"GetShortPathNameA", AskLongOrShort},
                        {"FindFirstFileA", AskFindFirst}},
                       Exceptions);
}

} // namespace
