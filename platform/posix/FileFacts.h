// What the system says of a file, in the platform's terms.
#pragma once

#include <optional>
#include <string>

#include "platform/posix/PosixFiles.h"

struct FileFacts {
    DWORD attributes;
    uint64 size;
    FILETIME created;
    FILETIME accessed;
    FILETIME written;

    bool IsFolder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
    bool IsReadOnly() const { return (attributes & FILE_ATTRIBUTE_READONLY) != 0; }
};

// Of the file that the path leads to through links, or of a link that leads nowhere; nothing, with errno set,
// when there is no such file.
std::optional<FileFacts> FactsOf(const std::string& systemPath);
