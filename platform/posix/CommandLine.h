// The words of a command line, by the rules of the platform's runtime library.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CommandLine {

// The first word ends at a blank or tab outside quotes; quotes vanish, and backslashes mean nothing. Of the
// others: two backslashes before a quote are one, a single one there makes the quote an ordinary character,
// and "" inside quotes is one. A quote that is not closed reaches to the end.
std::vector<std::string> Split(std::string_view line);

} // namespace CommandLine
