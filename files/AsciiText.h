// Text of which every character is below 80: the same in all encodings of text files.
#pragma once

#include <algorithm>
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

inline constexpr std::size_t Word = 8;
inline constexpr uint64 OtherBits = 0x8080808080808080; // that no word of ASCII has

// How many bytes the text begins with that are ASCII: all, or as many whole words as there are before the
// first that is not.
inline std::size_t FrontSize(std::string_view text)
{
    constexpr std::size_t block = 8 * Word;
    std::size_t size = 0;
    for (; text.size() - size >= block; size += block) {
        uint64 all = 0;
        for (std::size_t i = 0; i < block; i += Word) // without a way out: so many are taken at once
            all |= EightBytes(text.data() + size + i);
        if ((all & OtherBits) != 0)
            break;
    }
    for (; text.size() - size >= Word; size += Word)
        if ((EightBytes(text.data() + size) & OtherBits) != 0)
            return size;
    char last[Word] = {};
    text.copy(last, Word, size);
    return (EightBytes(last) & OtherBits) != 0 ? size : text.size();
}

// Copies the text and says whether it is ASCII: a word at a time, of which the last may overlap the one
// before.
inline bool Copy(std::string_view text, char* to)
{
    uint64 all = 0;
    const auto copyWord = [&](std::size_t from) {
        const uint64 word = EightBytes(text.data() + from);
        std::memcpy(to + from, &word, Word);
        all |= word;
    };
    if (text.size() < Word) {
        char few[Word] = {};
        text.copy(few, Word);
        std::copy_n(few, text.size(), to);
        return (EightBytes(few) & OtherBits) == 0;
    }
    for (std::size_t i = 0; i + Word < text.size(); i += Word)
        copyWord(i);
    copyWord(text.size() - Word);
    return (all & OtherBits) == 0;
}

inline bool Is(std::string_view text)
{
    return FrontSize(text) == text.size();
}

// Whether the page is known to hold such text as it is; others are asked.
inline bool IsKeptBy(unsigned int codePage)
{
    return codePage == CP_ACP || codePage == CP_UTF8;
}

} // namespace AsciiText
