// Text eight bytes at a time: as numbers that compare like the bytes, and without regard to case.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "framework/RuntimeText.h"

namespace PackedText {

inline std::uint64_t LoadEight(const char* text)
{
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

inline void StoreEight(std::uint64_t word, unsigned char* to)
{
    if constexpr (std::endian::native == std::endian::little)
        word = __builtin_bswap64(word);
    std::memcpy(to, &word, sizeof word);
}

// Up to eight bytes from `at` on, the first one highest; zeros stand for those behind the end.
inline std::uint64_t Load(std::string_view text, std::size_t at)
{
    if (at + 8 <= text.size())
        return LoadEight(text.data() + at);
    if (at >= text.size())
        return 0;
    const std::size_t missing = at + 8 - text.size();
    if (text.size() >= 8)
        return LoadEight(text.data() + text.size() - 8) << (8 * missing);
    std::uint64_t word = 0;
    for (const char c : text.substr(at))
        word = word << 8 | static_cast<unsigned char>(c);
    return word << (8 * missing);
}

// Up to eight bytes, in some order that is the same for the same count.
inline std::uint64_t LoadFew(const char* text, std::size_t count)
{
    const auto load = [=]<class Half>(Half first) { // two pieces, which may overlap
        Half last;
        std::memcpy(&first, text, sizeof first);
        std::memcpy(&last, text + count - sizeof last, sizeof last);
        return std::uint64_t{first} | std::uint64_t{last} << 32;
    };
    if (count >= 4)
        return load(std::uint32_t{});
    if (count >= 2)
        return load(std::uint16_t{});
    return count == 0 ? 0 : static_cast<unsigned char>(*text);
}

constexpr std::uint64_t InEachByte(std::uint64_t byte)
{
    return byte * 0x0101010101010101;
}

// Sets bit 5 in the bytes from 'A' to 'Z': the sums carry into bit 7 of a byte where it is at least 'A', and
// where it is above 'Z'.
inline std::uint64_t FoldAscii(std::uint64_t word)
{
    const std::uint64_t low = word & InEachByte(0x7F);
    const std::uint64_t isFromA = low + InEachByte(0x80 - 'A');
    const std::uint64_t isAboveZ = low + InEachByte(0x7F - 'Z');
    return word | ((isFromA & ~isAboveZ & ~word & InEachByte(0x80)) >> 2);
}

// Makes texts that are the same but for case the same, in the order of the runtime's current locale.
class CaseFolding {
public:
    static CaseFolding Exact() { return CaseFolding(Mode::Exact); }
    static CaseFolding Runtime()
    {
        const auto order = RuntimeText::CaseOrder();
        CaseFolding folding(Mode::Ascii);
        if (RuntimeText::FoldsAsciiOnly())
            return folding;
        for (std::size_t c = 0; c < 256; ++c) {
            folding.m_table[c] = static_cast<unsigned char>(order(static_cast<char>(c)));
            if (folding.m_table[c] != (c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c))
                folding.m_mode = Mode::Table;
        }
        return folding;
    }

    std::uint64_t operator()(std::uint64_t word) const
    {
        return m_mode == Mode::Exact ? word : m_mode == Mode::Ascii ? FoldAscii(word) : FoldByTable(word);
    }

private:
    enum class Mode { Exact, Ascii, Table };
    explicit CaseFolding(Mode mode) : m_mode(mode) {}

    std::uint64_t FoldByTable(std::uint64_t word) const
    {
        std::uint64_t folded = 0;
        for (int shift = 56; shift >= 0; shift -= 8)
            folded = folded << 8 | m_table[word >> shift & 0xFF];
        return folded;
    }

    Mode m_mode;
    std::array<unsigned char, 256> m_table{};
};

} // namespace PackedText
