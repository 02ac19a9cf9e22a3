// What the platform does to files against the answers of the original platform, and the exceptions, each with
// its reason.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <sys/stat.h>
#include <utility>

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
        for (const char* name : {"plain.txt", "ro.txt", ".hidden.txt", "noext", "attr.txt", "other.txt",
                                 "a long folder name/some long file name.text"})
            m_folder.Write(name, "0123456789");
        chmod(m_folder.Path("ro.txt").c_str(), 0444);
        for (const char* name :
             {"notes.txt", "Readme.TXT", "noext", "a.b.txt", ".dot", "Zeta.dat", "notes.txtx"})
            m_folder.Write("Find/" + std::string(name), "123456789");
        SetLastError(0);
    }
    std::string operator()(const std::string& name) const { return m_folder.Path(name); }
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
    std::string Shown(std::string path, const char* root = "C:\\pa") const
    {
        return path.starts_with(Root()) ? path.replace(0, Root().size(), root) : path;
    }
    std::string Read(const std::string& name) const { return m_folder.Read(name); }

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

// The names in our place for the recording's words.
std::string NameOf(const std::string& words)
{
    const std::pair<const char*, const char*> names[] = {{"existing file", "plain.txt"},
                                                         {"a file", "plain.txt"},
                                                         {"name of a file", "plain.txt"},
                                                         {"onto itself", "plain.txt"},
                                                         {"onto an existing file", "other.txt"},
                                                         {"to its own name in other letters", "PLAIN.TXT"},
                                                         {"read-only file", "ro.txt"},
                                                         {"onto a read-only file", "ro.txt"},
                                                         {"hidden file", ".hidden.txt"},
                                                         {"missing file", "none.txt"},
                                                         {"missing", "none"},
                                                         {"missing folder", "none/none.txt"},
                                                         {"into a missing folder", "none/new"},
                                                         {"below a missing folder", "none/new"},
                                                         {"folder", "dir"},
                                                         {"existing folder", "dir"},
                                                         {"not empty", "full"},
                                                         {"new folder with backslash at the end", "new\\"},
                                                         {"wildcard", "*.txt"}};
    for (const auto& [recorded, name] : names)
        if (words == recorded)
            return name;
    return "new.txt";
}

std::string Hex(DWORD number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", number);
    return text;
}

std::string Number(DWORD number)
{
    return std::to_string(number);
}

std::string ErrorText(const char* failure)
{
    return std::string(failure) + " error=" + Number(GetLastError());
}

std::string Outcome(BOOL done)
{
    return done ? "true" : ErrorText("false");
}

// ---- opening --------------------------------------------------------------------------------------------

bool Has(const std::string& words, const char* word)
{
    return words.find(word) != std::string::npos;
}

DWORD AccessOf(const std::string& words)
{
    return (Has(words, "read") ? GENERIC_READ : 0) | (Has(words, "write") ? GENERIC_WRITE : 0);
}

DWORD ShareOf(const std::string& words)
{
    return (Has(words, "read") ? FILE_SHARE_READ : 0) | (Has(words, "write") ? FILE_SHARE_WRITE : 0);
}

DWORD DispositionOf(const std::string& name)
{
    const char* const names[] = {
        "", "CREATE_NEW", "CREATE_ALWAYS", "OPEN_EXISTING", "OPEN_ALWAYS", "TRUNCATE_EXISTING"};
    return static_cast<DWORD>(std::find(std::begin(names), std::end(names), name) - names);
}

HANDLE Open(const std::string& path, DWORD access, DWORD share = 0, DWORD disposition = OPEN_EXISTING,
            DWORD attributes = FILE_ATTRIBUTE_NORMAL)
{
    return CreateFileA(path.c_str(), access, share, nullptr, disposition, attributes, nullptr);
}

// Says how opening went, and closes.
std::string Opened(HANDLE handle)
{
    const std::string text = ErrorText(handle == INVALID_HANDLE_VALUE ? "invalid" : "opened");
    CloseHandle(handle);
    return text;
}

std::string OpenWhileHeld(const Parts& parts, DWORD access, DWORD share, DWORD disposition)
{
    const Place place;
    const HANDLE held = Open(place("plain.txt"), AccessOf(parts[0]), ShareOf(parts[1]));
    const std::string answer = Opened(Open(place("plain.txt"), access, share, disposition));
    EXPECT_TRUE(CloseHandle(held));
    return answer;
}

