// Dates, times and sizes as the user writes them, for a terminal in UTF-8.
#pragma once

#include <kvt01.h>

namespace Regional {

CString Date(const DateTime& moment);
CString Time(const DateTime& moment); // without seconds
CString Count(uint64 number);         // with the user's grouping

} // namespace Regional
