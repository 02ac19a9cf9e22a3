#include "text/KeySort.h"

#include <algorithm>
#include <array>
#include <utility>

#include "text/Prefetch.h"

namespace {

constexpr std::size_t BlockSize = 8;
constexpr std::size_t MaxCompared = 24; // longer ranges are worth counting into 256 places

} // namespace

KeySort::KeySort(const std::vector<std::string_view>& keys, const PackedText::CaseFolding& folding,
                 bool ascending)
    : m_keys(keys), m_folding(folding), m_flip(ascending ? 0 : ~std::uint64_t{0})
{
    m_entries.reserve(keys.size());
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
    std::vector<Group> groups = {{0, m_entries.size(), 0}};
    while (!groups.empty()) {
        const Group group = groups.back();
        groups.pop_back();
        if (group.depth > 0)
            LoadBlocks(group);
        SortBlocks(group.first, group.last, 56);
        FindGroups(group, groups);
    }
    return std::move(m_entries);
}

void KeySort::LoadBlocks(const Group& group)
{
    constexpr std::size_t Ahead = 8; // in time, first the key and then its bytes
    const std::size_t last = group.last - 1;
    for (std::size_t i = group.first; i < group.last; ++i) {
        Prefetch(&m_keys[m_entries[std::min(i + 2 * Ahead, last)].index]);
        Prefetch(m_keys[m_entries[std::min(i + Ahead, last)].index].data() + group.depth);
        m_entries[i].block = BlockAt(m_entries[i].index, group.depth);
    }
}

// By the byte at `shift` and those below it: counted into place, then each byte's entries for themselves.
void KeySort::SortBlocks(std::size_t first, std::size_t last, int shift)
{
    if (last - first <= MaxCompared) {
        const auto isBefore = [](const Entry& a, const Entry& b) { return a.block < b.block; };
        std::sort(m_entries.data() + first, m_entries.data() + last, isBefore);
        return;
    }
    std::array<std::size_t, 256> ends{};
    const auto place = [&](std::size_t i) -> std::size_t& {
        return ends[m_entries[i].block >> shift & 0xFF];
    };
    for (std::size_t i = first; i < last; ++i)
        ++place(i);
    if (place(first) < last - first) {
        std::size_t next = first;
        for (std::size_t& end : ends)
            next += std::exchange(end, next);
        for (std::size_t i = first; i < last; ++i)
            m_spare[place(i)++] = m_entries[i];
        std::copy(m_spare.get() + first, m_spare.get() + last, m_entries.data() + first);
    } else {
        ends.fill(last);
    }
    for (std::size_t begin = first; shift > 0 && begin < last;) {
        const std::size_t end = place(begin);
        SortBlocks(begin, end, shift - 8);
        begin = end;
    }
}

// Adds the runs of equal blocks whose keys go on.
void KeySort::FindGroups(const Group& sorted, std::vector<Group>& groups) const
{
    for (std::size_t first = sorted.first; first < sorted.last;) {
        bool goesOn = false;
        std::size_t last = first;
        for (; last < sorted.last && m_entries[last].block == m_entries[first].block; ++last)
            goesOn = goesOn || m_keys[m_entries[last].index].size() > sorted.depth + BlockSize;
        if (goesOn && last - first > 1)
            groups.push_back({first, last, sorted.depth + BlockSize});
        first = last;
    }
}
