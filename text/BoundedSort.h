// A stable merge sort that needs nothing of its predicate: one that contradicts itself gives some order of
// the same elements, within the bounds of the array and in the usual number of steps.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace BoundedSort {

constexpr std::size_t ShortRun = 12; // sorted by insertion

template <class T, class Before>
void SortShortRun(std::vector<T>& items, std::size_t first, std::size_t last, Before before)
{
    for (std::size_t i = first + 1; i < last; ++i) {
        T item = std::move(items[i]);
        std::size_t place = i;
        for (; place > first && before(item, items[place - 1]); --place)
            items[place] = std::move(items[place - 1]);
        items[place] = std::move(item);
    }
}

// Merges [first, middle) and [middle, last); `spare` is room for the left part.
template <class T, class Before>
void Merge(std::vector<T>& items, std::size_t first, std::size_t middle, std::size_t last,
           std::vector<T>& spare, Before before)
{
    if (!before(items[middle], items[middle - 1]))
        return;
    const std::size_t leftCount = middle - first;
    for (std::size_t i = 0; i < leftCount; ++i)
        spare[i] = std::move(items[first + i]);
    std::size_t left = 0;
    std::size_t right = middle;
    for (std::size_t to = first; left < leftCount; ++to) { // what is left of the right part is in place
        const bool takesRight = right < last && before(items[right], spare[left]);
        items[to] = std::move(takesRight ? items[right++] : spare[left++]);
    }
}

template <class T, class Before>
void Sort(std::vector<T>& items, Before before)
{
    const std::size_t count = items.size();
    for (std::size_t first = 0; first < count; first += ShortRun)
        SortShortRun(items, first, std::min(first + ShortRun, count), before);
    std::vector<T> spare(count);
    for (std::size_t width = ShortRun; width < count; width *= 2)
        for (std::size_t first = 0; first + width < count; first += 2 * width)
            Merge(items, first, first + width, std::min(first + 2 * width, count), spare, before);
}

} // namespace BoundedSort
