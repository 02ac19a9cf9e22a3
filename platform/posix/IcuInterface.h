// What the library asks of ICU: one table of functions, made by a module that is linked with ICU and lies
// beside the library. The library itself is not linked with ICU, so that its start does not pay for it.
#pragma once

#include <cstddef>

#include "BasicTypes.h"

struct IcuInterface {
    static constexpr unsigned int CurrentVersion = 2; // another one counts as no module
    static constexpr char EntryPoint[] = "kvt01_icu"; // const IcuInterface* kvt01_icu()

    unsigned int version;

    // Tells `take` the locale's own facts, each under the number of the locale item that it answers: all that
    // cannot be read off another one. `name` is a locale's name as POSIX writes it (de_AT.UTF-8@euro), or any
    // other text. False when the language is unknown; nothing was told then.
    using TakeFact = void (*)(void* context, DWORD item, const char16_t* text);
    bool (*describeLocale)(const char* name, TakeFact take, void* context);

    // Fills the tables of a page of one byte per character, named as ICU does: the character of each byte,
    // U+FFFD where it has none, and the byte of each 16-bit unit, 0 where it has none, lookalikes included.
    // False when there is no such page.
    bool (*describeCodePage)(const char* converter, char16_t* wide, BYTE* narrow);
    static constexpr std::size_t WideCount = 256, NarrowCount = 65536;
};
