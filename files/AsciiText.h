// Text of which every character is below 80: the same in all encodings of text files.
#pragma once

#include <cstring>
#include <string_view>

#include "platform/Platform.h"

namespace AsciiText {

// What must not be set in eight bytes of such text, as they lie in the file.
inline constexpr unsigned char ForbiddenInBytes[8] = {0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
inline constexpr unsigned char ForbiddenInLittleEndian[8] = {0x80, 0xFF, 0x80, 0xFF, 0x80, 0xFF, 0x80, 0xFF};
inline constexpr unsigned char ForbiddenInBigEndian[8] = {0xFF, 0x80, 0xFF, 0x80, 0xFF, 0x80, 0xFF, 0x80};

inline uint64 EightBytes(const void* bytes)
{
    uint64 word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Eight bytes at a time; the last ones may overlap those before.
inline bool Is(std::string_view text, const unsigned char (&forbidden)[8] = ForbiddenInBytes)
{
    constexpr std::size_t step = 8;
    if (text.size() < step) {
        char few[step] = {};
        text.copy(few, step);
        return (EightBytes(few) & EightBytes(forbidden)) == 0;
    }
    uint64 all = 0;
    for (std::size_t i = 0; i + step < text.size(); i += step)
        all |= EightBytes(text.data() + i);
    all |= EightBytes(text.data() + text.size() - step);
    return (all & EightBytes(forbidden)) == 0;
}

// Whether the page is known to hold such text as it is; others are asked.
inline bool IsKeptBy(unsigned int codePage)
{
    return codePage == CP_ACP || codePage == CP_UTF8;
}

} // namespace AsciiText
