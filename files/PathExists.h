// The existence test of the files folder.
#pragma once

#include "CString.h"

// Whether a file or folder has this name; never for a name with a NUL inside, which no file can have.
bool PathExists(const CString& path);
