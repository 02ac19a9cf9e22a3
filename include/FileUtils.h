// FileUtils: file names and paths taken apart, put together and made.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API FileUtils {
public:
    static CString ParseFileNameFromPath(const CString& path, bool withExtension = true);
};
