// The files that match a pattern, one after the other.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <mutex>
#include <new>
#include <string>

#include "platform/posix/Failures.h"
#include "platform/posix/FileFacts.h"
#include "platform/posix/WildcardMatch.h"

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

// What a finding handle points to: an open folder, or none after an exact name was found.
struct Search {
    std::unique_ptr<DIR, CloseFolder> folder;
    std::string mask;
    int dotsLeft = 2; // . and .. come first, wherever the folder lists them
    Search* next = nullptr;
};

// All open searches, so that whatever is passed as a handle is looked up, never followed.
std::mutex searchesLock;
constinit Search* searches = nullptr;

Search** PlaceOf(HANDLE handle) noexcept
{
    Search** place = &searches;
    while (*place != nullptr && *place != handle)
        place = &(*place)->next;
    return place;
}

HANDLE Keep(std::unique_ptr<Search> search) noexcept
{
    const std::lock_guard guard(searchesLock);
    search->next = searches;
    return searches = search.release();
}

// nullptr if this is no open search.
Search* SearchOf(HANDLE handle) noexcept
{
    const std::lock_guard guard(searchesLock);
    return *PlaceOf(handle);
}

std::unique_ptr<Search> Take(HANDLE handle) noexcept
{
    const std::lock_guard guard(searchesLock);
    Search** const place = PlaceOf(handle);
    std::unique_ptr<Search> search(*place);
    if (search)
        *place = search->next;
    return search;
}

bool IsDots(std::string_view name) noexcept
{
    return name == "." || name == "..";
}

void Fill(WIN32_FIND_DATAA& data, std::string_view name, const FileFacts& facts) noexcept
{
    data = {};
    facts.CopyTo(data);
    name.copy(data.cFileName, sizeof data.cFileName - 1);
}

// A file whose facts are not to be had is listed with what the folder knows.
FileFacts FactsOfEntry(unsigned char type) noexcept
{
    FileFacts facts;
    facts.attributes = type == DT_DIR ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
    return facts;
}

bool FillFromFolder(const Search& search, const char* name, unsigned char type,
                    WIN32_FIND_DATAA& data) noexcept
{
    const auto facts = FactsOf(dirfd(search.folder.get()), name);
    if (!facts && errno == ENOENT) // it has just been deleted
        return false;
    Fill(data, name, facts ? *facts : FactsOfEntry(type));
    return true;
}

// ERROR_NO_MORE_FILES at the end.
DWORD FindNext(Search& search, WIN32_FIND_DATAA& data) noexcept
{
    if (!search.folder)
        return ERROR_NO_MORE_FILES;
    while (search.dotsLeft > 0) {
        const char* const dots = search.dotsLeft-- == 2 ? "." : "..";
        if (MatchesWildcards(dots, search.mask) && FillFromFolder(search, dots, DT_DIR, data))
            return ERROR_SUCCESS;
    }
    while (const dirent* const entry = readdir(search.folder.get()))
        if (!IsDots(entry->d_name) && MatchesWildcards(entry->d_name, search.mask) &&
            FillFromFolder(search, entry->d_name, entry->d_type, data))
            return ERROR_SUCCESS;
    return ERROR_NO_MORE_FILES;
}

DWORD FindExact(const SystemPath& pattern, std::string_view name, WIN32_FIND_DATAA& data) noexcept
{
    const auto facts = FactsOf(pattern);
    if (!facts)
        return ErrorForPath(pattern, errno);
    Fill(data, name, *facts);
    return ERROR_SUCCESS;
}

// Starts the search and finds the first file.
DWORD Start(Search& search, const SystemPath& pattern, WIN32_FIND_DATAA& data)
{
    const auto separator = pattern.View().rfind('/');
    search.mask = pattern.View().substr(separator + 1); // npos + 1 is 0
    if (!search.mask.empty() && search.mask.find_first_of("*?") == std::string::npos)
        return FindExact(pattern, search.mask, data);
    const SystemPath folder(separator == std::string_view::npos ? "."
                                                                : pattern.View().substr(0, separator + 1));
    search.folder.reset(opendir(folder.Text()));
    if (!search.folder) {
        const DWORD error = ErrorForPath(folder, errno);
        return error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND
               : error == ERROR_INVALID_NAME ? ERROR_DIRECTORY
                                             : error;
    }
    const bool isFound = !search.mask.empty() && FindNext(search, data) == ERROR_SUCCESS;
    return isFound ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

} // namespace

HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data) noexcept
try {
    const SystemPath path(pattern);
    auto search = std::make_unique<Search>();
    if (Answer(path.IsUsable() ? Start(*search, path, *data) : ErrorOfUnusable(path)))
        return Keep(std::move(search));
    return INVALID_HANDLE_VALUE;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_HANDLE_VALUE;
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data) noexcept
{
    Search* const search = SearchOf(handle);
    return Answer(search == nullptr ? ERROR_INVALID_HANDLE : FindNext(*search, *data));
}

BOOL FindClose(HANDLE handle) noexcept
{
    return Answer(Take(handle) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}
