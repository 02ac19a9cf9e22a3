// The operations of the platform, under the names and with the results that they have on the library's
// original platform. There the system's own headers declare them; elsewhere posix/ implements them, hidden
// inside the library. Everything above this folder calls them and knows no other system.
#pragma once

#ifdef _WIN32
#include "platform/windows/WindowsPlatform.h"
#else
#include "platform/posix/PosixPlatform.h"
#endif
