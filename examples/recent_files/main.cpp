// recent_files FOLDER [WILDCARD]
//
// Lists the files below a folder in natural order, shows what a wildcard matches (default *read*) and which
// names occur twice, "opens" some of the matches, and remembers them: the next run begins with the recent and
// the popular list. They lie in $XDG_STATE_HOME/CorvaneSoftware/recent_files/ (default ~/.local/state).

#include <kvt01.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr std::size_t Shown = 8;
constexpr std::size_t Opened = 3;

// Appends every file below the folder, whose path ends in a separator. Links to folders are not followed.
void ListFiles(const CString& folder, TextArray& files)
{
    TextArray folders;
    CFileFind finder;
    for (bool more = finder.FindFile(folder + "*"); more;) {
        more = finder.FindNextFile();
        if (!finder.IsDirectory())
            files.Add(folder + finder.GetFileName());
        else if (!finder.IsDots() && !finder.IsLink())
            folders.Add(folder + finder.GetFileName() + "/");
    }
    for (const CString& deeper : folders)
        ListFiles(deeper, files);
}

void Show(const char* title, const TextArray& list)
{
    std::printf("\n%s: %zu\n", title, list.GetCount());
    for (std::size_t i = 0; i < std::min(list.GetCount(), Shown); ++i)
        std::printf("  %s\n", list[i].GetString());
    if (list.GetCount() > Shown)
        std::puts("  ...");
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

void ShowRemembered(MRUArray& lists)
{
    TextArray recent;
    TextArray popular;
    lists.GetRecent(recent, true, false, true, false, TextArray::ContentPaths);
    lists.GetPopular(popular, false);
    Show("Opened recently", recent);
    Show("Opened most often", popular);
}

void Run(CString folder, const CString& wildcard)
{
    RememberedFiles remembered;
    DirUtils::EnsureTrailingForwardSlash(folder);
    if (!CFileFind().FindFile(folder + "*"))
        throw std::runtime_error(std::string(folder) + ": no folder that can be read");
    ShowRemembered(remembered.Lists());

    TextArray files;
    ListFiles(folder, files);
    files.Sort(true, false, TextArray::ContentPaths);
    Show("Files in natural order", files);

    const TextArray matches = Matching(files, wildcard);
    Show(wildcard, matches);
    Show("Names that occur twice or more", NamesThatOccurTwice(files));

    TextArray opened(matches);
    opened.Trim(Opened);
    for (const CString& file : opened)
        remembered.Lists().Add(file);
    remembered.Save();
    Show("Opened now", opened);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        std::fputs("usage: recent_files FOLDER [WILDCARD]\n", stderr);
        return 2;
    }
    try {
        Run(argv[1], argc > 2 ? argv[2] : "*read*");
        return 0;
    } catch (const CArchiveException&) {
        std::fputs("recent_files: the list of recent files is damaged; it was left as it is\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "recent_files: %s\n", error.what());
    }
    return 1;
}
