// Sorts by keys that compare as unsigned bytes, after folding. A shorter key counts as filled up with zeros,
// so no two different keys may differ in zeros at the end alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
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

    // The indexes of the keys in order; called once. Linear in the bytes that tell the keys apart, and one
    // look at each key when they stand in order, or in the opposite one.
    std::vector<Entry> Sort();

private:
    struct Group { // entries whose keys are equal in front of `depth`; their blocks begin there
        std::size_t first, last, depth;
    };

    bool IsSorted() const;
    bool IsReversed() const;
    std::uint64_t BlockAt(std::size_t index, std::size_t depth) const;
    void LoadBlocks(const Group& group);
    int CompareNeighbours(std::size_t index) const;
    void SortFew(std::size_t first, std::size_t last);
    void SortBlocks(std::size_t first, std::size_t last);
    void FindGroups(const Group& sorted, std::vector<Group>& groups) const;

    const std::vector<std::string_view>& m_keys;
    PackedText::CaseFolding m_folding;
    std::uint64_t m_flip; // all ones for a descending order
    std::vector<Entry> m_entries;
    std::unique_ptr<Entry[]> m_spare; // room for as many
};
