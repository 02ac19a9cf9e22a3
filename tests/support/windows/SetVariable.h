// One variable of the environment; nullptr removes it, and so does an empty text here.
#pragma once

#include <cstdlib>

inline void SetVariable(const char* name, const char* value)
{
    _putenv_s(name, value == nullptr ? "" : value);
}
