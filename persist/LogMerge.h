// Two logs made one, where another process has written the file meanwhile.
#pragma once

#include "persist/LogEntries.h"

namespace LogMerge {

// What the file holds, and of ours what is missing there: pending lines, and lines that another writer's
// older copy of the list has put out of the file. Lines go in by their time, each list keeping its own order.
// Those that stand before the oldest one still in the file fell out of it by the bound; they come first, so
// that the bound makes them fall out of ours too. Equal lines count as often as they occur.
LogEntries Merged(const LogEntries& inFile, const LogEntries& ours);

} // namespace LogMerge
