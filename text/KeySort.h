// Sorts by keys that compare as unsigned bytes, after folding. A shorter key counts as filled up with zeros,
// so no two different keys may differ in zeros at the end alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "text/PackedText.h"

class KeySort {
public:
    struct Entry {
        std::uint64_t block; // eight bytes of the key
        std::size_t index;   // whose key it is
    };

    KeySort(const std::vector<std::string_view>& keys, const PackedText::CaseFolding& folding,
            bool ascending);

    bool IsSorted() const;   // as the keys stand
    bool IsReversed() const; // in the opposite order
    // The indexes of the keys in order; called once. Linear in the bytes that tell the keys apart.
    const std::vector<Entry>& Sort();

private:
    struct Group { // entries whose keys are equal in front of `depth`; their blocks begin there
        std::size_t first, last, depth;
    };

    std::uint64_t BlockAt(std::size_t index, std::size_t depth) const;
    void LoadBlocks(const Group& group);
    int CompareNeighbours(std::size_t index) const;
    void SortBlocks(std::size_t first, std::size_t last, int shift);
    void FindGroups(const Group& sorted, std::vector<Group>& groups) const;

    const std::vector<std::string_view>& m_keys;
    PackedText::CaseFolding m_folding;
    std::uint64_t m_flip; // all ones for a descending order
    std::vector<Entry> m_entries;
    std::vector<Entry> m_spare;
};
