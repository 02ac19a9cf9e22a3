// Two logs made one, where another process has written the file meanwhile.
#pragma once

#include "persist/LogEntries.h"

namespace LogMerge {

// What the file holds, and of ours what it does not, each list in its own order:
//   pending     by time, behind the file's lines of the same time and behind the first line that both have
//               (without one, at the end)
//   lost        lines that an older copy of the list has put out of the file: by time
//   fallen out  those that are no newer than the file's first line, or stand in our list before all that both
//               have: by time, before the file's lines of the same time and before the first line that both
//               have, so that the bound, which put them out of the file, keeps them out
// Equal lines count as often as they occur.
LogEntries Merged(const LogEntries& inFile, const LogEntries& ours);

} // namespace LogMerge
