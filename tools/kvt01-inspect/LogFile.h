// The log file of an application, which is an archive:
//   the title "Corvane Software Log File", a 16-bit version (6 or 7), the application's name,
//   the number of entries in 8 bytes, and of each entry, the oldest first:
//   the 16-bit word 2, the time as a DateTime record, the marker and the text
#pragma once

#include "Source.h"

// Prints a line for each entry. Throws Damage where the file is not like that, after all entries before it.
void PrintLog(Source& source);
