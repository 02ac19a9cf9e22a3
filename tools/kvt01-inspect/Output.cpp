#include "Output.h"

#include <cstdio>

namespace {

// Windows-1252 from 0x80 to 0x9F; 0 where the page has no character. The rest is Unicode's own order.
constexpr unsigned UpperCharacters[] = {
    // clang-format off
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
    // clang-format on
};

bool IsControl(unsigned char c)
{
    return c < 0x20 || c == 0x7F;
}

void AppendEscaped(std::string& text, unsigned char c)
{
    constexpr char digits[] = "0123456789ABCDEF";
    text += "\\x";
    text += digits[c >> 4];
    text += digits[c & 15];
}

// A character from 0x80 to 0xFFFF as UTF-8.
void AppendEncoded(std::string& text, unsigned character)
{
    if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
    } else {
        text += static_cast<char>(0xE0 | character >> 12);
        text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
    }
    text += static_cast<char>(0x80 | (character & 0x3F));
}

CString Padded(int number, int width)
{
    return NumberTextConv::NumberToString(number, false, width, "0");
}

} // namespace

std::string Output::Text(std::string_view windows1252)
{
    std::string text;
    for (const char c : windows1252) {
        const auto byte = static_cast<unsigned char>(c);
        const unsigned character = byte >= 0x80 && byte < 0xA0 ? UpperCharacters[byte - 0x80] : byte;
        if (character == 0 || IsControl(byte))
            AppendEscaped(text, byte);
        else if (character < 0x80)
            text += c;
        else
            AppendEncoded(text, character);
    }
    return text;
}

std::string Output::Name(std::string_view name)
{
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        const unsigned char next = i + 1 < name.size() ? static_cast<unsigned char>(name[i + 1]) : 0;
        const bool beginsUpperControl = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        if (IsControl(byte) || beginsUpperControl)
            AppendEscaped(text, byte);
        else
            text += name[i];
    }
    return text;
}

std::string Output::Date(const DateTime& date)
{
    CString text("-");
    if (date.IsValidDate())
        text = Padded(date.GetYear(), 4) + "-" + Padded(date.GetMonth(), 2) + "-" + Padded(date.GetDay(), 2);
    if (!date.IsValidTime())
        text += " -";
    else
        text += " " + Padded(date.GetHour(), 2) + ":" + Padded(date.GetMinute(), 2) + ":" +
                Padded(date.GetSecond(), 2);
    return std::string(text.View());
}

void Output::Line(const std::string& line)
{
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::putchar('\n');
}
