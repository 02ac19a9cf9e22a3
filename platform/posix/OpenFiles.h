// The open files of this process, by handle. A handle is a number, never an address: whatever is passed as
// one, closed, null or made up, is looked up in a table and found missing.
#pragma once

#include "platform/posix/PosixPlatform.h"

namespace OpenFiles {

// What a handle may do and is, its rights; never None while it is open.
inline constexpr unsigned None = 0;
inline constexpr unsigned Open = 1;
inline constexpr unsigned Read = 2;
inline constexpr unsigned Write = 4;
inline constexpr unsigned Regular = 8;

// Takes the descriptor over; INVALID_HANDLE_VALUE, and the descriptor stays the caller's, where the table is
// full (at 2^20 open files).
HANDLE Add(int descriptor, unsigned rights) noexcept;

unsigned RightsOf(HANDLE handle) noexcept; // None if it is not open
int DescriptorOf(HANDLE handle) noexcept;  // of an open one
int Remove(HANDLE handle) noexcept;        // the descriptor, now the caller's again; -1 if it is not open

} // namespace OpenFiles
