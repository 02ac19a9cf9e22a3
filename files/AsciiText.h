// Text of which every character is below 80: the same in all encodings of text files.
#pragma once

#include <string_view>

#include "platform/Platform.h"

namespace AsciiText {

template <class Unit>
bool Is(std::basic_string_view<Unit> text)
{
    Unit all = 0;
    for (const Unit unit : text) // without a way out on the way: so the compiler takes many at once
        all = static_cast<Unit>(all | unit);
    return static_cast<char32_t>(all) < 0x80; // a char below 0 becomes a large number
}

// Whether the page is known to hold such text as it is; others are asked.
inline bool IsKeptBy(unsigned int codePage)
{
    return codePage == CP_ACP || codePage == CP_UTF8;
}

} // namespace AsciiText
