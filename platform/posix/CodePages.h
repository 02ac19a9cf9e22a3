// What stands behind the operations of PosixCodePages.h: a page's tables, and the two forms of Unicode.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/posix/PosixCodePages.h"

namespace CodePages {

inline constexpr char16_t Replacement = 0xFFFD;

// The fullwidth forms of '!' to '~', which look like those in every page.
inline constexpr char16_t FirstFullwidth = 0xFF01;
inline constexpr char16_t LastFullwidth = 0xFF5E;
constexpr BYTE FullwidthByte(char16_t unit) noexcept
{
    return static_cast<BYTE>(unit - FirstFullwidth + '!');
}

// A page of one byte per character. The tables of bytes are in blocks of 256, so that the many units without
// a byte share one.
struct SingleBytePage {
    const char16_t* wide; // of each byte
    const BYTE* blockOf;  // of the high byte of a unit: which block
    const BYTE* blocks;   // of the low byte: its byte; 0 for none, and for U+0000

    BYTE ByteOf(char16_t unit) const noexcept { return blocks[blockOf[unit >> 8] << 8 | (unit & 0xFF)]; }
};

extern const SingleBytePage Windows1252;

// The page of that number, other than 1252 and UTF-8; nullptr if there is none. May throw std::bad_alloc.
const SingleBytePage* Find(UINT page);

// ---- ASCII, sixteen at a time ---------------------------------------------------------------------------

inline constexpr std::size_t Block = 16;

// Whether any of the sixteen is no ASCII.
inline bool IsAscii(const char* bytes) noexcept
{
    std::uint64_t words[Block / sizeof(std::uint64_t)];
    std::memcpy(words, bytes, sizeof words);
    return ((words[0] | words[1]) & 0x8080808080808080) == 0;
}

inline bool IsAscii(const char16_t* units) noexcept
{
    std::uint64_t words[Block * sizeof(char16_t) / sizeof(std::uint64_t)];
    std::memcpy(words, units, sizeof words);
    return ((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80) == 0;
}

template <class From, class To>
void CopyBlock(const From* text, To* to) noexcept
{
    From from[Block]; // copies of their own, so that the compiler need not ask whether the two overlap
    To copied[Block];
    std::memcpy(from, text, sizeof from);
    for (std::size_t i = 0; i < Block; ++i)
        copied[i] = static_cast<To>(from[i]);
    std::memcpy(to, copied, sizeof copied);
}

// Copies the blocks of ASCII that a text begins with; says how many units those are.
template <class From, class To>
std::size_t CopyAscii(const From* text, std::size_t length, To* to) noexcept
{
    std::size_t done = 0;
    for (; length - done >= Block && IsAscii(text + done); done += Block)
        if (to != nullptr)
            CopyBlock(text + done, to + done);
    return done;
}

// ---- where a conversion writes --------------------------------------------------------------------------

// Counts everything and writes what there is room for; without a buffer it only counts.
template <class Unit>
class Output {
public:
    Output(Unit* buffer, std::size_t room) noexcept : m_buffer(room == 0 ? nullptr : buffer), m_room(room) {}

    std::size_t Count() const noexcept { return m_count; }
    // Where the next `most` units may be written: in the buffer if it has room for so many, else in `spare`.
    Unit* Place(std::size_t most, Unit* spare) const noexcept
    {
        return m_count <= m_room && m_room - m_count >= most ? m_buffer + m_count : spare;
    }
    // Takes over what was written there.
    void Take(const Unit* place, std::size_t count) noexcept
    {
        if (m_count < m_room && place != m_buffer + m_count)
            std::copy_n(place, std::min(count, m_room - m_count), m_buffer + m_count);
        m_count += count;
    }
    // The blocks of ASCII at the start of the text, as far as there is room for them; how many units.
    template <class From>
    std::size_t PutAscii(const From* text, std::size_t length) noexcept
    {
        const std::size_t left = m_room - std::min(m_count, m_room);
        const std::size_t done = m_buffer == nullptr
                                     ? CopyAscii<From, Unit>(text, length, nullptr)
                                     : CopyAscii(text, std::min(length, left), m_buffer + (m_room - left));
        m_count += done;
        return done;
    }

private:
    Unit* m_buffer;
    std::size_t m_room;
    std::size_t m_count = 0;
};

// The blocks of ASCII in one go; where there is something else, a block's length piece by piece:
// `putPiece(text, length, to)` converts what a text begins with into at most four units, moves `to` behind
// them and says how many units of the text that was.
template <class From, class To, class PutPiece>
void Convert(const From* text, std::size_t length, Output<To>& output, PutPiece putPiece) noexcept
{
    constexpr std::size_t most = Block * 4;
    To spare[most];
    for (std::size_t done = 0; done < length;) {
        done += output.PutAscii(text + done, length - done);
        To* const place = output.Place(most, spare);
        To* to = place;
        for (const std::size_t end = std::min(done + Block, length); done < end;)
            done += putPiece(text + done, length - done, to);
        output.Take(place, static_cast<std::size_t>(to - place));
    }
}

// Whether nothing had to be replaced.
bool Utf8ToUtf16(const char* text, std::size_t length, Output<char16_t>& output) noexcept;
bool Utf16ToUtf8(const char16_t* text, std::size_t length, Output<char>& output) noexcept;

} // namespace CodePages
