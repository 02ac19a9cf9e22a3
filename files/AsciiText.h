// Text of which every character is below 80: the same in all encodings of text files.
#pragma once

#include <cstring>
#include <string_view>

#include "platform/Platform.h"

namespace AsciiText {

inline uint64 EightBytes(const char* bytes)
{
    uint64 word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Eight bytes at a time; the last ones may overlap those before.
inline bool Is(std::string_view text)
{
    constexpr std::size_t step = 8;
    uint64 all = 0;
    if (text.size() < step) {
        char few[step] = {};
        text.copy(few, step);
        all = EightBytes(few);
    } else {
        for (std::size_t i = 0; i + step < text.size(); i += step)
            all |= EightBytes(text.data() + i);
        all |= EightBytes(text.data() + text.size() - step);
    }
    return (all & 0x8080808080808080) == 0;
}

// Whether the page is known to hold such text as it is; others are asked.
inline bool IsKeptBy(unsigned int codePage)
{
    return codePage == CP_ACP || codePage == CP_UTF8;
}

} // namespace AsciiText
