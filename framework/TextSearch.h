// Substring search on counted texts of arbitrary bytes, NULs included.
//
// All searches look with vector instructions for two bytes of the pattern, the rarest ones in ordinary text,
// at the distance they have in it. What stands at such a place is then compared, by the rule of the search.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace TextSearch {

constexpr std::size_t None = std::string_view::npos;

// Where `wanted` first stands in `text` at or after `start` (below 0: from the beginning), or -1; exact. An
// empty `wanted` stands at `start` if that is not past the end. Linear in the length of the text.
int Find(std::string_view text, std::string_view wanted, int start) noexcept;

// What each byte counts as when texts are compared.
class ByteFold {
public:
    template <class Function>
    constexpr explicit ByteFold(Function valueOf) noexcept
    {
        std::array<std::uint8_t, 256> ones{};
        std::array<std::uint8_t, 256> zeros{};
        for (unsigned int byte = 0; byte < 256; ++byte) {
            const std::uint8_t value = m_values[byte] = static_cast<std::uint8_t>(valueOf(byte));
            ones[value] = static_cast<std::uint8_t>(ones[value] | byte);
            zeros[value] = static_cast<std::uint8_t>(zeros[value] | ~byte);
        }
        for (std::size_t value = 0; value < 256; ++value)
            m_varying[value] = ones[value] & zeros[value];
    }
    constexpr std::uint8_t operator()(char c) const noexcept
    {
        return m_values[static_cast<std::uint8_t>(c)];
    }
    // The bits in which the bytes that count the same as `c` differ from each other: of two such bytes,
    // (a | bits) == (b | bits).
    constexpr std::uint8_t VaryingBits(char c) const noexcept { return m_varying[(*this)(c)]; }

private:
    std::array<std::uint8_t, 256> m_values{};
    std::array<std::uint8_t, 256> m_varying{}; // by the value
};

inline constexpr ByteFold Exact([](unsigned int byte) { return byte; });

// What the runtime library's tolower makes of each byte under the current locale, as in CString::MakeLower.
ByteFold RuntimeLowercase() noexcept;

// The places where a pattern may stand: all places where it does, and a few others. The views and the fold
// must outlive it. The places come in blocks of 256, one bit for each, found without a jump inside.
class Candidates {
public:
    Candidates(std::string_view text, std::string_view pattern, const ByteFold& fold) noexcept;
    // The first one at or after `from`, or None; `from` must not fall from call to call.
    std::size_t Next(std::size_t from) noexcept
    {
        do {
            std::size_t place = std::max(from, m_base) - m_base;
            for (; place < m_end - m_base; place = (place / 64 + 1) * 64)
                if (const std::uint64_t left = m_bits[place / 64] >> place % 64; left != 0)
                    return m_base + place + static_cast<std::size_t>(std::countr_zero(left));
        } while (Scan(std::max(from, m_end)));
        return None;
    }

    static constexpr std::size_t BlockSize = 256;
    using Bits = std::array<std::uint64_t, BlockSize / 64>;

    // A byte to look for: one that equals `wanted` when the `ignored` bits of both are set.
    struct Probe {
        std::uint8_t wanted;
        std::uint8_t ignored;
        bool Fits(char c) const noexcept { return (static_cast<std::uint8_t>(c) | ignored) == wanted; }
    };
    // Two bytes to look for, and the addresses of their places in a match at the start of the text.
    struct Pair {
        const char* first;
        const char* second;
        Probe firstProbe;
        Probe secondProbe;
    };
    using ScanFunction = std::size_t (*)(const Pair& pair, std::size_t from, std::size_t end,
                                         Bits& bits) noexcept;
    // Those that this processor can run, the quickest first. They set `bits` to the first block of places
    // from `from` on, whole and not beyond `end`, that has any, and return its start; without one, the first
    // place that is in no whole block.
    static std::span<const ScanFunction> UsableScans() noexcept;

private:
    bool Scan(std::size_t from) noexcept;
    bool ScanTo(std::size_t from, std::size_t end) noexcept;
    bool ScanByRareByte(std::size_t from) noexcept;

    Pair m_pair{};
    ScanFunction m_scanBlocks = nullptr;
    std::size_t m_count = 0;    // of places that leave room for the pattern
    bool m_isFirstRare = false; // hardly any byte of the text fits the first probe
    std::size_t m_base = 0;     // the places from here
    std::size_t m_end = 0;      // to here, are known: they are in m_bits
    Bits m_bits;
};

// The places where a pattern stands, linear in the length of the text. The views and the fold must outlive
// it.
class Occurrences {
public:
    Occurrences(std::string_view text, std::string_view pattern, const ByteFold& fold = Exact) noexcept;
    // The first one at or after `from`, or None; from one call to the next, `from` must pass the end of what
    // was found. An empty pattern stands nowhere.
    std::size_t Next(std::size_t from) noexcept;

private:
    bool PrepareAutomaton() noexcept;
    std::size_t NextByAutomaton(std::size_t from) noexcept;

    std::string_view m_text;
    std::string_view m_pattern;
    const ByteFold* m_fold;
    Candidates m_candidates;
    std::size_t m_start = None; // where the search began
    std::size_t m_wasted = 0;   // characters compared in vain since
    // For each length of a matched front of the pattern, that of its longest shorter end which is a front
    // too; made only when the candidates are of no use.
    std::unique_ptr<std::uint32_t[]> m_borders;
};

} // namespace TextSearch
