// The platform's share modes as advisory locks, which handles of this process and of others see alike.
//
// Far behind the content of any file lies one byte for each thing that handles can do to each other: somebody
// reads, somebody writes, somebody denies reading, writing or deleting. A handle holds a shared lock on the
// bytes of what it does; the locks themselves never collide. Whoever wants to read looks whether a lock lies
// on "denies reading", and so on. The locks belong to the open file, not to the process, and end with it.
#pragma once

#include <string>

#include "BasicTypes.h"

namespace ShareLocks {

// Registers what a handle does and denies. False when another handle is in the way; then nothing is
// registered. Two handles that are opened at the same moment and exclude each other may both be refused. True
// where the file system has no locks.
bool Claim(int file, DWORD access, DWORD share);

// Whether some handle denies deleting or renaming the file.
bool IsDeletingDenied(const std::string& systemPath);

} // namespace ShareLocks
