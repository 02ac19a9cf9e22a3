// The platform's names where they are at home: the system's own headers, and nothing of ours between.
#pragma once

#include "BasicTypes.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h> // before the others, which build on it

#include <io.h>
#include <oleauto.h>
#include <shlobj.h>

// Operations of this library that the system's headers would turn into others.
#undef CreateDirectory
#undef FindNextFile
#undef GetFileTitle
