// recent_files FOLDER [WILDCARD]
//
// Lists the files below a folder in natural order, shows what a wildcard matches (default *read*) and which
// names occur twice, "opens" some of the matches, and remembers them: the next run begins with the recent and
// the popular list. They lie in $XDG_STATE_HOME/CorvaneSoftware/recent_files/ (default ~/.local/state).
#pragma once

#include <kvt01.h>

#include <vector>

namespace Listing {

int Run(const std::vector<CString>& arguments);

} // namespace Listing
