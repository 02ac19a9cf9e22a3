// Memory of many megabytes that is going to be filled from end to end. A third to a half of such work is the
// system's, which hands out memory page by page as it is first touched; large pages make that a few times
// quicker. (1 million elements of an archive: 26 ms without, 18 ms with them.)
#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

namespace LargeMemory {

// Tells the system so: no more than a hint, which touches nothing. Small memory is left alone, and so is all
// of it where the system has no such hint.
void WillBeFilled(const void* memory, std::size_t size) noexcept;

// Room for so many elements of a list, all of which are going to be made.
template <class Element>
void Reserve(std::vector<Element>& list, std::size_t count)
{
    if (count <= list.capacity())
        return;
    list.reserve(count);
    if constexpr (!std::is_same_v<Element, bool>) // which are bits, and not to be pointed at
        WillBeFilled(list.data(), count * sizeof(Element));
}

} // namespace LargeMemory
