// A hint that memory will be read soon, for loops that follow pointers to anywhere.
#pragma once

inline void Prefetch(const void* memory)
{
    __builtin_prefetch(memory);
}
