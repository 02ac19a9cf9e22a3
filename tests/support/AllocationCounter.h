// What the calling thread asked operator new for, in bytes; freeing does not lower it.
#pragma once

#include <cstddef>

std::size_t GetAllocatedInAll();
