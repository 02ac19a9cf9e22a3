#include "platform/posix/OpenFiles.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace {

// Indexed by descriptor, so the system hands out the places. Untouched pages of it take no memory.
constexpr std::size_t Places = std::size_t{1} << 20;
constinit unsigned char rightsOfDescriptor[Places] = {};

using Place = std::atomic_ref<unsigned char>;

// Handles are multiples of four above zero, as on the original platform.
constexpr std::uintptr_t HandleStep = 4;

HANDLE HandleFor(int descriptor) noexcept
{
    return reinterpret_cast<HANDLE>((static_cast<std::uintptr_t>(descriptor) + 1) * HandleStep);
}

unsigned char* PlaceOf(HANDLE handle) noexcept
{
    const auto number = reinterpret_cast<std::uintptr_t>(handle);
    if (number == 0 || number % HandleStep != 0 || number / HandleStep > Places)
        return nullptr;
    return &rightsOfDescriptor[number / HandleStep - 1];
}

} // namespace

HANDLE OpenFiles::Add(int descriptor, unsigned rights) noexcept
{
    if (static_cast<std::size_t>(descriptor) >= Places)
        return INVALID_HANDLE_VALUE;
    Place(rightsOfDescriptor[descriptor]).store(static_cast<unsigned char>(rights | Open));
    return HandleFor(descriptor);
}

unsigned OpenFiles::RightsOf(HANDLE handle) noexcept
{
    auto* const place = PlaceOf(handle);
    return place == nullptr ? None : Place(*place).load(std::memory_order_acquire);
}

int OpenFiles::DescriptorOf(HANDLE handle) noexcept
{
    return static_cast<int>(reinterpret_cast<std::uintptr_t>(handle) / HandleStep) - 1;
}

int OpenFiles::Remove(HANDLE handle) noexcept
{
    auto* const place = PlaceOf(handle);
    return place == nullptr || Place(*place).exchange(None) == None ? -1 : DescriptorOf(handle);
}
