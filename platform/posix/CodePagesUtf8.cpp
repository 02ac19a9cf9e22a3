#include "platform/posix/CodePages.h"

namespace CodePages {

namespace {

constexpr char32_t Bad = 0xFFFFFFFF;

struct Piece {
    char32_t code;
    std::size_t length; // in units of the text
};

// ---- from UTF-8 -----------------------------------------------------------------------------------------

struct Lead {
    char32_t bits;
    unsigned following; // bytes; 0 for what begins no sequence
};

Lead LeadOf(unsigned char byte) noexcept
{
    if (byte >= 0xC2 && byte <= 0xDF)
        return {byte & 0x1Fu, 1};
    if (byte >= 0xE0 && byte <= 0xEF)
        return {byte & 0x0Fu, 2};
    if (byte >= 0xF0 && byte <= 0xF4)
        return {byte & 0x07u, 3};
    return {0, 0};
}

// Whether a sequence with so many following bytes may stand for the character.
bool MayStandFor(char32_t code, unsigned following) noexcept
{
    constexpr char32_t lowest[] = {0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code >= lowest[following] && code <= 0x10FFFF && !isSurrogate;
}

Piece PieceAt(const char* text, std::size_t length) noexcept
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return {first, 1};
    const Lead lead = LeadOf(first);
    if (lead.following == 0)
        return {Bad, 1};
    char32_t code = lead.bits;
    for (unsigned i = 1; i <= lead.following; ++i) {
        const auto byte = i < length ? static_cast<unsigned char>(text[i]) : 0u;
        if ((byte & 0xC0) != 0x80)
            return {Bad, i};
        code = code << 6 | (byte & 0x3F);
        // The second byte tells already; it belongs to the bad piece.
        if (i == 1 && !MayStandFor(code << 6 * (lead.following - 1), lead.following))
            return {Bad, 2};
    }
    return {code, 1 + lead.following};
}

void PutUtf16(char32_t code, char16_t*& to) noexcept
{
    if (code >= 0x10000) {
        *to++ = static_cast<char16_t>(0xD7C0 + (code >> 10));
        code = 0xDC00 + (code & 0x3FF);
    }
    *to++ = static_cast<char16_t>(code);
}

// ---- from UTF-16 ----------------------------------------------------------------------------------------

Piece PieceAt(const char16_t* text, std::size_t length) noexcept
{
    const char32_t first = text[0];
    if (first < 0xD800 || first > 0xDFFF)
        return {first, 1};
    const char32_t second = length > 1 ? text[1] : 0;
    if (first > 0xDBFF || second < 0xDC00 || second > 0xDFFF)
        return {Bad, 1};
    return {0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00), 2};
}

void PutUtf8(char32_t code, char*& to) noexcept
{
    const auto put = [&to](char32_t byte) { *to++ = static_cast<char>(byte); };
    const auto putRest = [&](unsigned shift) { put(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        putRest(0);
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        putRest(6);
        putRest(0);
    } else {
        put(0xF0 | code >> 18);
        putRest(12);
        putRest(6);
        putRest(0);
    }
}

// ---- both -----------------------------------------------------------------------------------------------

template <class From, class To, class Put>
bool ConvertPieces(const From* text, std::size_t length, Output<To>& output, Put put) noexcept
{
    bool isSound = true;
    Convert(text, length, output, [&](const From* rest, std::size_t restLength, To*& to) {
        const Piece piece = PieceAt(rest, restLength);
        isSound = isSound && piece.code != Bad;
        put(piece.code == Bad ? Replacement : piece.code, to);
        return piece.length;
    });
    return isSound;
}

} // namespace

bool Utf8ToUtf16(const char* text, std::size_t length, Output<char16_t>& output) noexcept
{
    return ConvertPieces(text, length, output, PutUtf16);
}

bool Utf16ToUtf8(const char16_t* text, std::size_t length, Output<char>& output) noexcept
{
    return ConvertPieces(text, length, output, PutUtf8);
}

} // namespace CodePages
