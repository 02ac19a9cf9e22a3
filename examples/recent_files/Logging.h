// recent_files log             shows the log: what was opened, refused, and what failed in the library
// recent_files log on|off      switches it
// recent_files log --crash     adds three lines and kills its own process; `recent_files log` shows them
#pragma once

#include <kvt01.h>

#include <vector>

namespace Logging {

int Run(const std::vector<CString>& arguments);

} // namespace Logging
