// The conversions between narrow text and UTF-16 as questions with answers in hexadecimal.
#pragma once

#include <gtest/gtest.h>

#include <numeric>
#include <string>

#include "platform/Platform.h"

namespace Conversions {

using Units = std::basic_string<WCHAR>;

template <class Text>
std::string HexOf(const Text& text)
{
    std::string hex;
    for (const auto unit : text)
        for (std::size_t shift = 8 * sizeof unit; shift > 0;)
            hex += "0123456789ABCDEF"[static_cast<unsigned>(unit) >> (shift -= 4) & 15];
    return hex;
}

template <class Text>
Text FromHex(const std::string& hex)
{
    constexpr std::size_t width = 2 * sizeof(typename Text::value_type);
    Text text;
    for (std::size_t i = 0; i + width <= hex.size(); i += width)
        text += static_cast<typename Text::value_type>(std::stoul(hex.substr(i, width), nullptr, 16));
    return text;
}

// Asks for the size first, then with just the room for it, and once with too little. In hexadecimal, or
// "ERROR n".
template <class Text, class Call>
std::string Converted(Call call)
{
    const int needed = call(nullptr, 0);
    if (needed == 0)
        return "ERROR " + std::to_string(GetLastError());
    Text text(static_cast<std::size_t>(needed) + 1, '#'), shorter = text;
    EXPECT_EQ(call(text.data(), needed), needed);
    EXPECT_EQ(text.back(), '#');
    text.pop_back();
    if (needed > 1 && std::string(KVT01_PLATFORM) == "posix") { // where less is never written
        EXPECT_EQ(call(shorter.data(), needed - 1), 0);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(shorter, text.substr(0, text.size() - 1) + Text(2, '#'));
    }
    return HexOf(text);
}

inline std::string ToWide(UINT page, const std::string& text, DWORD flags = 0)
{
    return Converted<Units>([&](WCHAR* buffer, int size) {
        return MultiByteToWideChar(page, flags, text.data(), static_cast<int>(text.size()), buffer, size);
    });
}

// With " default" behind it where the default character was used.
inline std::string ToNarrow(UINT page, const Units& text, const char* defaultChar = nullptr, DWORD flags = 0)
{
    int used = 0;
    const std::string hex = Converted<std::string>([&](char* buffer, int size) {
        return WideCharToMultiByte(page, flags, text.data(), static_cast<int>(text.size()), buffer, size,
                                   defaultChar, page == CP_UTF8 ? nullptr : &used);
    });
    return used != 0 ? hex + " default" : hex;
}

inline std::string AllBytes()
{
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

} // namespace Conversions
