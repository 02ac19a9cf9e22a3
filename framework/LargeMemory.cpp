#include "framework/LargeMemory.h"

#include <cstdint>

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

void LargeMemory::WillBeFilled([[maybe_unused]] const void* memory,
                               [[maybe_unused]] std::size_t size) noexcept
{
#ifdef MADV_HUGEPAGE
    constexpr std::size_t LargePage = 1 << 21;
    constexpr std::size_t WorthAsking = 2 * LargePage;
    if (size < WorthAsking)
        return;
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + LargePage - 1) / LargePage * LargePage;
    const std::uintptr_t last = (begin + size) / LargePage * LargePage;
    madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}
