// CByteArray: an array of bytes. What it offers beyond this is described with FrameworkArray.
#pragma once

#include "BasicTypes.h"
#include "FrameworkArray.h"
#include "Kvt01Api.h"

#include <initializer_list>

class CArchive;

class CByteArray : public FrameworkArray<BYTE> {
public:
    CByteArray() = default;
    CByteArray(std::initializer_list<BYTE> bytes)
    {
        for (const BYTE value : bytes)
            Add(value);
    }

    // Stored: the number of bytes as CArchive::WriteCount writes it, and the bytes. Loading replaces what the
    // array held; at the end of the data, which raises CArchiveException, it has the bytes that were there.
    //   12, 255   02 00  0C FF
    KVT01_API void Serialize(CArchive& archive);
};
