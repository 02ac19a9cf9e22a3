// Finds things by hash: a table of positions with open addressing. The things themselves, and what makes two
// of them the same, stay with the caller. Positions are below 2^40 - 1.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "text/PackedText.h"

class HashIndex {
public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    // Room for so many positions; more must not be added.
    explicit HashIndex(std::size_t count) : m_slots(std::bit_ceil(2 * count + 1)), m_mask(m_slots.size() - 1)
    {
    }

    // The position added under `hash` for which isSame(position) holds, or None.
    template <class IsSame>
    std::size_t Find(std::uint64_t hash, IsSame isSame) const
    {
        const std::uint64_t slot = m_slots[SlotOf(hash, isSame)];
        return slot == 0 ? None : PositionIn(slot);
    }

    // The same, but adds `position` and answers it when there is none.
    template <class IsSame>
    std::size_t FindOrAdd(std::uint64_t hash, std::size_t position, IsSame isSame)
    {
        std::uint64_t& slot = m_slots[SlotOf(hash, isSame)];
        if (slot == 0)
            slot = (hash & ~PositionBits) | (position + 1);
        return PositionIn(slot);
    }

private:
    // A slot holds the position plus 1, and above it the upper bits of the hash; 0 is an empty one.
    static constexpr std::uint64_t PositionBits = (std::uint64_t{1} << 40) - 1;

    static std::size_t PositionIn(std::uint64_t slot)
    {
        return static_cast<std::size_t>((slot & PositionBits) - 1);
    }

    template <class IsSame>
    std::size_t SlotOf(std::uint64_t hash, IsSame isSame) const
    {
        std::size_t at = static_cast<std::size_t>(hash) & m_mask;
        for (;; at = (at + 1) & m_mask) {
            const std::uint64_t slot = m_slots[at];
            if (slot == 0 || (((slot ^ hash) & ~PositionBits) == 0 && isSame(PositionIn(slot))))
                return at;
        }
    }

    std::vector<std::uint64_t> m_slots;
    std::size_t m_mask;
};

// Texts that are equal after folding have equal hashes. `seed` is the hash of what stands in front.
inline std::uint64_t HashText(std::string_view text, const PackedText::CaseFolding& folding,
                              std::uint64_t seed = 0)
{
    constexpr std::uint64_t Multiplier = 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
    std::uint64_t hash = (seed ^ text.size()) * Multiplier;
    for (std::size_t at = 0; at < text.size(); at += 8) {
        hash = (hash ^ folding(PackedText::Load(text, at))) * Multiplier;
        hash ^= hash >> 29;
    }
    return hash ^ hash >> 32;
}
