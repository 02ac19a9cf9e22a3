// The sub-command `convert`: a text file put into another encoding.
#pragma once

#include <CString.h>

#include <vector>

namespace Convert {

extern const char* const Usage;

// The arguments behind `convert`; the answer is the program's.
int Run(const std::vector<CString>& arguments);

} // namespace Convert
