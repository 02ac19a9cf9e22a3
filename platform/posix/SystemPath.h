// Paths on their way to the system.
#pragma once

#include <string>

#include "BasicTypes.h"

// The path with every \ as /; a null pointer counts as empty.
std::string SystemPath(const char* path);

// The error of a path that the system refused with this errno: a missing last part is ERROR_FILE_NOT_FOUND, a
// missing folder on the way to it ERROR_PATH_NOT_FOUND.
DWORD ErrorForPath(const std::string& systemPath, int posix);

// Up to and including the last slash, and what follows it.
std::string FolderOf(const std::string& systemPath);
std::string NameOf(const std::string& systemPath);
