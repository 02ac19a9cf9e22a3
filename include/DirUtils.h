// DirUtils: directory paths.
#pragma once

#include "CString.h"
#include "Kvt01Api.h"

class KVT01_API DirUtils {
public:
    static CString ParsePathFromFile(const CString& path);
};
