#include "files/TextEncoding.h"

namespace {

struct EncodingMark {
    int encoding;
    std::string_view bytes;
};

constexpr EncodingMark Marks[] = {
    {TextEncoding::Utf16LittleEndian, "\xFF\xFE"},
    {TextEncoding::Utf16BigEndian, "\xFE\xFF"},
    {TextEncoding::Utf8, "\xEF\xBB\xBF"},
    {TextEncoding::Utf7, "\x2B\x2F\x76"},
    {TextEncoding::Utf32BigEndian, std::string_view("\0\0\xFE\xFF", 4)},
};

} // namespace

std::string_view TextEncoding::MarkOf(int encoding)
{
    for (const EncodingMark& mark : Marks)
        if (mark.encoding == encoding)
            return mark.bytes;
    return {};
}

int TextEncoding::OfMark(std::string_view firstBytes)
{
    for (const EncodingMark& mark : Marks)
        if (firstBytes.starts_with(mark.bytes))
            return mark.encoding;
    return Ansi;
}
