// What tests of text files share: texts as they stand in files.
#pragma once

#include <string>

constexpr int Encodings[] = {1, 2, 3, 4}; // ANSI, UTF-16 little-endian and big-endian, UTF-8
const std::string Marks[] = {"", "", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"};

inline bool IsWide(int encoding)
{
    return encoding == 2 || encoding == 3;
}

// Of the page's own characters it knows only the euro sign.
inline std::string Encoded(const std::string& text, int encoding)
{
    std::string bytes;
    for (const char c : text) {
        const int byte = static_cast<unsigned char>(c);
        const int unit = byte == 0x80 ? 0x20AC : byte;
        const char low = static_cast<char>(unit % 256), high = static_cast<char>(unit / 256);
        if (IsWide(encoding))
            bytes += encoding == 2 ? std::string{low, high} : std::string{high, low};
        else if (encoding == 4 && byte >= 128)
            bytes += {static_cast<char>(192 + byte / 64), static_cast<char>(128 + byte % 64)};
        else
            bytes += c;
    }
    return bytes;
}