std::string AskCreateFile(const Row& row)
{
    Parts parts;
    if (Fits(row.what, "first (.*) share (.*), then CREATE_ALWAYS", parts))
        return OpenWhileHeld(parts, GENERIC_WRITE, 0, CREATE_ALWAYS);
    if (Fits(row.what, "first (.*) share (.*), then (.*) share (.*)", parts))
        return OpenWhileHeld(parts, AccessOf(parts[2]), ShareOf(parts[3]), OPEN_EXISTING);
    const Place place;
    if (Fits(row.what, "existing file, disposition (.)", parts))
        return Opened(Open(place("plain.txt"), GENERIC_READ, 0, static_cast<DWORD>(std::stoi(parts[0]))));
    if (Fits(row.what, "folder, read, OPEN_EXISTING with FILE_FLAG_BACKUP_SEMANTICS", parts))
        return Opened(Open(place("dir"), GENERIC_READ, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS));
    if (Fits(row.what, "hidden file, CREATE_ALWAYS with the hidden attribute", parts))
        return Opened(Open(place(".hidden.txt"), GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_HIDDEN));
    if (Fits(row.what, "(.*), (read.*), (.*)", parts)) {
        const std::string name = NameOf(parts[0]);
        const std::string answer = Opened(Open(place(name), AccessOf(parts[1]), 0, DispositionOf(parts[2])));
        return name == "plain.txt"
                   ? answer + " size_after=" + Number(static_cast<DWORD>(place.Read(name).size()))
                   : answer;
    }
    return Fits(row.what, "(.*) read, OPEN_EXISTING", parts)
               ? Opened(Open(place.Path(parts[0]), GENERIC_READ))
               : "?";
}

// ---- open files: "64 at 1000", "1 at 20 of a file of 10, size after", "handle opened for reading", ... ----

std::string AskOpenFile(const Row& row)
{
    const Place place;
    Parts parts;
    const bool writes =
        Has(row.what, "for writing") || (!Has(row.what, "for reading") && row.operation != "ReadFile");
    const HANDLE handle = row.what == "INVALID_HANDLE_VALUE" ? INVALID_HANDLE_VALUE
                          : row.what == "0"                  ? nullptr
                                            : Open(place("plain.txt"), writes ? GENERIC_WRITE : GENERIC_READ);
    const LONG position = Fits(row.what, ".*at (\\d+).*", parts) ? std::stoi(parts[0])
                          : Has(row.what, "at the end")          ? 10
                                                                 : 0;
    SetFilePointer(handle, position, nullptr, FILE_BEGIN);
    const int number = Fits(row.what, "(-?\\d+) .*", parts) ? std::stoi(parts[0]) : 1;
    const auto wanted = static_cast<DWORD>(number);
    char buffer[64] = "x";
    DWORD count = 99;
    std::string answer;
    SetLastError(0);
    if (row.operation == "ReadFile" || row.operation == "WriteFile") {
        const BOOL done = row.operation == "ReadFile" ? ReadFile(handle, buffer, wanted, &count, nullptr)
                                                      : WriteFile(handle, buffer, wanted, &count, nullptr);
        answer = (done ? "true count=" : "false count=") + Number(count);
        if (!done || row.what == "64 at the end")
            answer = ErrorText(answer.c_str());
    } else if (row.operation == "SetFilePointer") {
        const DWORD method = Has(row.what, "method 3")       ? 3
                             : Has(row.what, "from the end") ? FILE_END
                                                             : FILE_BEGIN;
        const DWORD moved = SetFilePointer(handle, number, nullptr, method);
        answer = ErrorText(Hex(moved).c_str());
    } else {
        answer = row.operation == "SetEndOfFile"  ? Outcome(SetEndOfFile(handle))
                 : row.operation == "CloseHandle" ? Outcome(CloseHandle(handle))
                                                  : Number(GetFileSize(handle, nullptr));
    }
    if (Has(row.what, "size after"))
        answer += " size=" + Number(GetFileSize(handle, nullptr));
    CloseHandle(handle);
    return answer;
}

// ---- files by name --------------------------------------------------------------------------------------

std::string AskAccess(const Row& row)
{
    Parts parts;
    if (!Fits(row.what, "(.*) mode (.)", parts))
        return "?";
    return _access(Kept().Path(parts[0]).c_str(), std::stoi(parts[1])) == 0
               ? "0"
               : "-1 errno=" + std::to_string(errno);
}

std::string AttributesOf(const std::string& path)
{
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? ErrorText("invalid") : Hex(attributes);
}

std::string AskAttributes(const Row& row)
{
    if (row.what != "file held open with share 0")
        return AttributesOf(Kept().Path(row.what));
    const HANDLE held = Open(Kept()("plain.txt"), GENERIC_READ);
    const std::string answer = AttributesOf(Kept()("plain.txt"));
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
    const std::string outcome =
        Outcome(SetFileAttributesA(path.c_str(), static_cast<DWORD>(std::stoul(parts[1], nullptr, 16))));
    return outcome == "true" ? outcome + " then " + AttributesOf(path) : outcome;
}

