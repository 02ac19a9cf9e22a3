#include "Listing.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <unordered_map>

#include "Regional.h"

#ifdef _WIN32 // where FILETIME is the system's own
#include <windows.h>
#endif

namespace {

constexpr std::size_t Shown = 8;
constexpr std::size_t Opened = 3;

struct FileFacts {
    uint64 size;
    DateTime written;
};

// The files below a folder: their paths, and what is known of each.
struct FileList {
    TextArray paths;
    std::unordered_map<CString, FileFacts> facts;
};

// Adds every file below the folder, whose path ends in a separator. Links to folders are not followed.
void ListFiles(const CString& folder, FileList& files)
{
    TextArray folders;
    CFileFind finder;
    for (bool more = finder.FindFile(folder + "*"); more;) {
        more = finder.FindNextFile();
        const CString path = folder + finder.GetFileName();
        if (!finder.IsDirectory()) {
            DateTime written;
            written.Set(finder.GetLastWriteTime());
            files.paths.Add(path);
            files.facts[path] = {finder.GetLength(), written};
        } else if (!finder.IsDots() && !finder.IsLink()) {
            folders.Add(path + "/");
        }
    }
    for (const CString& deeper : folders)
        ListFiles(deeper, files);
}

// Prints a title and the first lines of the list.
template <class Line>
void Show(const char* title, const TextArray& list, Line line)
{
    std::printf("\n%s: %s\n", title, Regional::Count(list.GetCount()).GetString());
    for (std::size_t i = 0; i < std::min(list.GetCount(), Shown); ++i)
        line(list[i]);
    if (list.GetCount() > Shown)
        std::puts("  ...");
}

void Show(const char* title, const TextArray& list)
{
    Show(title, list, [](const CString& text) { std::printf("  %s\n", text.GetString()); });
}

void ShowWithFacts(const char* title, const FileList& files)
{
    Show(title, files.paths, [&](const CString& path) {
        const FileFacts& facts = files.facts.at(path);
        std::printf("  %s %s %10s  %s\n", Regional::Date(facts.written).GetString(),
                    Regional::Time(facts.written).GetString(), Regional::Count(facts.size).GetString(),
                    path.GetString());
    });
}

TextArray Matching(const TextArray& files, const CString& wildcard)
{
    TextArray matches;
    for (const CString& file : files)
        if (StringUtils::MatchSpec(FileUtils::ParseFileNameFromPath(file), wildcard, false))
            matches.Add(file);
    return matches;
}

TextArray NamesThatOccurTwice(const TextArray& files)
{
    TextArray names;
    for (const CString& file : files)
        names.Add(FileUtils::ParseFileNameFromPath(file));
    TextArray twice;
    names.GetDuplicates(twice);
    twice.Sort(true, false, TextArray::ContentFiles);
    return twice;
}

// The recent and the popular list in their file. It is replaced as a whole, so that a failure leaves the old
// one.
class RememberedFiles {
public:
    RememberedFiles() : m_path(Folder() + "recent.list")
    {
        if (!std::filesystem::exists(m_path.GetString()))
            return;
        CFile file(m_path, CFile::modeRead);
        CArchive archive(&file, CArchive::load);
        m_lists.Serialize(archive);
        BYTE left = 0;
        if (archive.Read(&left, 1) != 0)
            throw CArchiveException(CArchiveException::genericException);
    }

    MRUArray& Lists() { return m_lists; }

    void Save()
    {
        std::filesystem::create_directories(Folder().GetString());
        const CString fresh = m_path + ".new";
        CFile file(fresh, CFile::modeCreate | CFile::modeWrite);
        CArchive archive(&file, CArchive::store);
        m_lists.Serialize(archive);
        archive.Close();
        file.Close();
        std::filesystem::rename(fresh.GetString(), m_path.GetString());
    }

    const CString& Path() const { return m_path; }

private:
    static CString Folder()
    {
        const char* const state = std::getenv("XDG_STATE_HOME");
        const char* const home = std::getenv("HOME");
        const CString base =
            state != nullptr && *state != '\0' ? CString(state) : CString(home) + "/.local/state";
        return base + "/CorvaneSoftware/recent_files/";
    }

    CString m_path;
    MRUArray m_lists;
};

// Rules for dates that come back every year; the date of each in this one.
void ShowHolidays()
{
    constexpr int Monday = 2;
    constexpr int Thursday = 5;
    DateEntry entries[5];
    entries[0].SetDay("New Year's Day, not at a weekend", 1, 1);
    entries[0].SetWeekDay(true);
    entries[1].SetBeforeAfterDay("The Monday on or before 24 May", 24, 5, -Monday);
    entries[2].SetDayOfWeek("First Monday of September", DateEntry::OccurrenceFirst, Monday, 9);
    entries[3].SetDayOfWeek("Fourth Thursday of November", DateEntry::OccurrenceFourth, Thursday, 11);
    entries[4].SetDay("Christmas Day", 25, 12);

    int year = 0;
    int month = 0;
    int day = 0;
    DateTime::GetDateNow(year, month, day);
    std::printf("\nHolidays of %d:\n", year);
    for (const DateEntry& entry : entries) {
        DateTime date;
        entry.GetDateFor(year, date);
        std::printf("  %s  %s\n", Regional::Date(date).GetString(), entry.GetDesc().GetString());
    }
}

void ShowRemembered(MRUArray& lists)
{
    TextArray recent;
    TextArray popular;
    lists.GetRecent(recent, true, false, true, false, TextArray::ContentPaths);
    lists.GetPopular(popular, false);
    Show("Opened recently", recent);
    Show("Opened most often", popular);
}

void List(CString folder, const CString& wildcard)
{
    RememberedFiles remembered;
    DirUtils::EnsureTrailingForwardSlash(folder);
    if (!CFileFind().FindFile(folder + "*"))
        throw std::runtime_error(std::string(folder) + ": no folder that can be read");
    ShowRemembered(remembered.Lists());

    FileList files;
    ListFiles(folder, files);
    files.paths.Sort(true, false, TextArray::ContentPaths);
    ShowWithFacts("Files in natural order", files);

    const TextArray matches = Matching(files.paths, wildcard);
    Show(wildcard, matches);
    Show("Names that occur twice or more", NamesThatOccurTwice(files.paths));

    TextArray opened(matches);
    opened.Trim(Opened);
    for (const CString& file : opened) {
        remembered.Lists().Add(file);
        AppLogger::AddLine("{Opened} " + file);
    }
    remembered.Save();
    Show("Opened now", opened);
    ShowHolidays();
}

} // namespace

int Listing::Run(const std::vector<CString>& arguments)
{
    if (arguments.empty() || arguments.size() > 2)
        return 2;
    try {
        List(arguments[0], arguments.size() > 1 ? arguments[1] : CString("*read*"));
        return 0;
    } catch (const CArchiveException& error) {
        AppLogger::AddLine(CString("{Refused} the damaged list of recent files: ") + error.what());
        std::fputs("recent_files: the list of recent files is damaged; it was left as it is\n", stderr);
        return 1;
    }
}
