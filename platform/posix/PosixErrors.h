// errno in the platform's error numbers.
#pragma once

#include "BasicTypes.h"

DWORD ErrorForErrno(int posix) noexcept;