// Of the operations on one or two names: the words name the source, the target or the state of the source.
std::string AskNamed(const Row& row)
{
    const Place place;
    const std::string words = row.what.substr(0, row.what.find(','));
    const bool isHeld = row.what == "file held open with share 0";
    const HANDLE held = isHeld ? Open(place("plain.txt"), GENERIC_READ) : INVALID_HANDLE_VALUE;
    const std::string one = isHeld                     ? place("plain.txt")
                            : row.what == "empty text" ? ""
                                                       : place(NameOf(words));
    const std::string from = place(words == "missing source" ? "none.txt"
                                   : Has(words, "source")    ? "ro.txt"
                                                             : "plain.txt");
    const std::string to = place(NameOf(words));
    const BOOL failsIfThere = Has(row.what, "fail if there") ? TRUE : FALSE;
    const BOOL done = row.operation == "DeleteFileA"        ? DeleteFileA(one.c_str())
                      : row.operation == "CreateDirectoryA" ? CreateDirectoryA(one.c_str(), nullptr)
                      : row.operation == "RemoveDirectoryA" ? RemoveDirectoryA(one.c_str())
                      : row.operation == "MoveFileA"        ? MoveFileA(from.c_str(), to.c_str())
                                                     : CopyFileA(from.c_str(), to.c_str(), failsIfThere);
    const std::string answer = Has(row.what, "attributes of the copy") ? AttributesOf(to) : Outcome(done);
    CloseHandle(held);
    return answer;
}

// ---- names ----------------------------------------------------------------------------------------------

std::string TempName(const std::string& folder, const char* prefix, UINT unique)
{
    const Place place;
    char name[MAX_PATH] = "untouched";
    const UINT number = GetTempFileNameA(place.Path(folder).c_str(), prefix, unique, name);
    if (number == 0)
        return ErrorText("returned=0") + " name=" + name;
    const std::string file = _access(name, 0) == 0 ? " file=made" : " file=not made";
    if ((unique & 0xFFFF) == 0)
        return "returned=nonzero name=(number varies)" + file;
    return "returned=" + Hex(number) + " name=" + place.Shown(name, "<dir>") + file;
}

std::string TempFiles(const std::string& what)
{
    const Place place;
    std::set<std::string> names;
    std::string last;
    bool isZeroFirst = false, isNumberTold = true, isMadeEmpty = true;
    for (int call = 0; call < 200; ++call) {
        char name[MAX_PATH] = "";
        const UINT number = GetTempFileNameA(place("dir").c_str(), "abcd", 0, name);
        last = std::string(name).substr(place("dir/").size());
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        isZeroFirst |= last[3] == '0';
        isNumberTold &= "0x" + last.substr(3) == Hex(number) + ".tmp" && number >= 1 && number <= 0xFFFF;
        isMadeEmpty &= GetFileAttributesExA(name, GetFileExInfoStandard, &data) && data.nFileSizeLow == 0;
        names.insert(name);
    }
    if (Has(what, "start and end"))
        return last.substr(0, 3) + "..." + last.substr(last.size() - 4);
    if (Has(what, "different names"))
        return std::to_string(names.size());
    if (Has(what, "made, empty"))
        return isMadeEmpty ? "made, empty" : "not made";
    return (Has(what, "returned number") ? isNumberTold : isZeroFirst) ? "yes" : "no";
}

std::string AskTempName(const Row& row)
{
    Parts parts;
    if (row.what.starts_with("unique 0"))
        return TempFiles(row.what);
    if (Fits(row.what, "prefix (\\w+), unique (\\w+).*", parts)) {
        const char* const prefix = parts[0] == "NULL" ? nullptr : parts[0] == "empty" ? "" : parts[0].c_str();
        return TempName("C:\\pa", prefix, static_cast<UINT>(std::stoul(parts[1], nullptr, 0)));
    }
    return Has(row.what, "backslash") ? TempName("C:\\pa\\", "abc", 5)
           : Has(row.what, "'.'")
               ? TempName(".", "abc", 5)
               : TempName(Has(row.what, "is a file") ? "C:\\pa\\plain.txt" : "C:\\pa\\none", "abc", 0);
}

std::string AskTempPath(const Row& row)
{
    char path[MAX_PATH];
    const DWORD length = GetTempPathA(sizeof path, path);
    return Has(row.what, "end of the answer") ? std::string(1, path[length - 1])
                                              : Number(GetTempPathA(1, path) - length);
}

std::string AskShortOfLong(const std::string& what)
{
    const std::string path = Kept()("a long folder name\\some long file name.text");
    char buffer[MAX_PATH] = "";
    const DWORD length = GetShortPathNameA(path.c_str(), buffer, sizeof buffer);
    const bool isShort = path != buffer, isLength = length == std::strlen(buffer);
    GetLongPathNameA(buffer, buffer, sizeof buffer);
    return (Has(what, "8.3") ? isShort : Has(what, "length") ? isLength : path == buffer) ? "yes" : "no";
}

