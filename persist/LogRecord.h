// The layout of the log file, an archive: the title "Corvane Software Log File", the 16-bit version 7, the
// application's name, the number of entries in 8 bytes, the entries, oldest first. An entry is the 16-bit
// version 2, the record of its time, the marker, the text.
#pragma once

#include "CArchive.h"
#include "CString.h"
#include "persist/LogEntries.h"

namespace LogRecord {

void Store(CArchive& archive, const CString& applicationName, const LogEntries& entries);

// Adds what is stored there, of version 6, which has the same layout, or 7. False, and nothing added, for
// another title or version. Where the data break off CArchiveException is raised, and the entries before that
// place have been added. The stored name means nothing to the reader.
bool Load(CArchive& archive, LogEntries& entries);

} // namespace LogRecord
