// What the system says of a file, in the platform's terms.
#pragma once

#include <optional>

#include "platform/posix/PosixFiles.h"
#include "platform/posix/SystemPath.h"

struct FileFacts {
    DWORD attributes = 0;
    uint64 size = 0; // 0 for a folder
    FILETIME created = {};
    FILETIME accessed = {};
    FILETIME written = {};
    uint64 volume = 0;
    uint64 index = 0; // on the volume
    DWORD links = 0;

    bool IsFolder() const noexcept { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
    bool IsReadOnly() const noexcept { return (attributes & FILE_ATTRIBUTE_READONLY) != 0; }

    // Into WIN32_FIND_DATAA and WIN32_FILE_ATTRIBUTE_DATA, which share these members.
    template <class Data>
    void CopyTo(Data& data) const noexcept
    {
        data.dwFileAttributes = attributes;
        data.ftCreationTime = created;
        data.ftLastAccessTime = accessed;
        data.ftLastWriteTime = written;
        data.nFileSizeHigh = static_cast<DWORD>(size >> 32);
        data.nFileSizeLow = static_cast<DWORD>(size);
    }
};

// Of the file that the name leads to through links, or of a link that leads nowhere; nothing, with errno set,
// when there is no such file or the path is not usable. The name counts from an open folder; the empty one is
// what the descriptor stands for.
std::optional<FileFacts> FactsOf(int folder, const char* name) noexcept;
std::optional<FileFacts> FactsOf(const SystemPath& path) noexcept;
