// CStringArray: an array of strings. What it offers beyond this is described with FrameworkArray.
#pragma once

#include "CString.h"
#include "FrameworkArray.h"
#include "Kvt01Api.h"

#include <initializer_list>

class CArchive;

class CStringArray : public FrameworkArray<CString> {
public:
    CStringArray() = default;
    CStringArray(std::initializer_list<CString> texts)
    {
        for (const CString& text : texts)
            Add(text);
    }

    // Stored: the number of texts as CArchive::WriteCount writes it, and the texts. Loading replaces what the
    // array held; at the end of the data, which raises CArchiveException, it has the texts that were there.
    //   "a", "bc"   02 00  01 61  02 62 63
    KVT01_API void Serialize(CArchive& archive);
};
