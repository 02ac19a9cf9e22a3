// The text of a record whose older versions hold encrypted-string records.
#pragma once

#include "CArchive.h"
#include "persist/ProtectedString.h"

inline void LoadText(CArchive& archive, CString& text, bool isProtected)
{
    if (isProtected)
        LoadProtectedString(archive, text);
    else
        archive >> text;
}
