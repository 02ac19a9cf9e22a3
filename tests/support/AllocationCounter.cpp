#include "support/AllocationCounter.h"

#include <cstdlib>
#include <new>

static thread_local std::size_t allocated = 0;

std::size_t GetAllocatedInAll()
{
    return allocated;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    allocated += size;
    return std::malloc(size + (size == 0));
}
void* operator new(std::size_t size)
{
    if (void* const memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
