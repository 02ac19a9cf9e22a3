// The files that match a pattern, one after the other.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <new>

#include "platform/posix/FileFacts.h"
#include "platform/posix/SystemPath.h"

namespace {

// * for any characters, ? for exactly one. Goes back to the last * only, so the cost is the product of the
// lengths.
bool Matches(const char* name, const char* mask)
{
    const char* afterStar = nullptr;
    const char* resume = nullptr;
    while (*name != '\0') {
        if (*mask == '*') {
            afterStar = ++mask;
            resume = name;
        } else if (*mask != '\0' && (*mask == '?' || *mask == *name)) {
            ++mask;
            ++name;
        } else if (afterStar != nullptr) {
            mask = afterStar;
            name = ++resume;
        } else {
            return false;
        }
    }
    return mask[std::strspn(mask, "*")] == '\0';
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// What a finding HANDLE points to: an open folder, or nothing after an exact name was found.
struct Search {
    std::unique_ptr<DIR, CloseFolder> folder;
    std::string path; // of the folder, with its slash
    std::string mask;
    int dotsLeft = 2; // . and .. come first, wherever the folder lists them
};

void Fill(WIN32_FIND_DATAA& data, const std::string& name, const FileFacts& facts)
{
    data = {facts.attributes,
            facts.created,
            facts.accessed,
            facts.written,
            static_cast<DWORD>(facts.size >> 32),
            static_cast<DWORD>(facts.size),
            {}};
    std::memcpy(data.cFileName, name.c_str(), std::min<std::size_t>(name.size(), MAX_PATH - 1));
}

bool IsDots(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

// The next name that matches, or nullptr.
const char* NextName(Search& search)
{
    while (search.dotsLeft > 0) {
        const char* const dots = search.dotsLeft-- == 2 ? "." : "..";
        if (Matches(dots, search.mask.c_str()))
            return dots;
    }
    while (const dirent* const entry = search.folder ? readdir(search.folder.get()) : nullptr)
        if (!IsDots(entry->d_name) && Matches(entry->d_name, search.mask.c_str()))
            return entry->d_name;
    return nullptr;
}

bool FindNext(Search& search, WIN32_FIND_DATAA& data)
{
    while (const char* const name = NextName(search))
        if (const auto facts = FactsOf(search.path + name)) { // else it has just been deleted
            Fill(data, name, *facts);
            return true;
        }
    return false;
}

// Starts the search and finds the first file; ERROR_SUCCESS or why there is none.
DWORD Start(Search& search, const std::string& pattern, WIN32_FIND_DATAA& data)
{
    search.path = FolderOf(pattern);
    search.mask = NameOf(pattern) == "*.*" ? "*" : NameOf(pattern);
    if (search.mask.empty())
        return pattern.empty() ? ERROR_PATH_NOT_FOUND : ERROR_FILE_NOT_FOUND;
    if (search.mask.find_first_of("*?") == std::string::npos) {
        const auto facts = FactsOf(pattern);
        if (!facts)
            return ErrorForPath(pattern, errno);
        Fill(data, search.mask, *facts);
        search.dotsLeft = 0;
        return ERROR_SUCCESS;
    }
    search.folder.reset(opendir(search.path.empty() ? "." : search.path.c_str()));
    if (!search.folder)
        return errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorForPath(search.path, errno);
    return FindNext(search, data) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

} // namespace

HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data) noexcept
try {
    auto search = std::make_unique<Search>();
    const DWORD error = Start(*search, SystemPath(pattern), *data);
    if (error == ERROR_SUCCESS)
        return search.release();
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_HANDLE_VALUE;
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data) noexcept
try {
    const bool isHandle = handle != nullptr && handle != INVALID_HANDLE_VALUE;
    if (isHandle && FindNext(*static_cast<Search*>(handle), *data))
        return TRUE;
    SetLastError(isHandle ? ERROR_NO_MORE_FILES : ERROR_INVALID_HANDLE);
    return FALSE;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
}

BOOL FindClose(HANDLE handle) noexcept
{
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    delete static_cast<Search*>(handle);
    return TRUE;
}
