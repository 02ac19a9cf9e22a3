#include "text/KeySort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "framework/LargeMemory.h"
#include "text/Prefetch.h"

namespace {

constexpr std::size_t BlockSize = 8;
constexpr std::size_t MaxCompared = 24; // longer ranges are worth counting into 256 places

} // namespace

KeySort::KeySort(const std::vector<std::string_view>& keys, const PackedText::CaseFolding& folding,
                 bool ascending)
    : m_keys(keys), m_folding(folding), m_flip(ascending ? 0 : ~std::uint64_t{0})
{
    LargeMemory::Reserve(m_entries, keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i)
        m_entries.push_back({BlockAt(i, 0), i});
}

std::uint64_t KeySort::BlockAt(std::size_t index, std::size_t depth) const
{
    return m_folding(PackedText::Load(m_keys[index], depth)) ^ m_flip;
}

// The keys of `index` and the one in front of it.
int KeySort::CompareNeighbours(std::size_t index) const
{
    std::uint64_t left = m_entries[index - 1].block;
    std::uint64_t right = m_entries[index].block;
    const std::size_t size = std::max(m_keys[index - 1].size(), m_keys[index].size());
    for (std::size_t depth = BlockSize; left == right && depth < size; depth += BlockSize) {
        left = BlockAt(index - 1, depth);
        right = BlockAt(index, depth);
    }
    return left == right ? 0 : left < right ? -1 : 1;
}

bool KeySort::IsSorted() const
{
    std::size_t i = 1;
    while (i < m_keys.size() && CompareNeighbours(i) <= 0)
        ++i;
    return i >= m_keys.size();
}

bool KeySort::IsReversed() const
{
    std::size_t i = 1;
    while (i < m_keys.size() && CompareNeighbours(i) >= 0)
        ++i;
    return i >= m_keys.size();
}

std::vector<KeySort::Entry> KeySort::Sort()
{
    if (IsSorted())
        return std::move(m_entries);
    if (IsReversed()) {
        std::reverse(m_entries.begin(), m_entries.end());
        return std::move(m_entries);
    }
    m_spare = std::make_unique_for_overwrite<Entry[]>(m_entries.size());
    LargeMemory::WillBeFilled(m_spare.get(), m_entries.size() * sizeof(Entry));
    std::vector<Group> groups = {{0, m_entries.size(), 0}};
    while (!groups.empty()) {
        const Group group = groups.back();
        groups.pop_back();
        if (group.depth > 0)
            LoadBlocks(group);
        SortBlocks(group.first, group.last);
        FindGroups(group, groups);
    }
    return std::move(m_entries);
}

// From the last to the first, as groups are taken: what is told of in time may belong to the next ones.
void KeySort::LoadBlocks(const Group& group)
{
    constexpr std::size_t Ahead = 8; // first the key and then its bytes
    for (std::size_t i = group.last; i-- > group.first;) {
        Prefetch(&m_keys[m_entries[i - std::min(i, 2 * Ahead)].index]);
        Prefetch(m_keys[m_entries[i - std::min(i, Ahead)].index].data() + group.depth);
        m_entries[i].block = BlockAt(m_entries[i].index, group.depth);
    }
}

// Each to the place behind those that are less: without a jump, for which way it goes nobody can foresee.
void KeySort::SortFew(std::size_t first, std::size_t last)
{
    const Entry* const entries = m_entries.data();
    for (std::size_t i = first; i < last; ++i) {
        std::size_t place = first;
        for (std::size_t j = first; j < i; ++j)
            place += entries[j].block <= entries[i].block ? 1 : 0;
        for (std::size_t j = i + 1; j < last; ++j)
            place += entries[j].block < entries[i].block ? 1 : 0;
        m_spare[place] = entries[i];
    }
    std::copy(m_spare.get() + first, m_spare.get() + last, m_entries.data() + first);
}

// By the eight highest bits that are not the same in all: counted into place, then each value's entries for
// themselves.
void KeySort::SortBlocks(std::size_t first, std::size_t last)
{
    if (last - first <= MaxCompared)
        return SortFew(first, last);
    std::uint64_t different = 0;
    for (std::size_t i = first; i < last; ++i)
        different |= m_entries[i].block ^ m_entries[first].block;
    if (different == 0)
        return;
    const int shift = std::max(static_cast<int>(std::bit_width(different)), 8) - 8;
    std::array<std::size_t, 256> ends{};
    const auto place = [&](std::size_t i) -> std::size_t& {
        return ends[m_entries[i].block >> shift & 0xFF];
    };
    for (std::size_t i = first; i < last; ++i)
        ++place(i);
    std::size_t next = first;
    for (std::size_t& end : ends)
        next += std::exchange(end, next);
    for (std::size_t i = first; i < last; ++i)
        m_spare[place(i)++] = m_entries[i];
    std::copy(m_spare.get() + first, m_spare.get() + last, m_entries.data() + first);
    for (std::size_t begin = first; shift > 0 && begin < last;) {
        const std::size_t end = place(begin);
        SortBlocks(begin, end);
        begin = end;
    }
}

// Adds the runs of equal blocks whose keys go on.
void KeySort::FindGroups(const Group& sorted, std::vector<Group>& groups) const
{
    const std::size_t depth = sorted.depth + BlockSize;
    const auto goesOn = [&](const Entry& entry) { return m_keys[entry.index].size() > depth; };
    for (std::size_t first = sorted.first; first < sorted.last;) {
        std::size_t last = first + 1;
        while (last < sorted.last && m_entries[last].block == m_entries[first].block)
            ++last;
        const Entry* const run = m_entries.data();
        if (last - first > 1 && std::any_of(run + first, run + last, goesOn))
            groups.push_back({first, last, depth});
        first = last;
    }
}
