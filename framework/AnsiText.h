// Windows-1252, the code page of narrow text, against Unicode.
#pragma once

namespace AnsiText {

// The character of a 16-bit unit, or '?' where the page has none; every half of a surrogate pair is a '?'.
char FromUnit(char16_t unit) noexcept;

} // namespace AnsiText
