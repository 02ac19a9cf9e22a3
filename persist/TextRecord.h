// The text of a record whose older versions hold encrypted-string records.
#pragma once

#include "CArchive.h"
#include "Crypto.h"

inline void LoadText(CArchive& archive, CString& text, bool isProtected)
{
    if (isProtected)
        Crypto::Serialize(archive, text);
    else
        archive >> text;
}
