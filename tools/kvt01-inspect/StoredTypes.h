// The types that can be stored, by name, and how a value of each is printed.
#pragma once

#include <span>
#include <string_view>

#include "Source.h"

// How the value lies in the file, besides its type.
struct Layout {
    bool isLegacy = false;
    bool isEncrypted = false; // texts are encrypted-string records
};

struct StoredType {
    std::string_view name;
    void (*print)(CRewindArchive& archive, Layout layout); // loads a value and prints it
    bool hasLegacy = false;
    bool hasEncrypted = false;
    WORD lastVersion = 0; // where the library loads any later one as nothing at all
};

std::span<const StoredType> StoredTypes();
// Blanks and "std::" in the name do not count, and "string" is as good as "CString"; nullptr without one.
const StoredType* FindStoredType(std::string_view name);

// Prints the value at the beginning. Throws Damage where it ends too early or is not one, with all before
// that printed, and for what follows it.
void PrintStored(Source& source, const StoredType& type, Layout layout);
