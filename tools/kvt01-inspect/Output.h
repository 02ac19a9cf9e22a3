// Values as text for a terminal. Texts of the library are Windows-1252 and come out as UTF-8; every control
// character, also one that only UTF-8 makes of a byte, is written as \xHH, so that no text can drive the
// terminal.
#pragma once

#include <kvt01.h>

#include <string>
#include <string_view>

namespace Output {

std::string Text(std::string_view windows1252);
// Of the system's own bytes, which are UTF-8: the control characters as above, all else as it is.
std::string Name(std::string_view name);

// 2024-02-29 12:34:56, a missing half as "-".
std::string Date(const DateTime& date);

void Line(const std::string& line); // to standard output

} // namespace Output
