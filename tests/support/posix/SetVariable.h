// One variable of the environment; nullptr removes it.
#pragma once

#include <cstdlib>

inline void SetVariable(const char* name, const char* value)
{
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}