template <DWORD (*Operation)(const char*, char*, DWORD) noexcept>
std::string AskLongOrShort(const Row& row)
{
    Parts parts;
    if (Has(row.what, "long folder and") || Has(row.what, "that short"))
        return AskShortOfLong(row.what);
    const bool isForRoom = Fits(row.what, "buffer of (.*): .*", parts);
    const std::string path = isForRoom ? Kept()("plain.txt") : Kept().Path(row.what);
    const auto length = static_cast<DWORD>(path.size());
    char buffer[MAX_PATH] = "";
    if (isForRoom)
        return Number(Operation(path.c_str(), buffer,
                                parts[0] == "5" ? 5 : length + (Has(row.what, "plus 1") ? 1 : 0)) -
                      length);
    if (Operation(path.c_str(), buffer, sizeof buffer) == 0)
        return ErrorText("returned=0");
    const std::string shown = Kept().Shown(buffer);
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
        return ErrorText("invalid");
    const std::string facts =
        Hex(data.dwFileAttributes) + ' ' + Number(data.nFileSizeLow) + " '" + data.cAlternateFileName + '\'';
    Parts names;
    do
        names.emplace_back(data.cFileName);
    while (FindNextFileA(handle, &data));
    const std::string end = ErrorText(" end");
    EXPECT_TRUE(FindClose(handle));
    if (isSpecial)
        return parts[1] == "attributes" ? facts : names[0] + '|' + names[1];
    std::sort(names.begin(), names.end());
    std::string text;
    for (const auto& name : names)
        text += (text.empty() ? "" : "|") + name;
    return text + end;
}

std::string AskFindNext(const Row&)
{
    WIN32_FIND_DATAA data;
    const HANDLE handle = FindFirstFileA(Kept()("plain.txt").c_str(), &data);
    const std::string outcome = Outcome(FindNextFileA(handle, &data));
    FindClose(handle);
    return outcome;
}

// ---- where this system differs --------------------------------------------------------------------------

const char* const LetterCase = "the file system's rule for letter case holds";
const char* const AnyByte = "any byte may stand in a name, and a blank or dot at its end stays";
const char* const NoDevices = "names of devices, drives and the prefix \\\\?\\ mean nothing";
const char* const NoShortNames = "there are no short names";
const char* const HiddenByName = "hidden is what begins with a dot";

const std::vector<Agreement::Exception> Exceptions = {
    {"CreateFileA", ".*PLAIN.*", "invalid error=2", LetterCase},
    {"CreateFileA", ".*(\\*|<|txt |txt\\.).* read, .*", "invalid error=2", AnyByte},
    {"CreateFileA", "NUL read, .*", "invalid error=2", NoDevices},
    {"DeleteFileA", "wildcard", "false error=2", AnyByte},
    {"_access", ".*PLAIN.*", "-1 errno=2", LetterCase},
    {"_access", ".*(\\*|\\?in|<|\\||noext\\.|txt ).* mode 0", "-1 errno=2", AnyByte},
    {"_access", "(C:|NUL|.*nul|\\\\\\\\\\?.*) mode 0", "-1 errno=2", NoDevices},
    {"GetFileAttributesA", ".*PLAIN.*", "invalid error=2", LetterCase},
    {"GetFileAttributesA", ".*(\\*|\\?in|<|\\||noext\\.|txt ).*", "invalid error=2", AnyByte},
    {"GetFileAttributesA", "C:|NUL|.*nul", "invalid error=2", NoDevices},
    {"GetFileAttributesA", "\\\\\\\\\\?.*", "invalid error=3", NoDevices},
    {"SetFileAttributesA", ".* to 0x2", "true then 0x20", HiddenByName},
    {"GetShortPathNameA", ".*every part fits 8.3", "no", NoShortNames},
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
                        {"GetFileAttributesA", AskAttributes},
                        {"SetFileAttributesA", AskSetAttributes},
                        {"DeleteFileA", AskNamed},
                        {"CreateDirectoryA", AskNamed},
                        {"RemoveDirectoryA", AskNamed},
                        {"MoveFileA", AskNamed},
                        {"CopyFileA", AskNamed},
                        {"GetTempFileNameA", AskTempName},
                        {"GetTempPathA", AskTempPath},
                        {"GetLongPathNameA", AskLongOrShort<GetLongPathNameA>},
                        {"GetShortPathNameA", AskLongOrShort<GetShortPathNameA>},
                        {"FindFirstFileA", AskFindFirst},
                        {"FindNextFileA", AskFindNext}},
                       Exceptions);
}

} // namespace
