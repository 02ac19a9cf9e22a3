// The encodings of text files: their numbers, and the byte-order marks that they begin with.
#pragma once

#include <string_view>

namespace TextEncoding {

inline constexpr int Automatic = 0; // for reading: what the file's mark says
inline constexpr int Ansi = 1;      // the process code page; no mark
inline constexpr int Utf16LittleEndian = 2;
inline constexpr int Utf16BigEndian = 3;
inline constexpr int Utf8 = 4;
inline constexpr int Utf7 = 5; // this and the next are told from their marks, but neither read nor written
inline constexpr int Utf32BigEndian = 6;

inline constexpr std::size_t LongestMark = 4;

std::string_view MarkOf(int encoding); // empty for what has none

// The encoding that the first bytes of a file are the mark of; Ansi without a mark. The UTF-32 little-endian
// mark FF FE 00 00 begins with that of UTF-16 and counts as it.
int OfMark(std::string_view firstBytes);

inline bool IsReadAndWritten(int encoding)
{
    return encoding >= Ansi && encoding <= Utf8;
}

} // namespace TextEncoding
